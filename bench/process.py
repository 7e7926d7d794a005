"""Programs that are run once, and what they cost."""
import os
import signal
import subprocess
import threading


class Failed(Exception):
    pass


def run(command, longest=None, **options):
    """Standard output and the resources used (as os.wait4 has them) of a program, which is ended
    after some seconds."""
    try:
        process = subprocess.Popen([str(word) for word in command], stdout=subprocess.PIPE, **options)
    except FileNotFoundError as error:
        raise Failed("not installed") from error
    alarm = threading.Timer(longest or threading.TIMEOUT_MAX, os.kill,
                            (process.pid, signal.SIGKILL))
    alarm.start()
    output = process.stdout.read().decode()
    _, status, usage = os.wait4(process.pid, 0)
    in_time = alarm.is_alive()
    alarm.cancel()
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise Failed("could not be run" if in_time else f"took over {longest} s")
    return output, usage
