"""What goes wrong, with number and place; consumers that stop early; signals and threads."""
import concurrent.futures
import ctypes
import gc
import os
import pickle
import signal
import threading

import pytest
import textwizard

import arrow_abi
from conftest import command


def test_a_command_that_fails_says_number_and_place(write):
    with pytest.raises(textwizard.CommandError) as caught:
        textwizard.run(command("n F4.0\n  s WRONG7", write("1,a\n")))
    error = caught.value
    assert (error.number, error.line, error.column) == (2265, 2, 3)
    assert str(error).startswith("[2265]") and "WRONG7" in str(error)
    same = pickle.loads(pickle.dumps(error))
    assert (type(same), str(same), same.column) == (type(error), str(error), 3)


def test_a_file_that_is_not_there(tmp_path):
    with pytest.raises(textwizard.CommandError) as caught:
        textwizard.run(command("n F4.0", tmp_path / "none.csv"))
    assert caught.value.number == 2269 and "none.csv" in str(caught.value)
    with pytest.raises(textwizard.FileError, match="none.csv"):
        textwizard.read(tmp_path / "none.csv")
    with pytest.raises(OSError, match="none.csv"):
        textwizard.sniff(tmp_path / "none.csv")


def test_settings_that_cannot_be(write):
    path = write("a,b\n1,x\n2,y\n")
    for settings in ({"types": "right"}, {"workers": -1}, {"decimal": ";"}, {"fixed": "8-1"},
                     {"first_line": -1}, {"names": ["a,b", "c"]}):
        with pytest.raises(textwizard.SettingError):
            textwizard.read(path, **settings)
    with pytest.raises(ValueError, match="workers"):
        textwizard.read(path, workers=2**40)
    with pytest.raises(ValueError, match="decimal"):
        textwizard.read(path, decimal="point")
    with pytest.raises(ValueError, match="delimiter has a character of code 0"):
        textwizard.read(path, delimiter="\0")
    with pytest.raises(TypeError, match="workers is a whole number"):
        textwizard.read(path, workers="two")
    with pytest.raises(TypeError, match="encoding is a text"):
        textwizard.read(path, encoding=8)
    with pytest.raises(TypeError, match="separator"):
        textwizard.read(path, separator=";")
    with pytest.raises(TypeError):
        textwizard.read(17)
    with pytest.raises(TypeError, match="not int"):
        textwizard.run(17)
    with pytest.raises(textwizard.SettingError, match="code 0"):
        textwizard.run("GET DATA\0.")
    with pytest.raises(textwizard.SettingError, match="code 0"):
        textwizard.read("a\0b")
    with pytest.raises(textwizard.SettingError, match="no command"):
        textwizard.run("")


def test_strict_fails_at_a_problem(write):
    text = command("n F4.0", write("1\nx\n3\n"))
    with pytest.raises(textwizard.CommandError, match="line 2"):
        textwizard.run(text, strict=True)
    assert len(textwizard.run(text)) == 3


def test_what_progress_raises_ends_the_import(write):
    def stop(*_):
        raise LookupError("enough")

    path = write("a,b\n1,x\n2,y\n")
    with pytest.raises(LookupError, match="enough"):
        textwizard.read(path, progress=stop)
    assert len(textwizard.read(path)) == 2


def test_an_import_within_progress_is_refused(write):
    path = write("a,b\n1,x\n2,y\n")
    with pytest.raises(textwizard.BusyError):
        textwizard.read(path, progress=lambda *_: textwizard.read(path))
    assert len(textwizard.read(path)) == 2


def test_a_stream_that_is_given_up_early(write):
    table = textwizard.run(command("n F8.0 s A8", write("1,a\n" * 150_000)))
    capsule = table.__arrow_c_stream__()
    stream = arrow_abi.of(capsule, b"arrow_array_stream", arrow_abi.Stream)
    batch = arrow_abi.next_batch(stream)
    del capsule, stream, table
    gc.collect()
    # What was taken lives on.
    assert batch.length == 65536
    assert arrow_abi.values_of(batch, 1, "u")[65535] == "a"
    batch.release(batch)
    assert not batch.release


def test_a_stream_that_its_consumer_released(write):
    table = textwizard.run(command("n F8.0", write("1\n2\n")))
    capsule = table.__arrow_c_stream__()
    stream = arrow_abi.of(capsule, b"arrow_array_stream", arrow_abi.Stream)
    stream.release(ctypes.byref(stream))
    assert not stream.release
    del capsule
    assert len(list(table)) == 1 and table.to_pandas()["n"].tolist() == [1, 2]


def test_a_child_that_is_moved_out_of_its_batch(write):
    table = textwizard.run(command("n F8.0 s A8", write("1,a\n2,b\n")))
    capsule = table.__arrow_c_stream__()
    stream = arrow_abi.of(capsule, b"arrow_array_stream", arrow_abi.Stream)
    batch = arrow_abi.next_batch(stream)
    moved = arrow_abi.Array()
    ctypes.memmove(ctypes.byref(moved), batch.children[0], ctypes.sizeof(moved))
    ctypes.memset(ctypes.addressof(batch.children[0].contents) + arrow_abi.Array.release.offset, 0,
                  ctypes.sizeof(ctypes.c_void_p))
    batch.release(batch)
    del capsule, stream, table
    gc.collect()
    values = ctypes.cast(moved.buffers[1], ctypes.POINTER(ctypes.c_double))
    assert [values[0], values[1]] == [1.0, 2.0]
    moved.release(moved)


def test_a_batch_released_on_another_thread(write):
    table = textwizard.run(command("n F8.0", write("1\n2\n")))
    capsule = table.__arrow_c_stream__()
    batch = arrow_abi.next_batch(
        arrow_abi.of(capsule, b"arrow_array_stream", arrow_abi.Stream))
    del table, capsule
    thread = threading.Thread(target=lambda: batch.release(batch))
    thread.start()
    thread.join()
    assert not batch.release


def test_imports_of_several_threads(write):
    paths = [write("n,s\n" + "".join(f"{i + k},{k}\n" for i in range(2000)), f"{k}.csv")
             for k in range(8)]

    def total(k):
        bare = textwizard.read(paths[k])
        declared = textwizard.run(command("n F8.0 s F8.0", paths[k], "/FIRSTCASE=2 /DELIMITERS=','"))
        assert bare.digest == declared.digest or bare.shape == declared.shape
        return int(bare.to_pandas()["n"].sum()), int(declared.to_numpy()["n"].sum())

    with concurrent.futures.ThreadPoolExecutor(8) as pool:
        sums = list(pool.map(total, range(8)))
    expected = [sum(i + k for i in range(2000)) for k in range(8)]
    assert sums == list(zip(expected, expected))


def test_other_threads_run_while_an_import_reads(tmp_path):
    """The writer of the pipe is Python: with the GIL held, this would never end."""
    pipe = tmp_path / "pipe"
    os.mkfifo(pipe)

    def fill():
        with open(pipe, "wb") as out:
            for i in range(20_000):
                out.write(b"%d\n" % i)

    writer = threading.Thread(target=fill)
    writer.start()
    table = textwizard.run(command("n F8.0", pipe))
    writer.join()
    assert table.to_numpy()["n"].sum() == 20_000 * 19_999 / 2


def test_ctrl_c_ends_an_import(tmp_path):
    """The signal comes once the import has opened the pipe, so this thread is inside of the library;
    Python's handler has to run there, before all is read that would come."""
    pipe = tmp_path / "pipe"
    os.mkfifo(pipe)
    is_closed = False

    def fill():
        nonlocal is_closed
        try:
            with open(pipe, "wb", buffering=0) as out:
                os.kill(os.getpid(), signal.SIGINT)
                for _ in range(400):
                    out.write(b"12345678,abcdefgh\n" * 50_000)
        except BrokenPipeError:
            is_closed = True

    writer = threading.Thread(target=fill)
    writer.start()
    with pytest.raises(KeyboardInterrupt):
        textwizard.run(command("n F8.0 s A8", pipe))
    writer.join()
    assert is_closed
    # And the next import works.
    path = tmp_path / "data.csv"
    path.write_text("1,a\n")
    assert len(textwizard.run(command("n F8.0 s A8", path))) == 1


def test_progress_can_end_an_import_that_waits_for_a_pipe(tmp_path):
    pipe = tmp_path / "pipe"
    os.mkfifo(pipe)
    is_closed = False

    def fill():
        nonlocal is_closed
        try:
            with open(pipe, "wb", buffering=0) as out:
                for _ in range(400):
                    out.write(b"12345678,abcdefgh\n" * 50_000)
        except BrokenPipeError:
            is_closed = True

    def stop(*_):
        raise LookupError("enough")

    writer = threading.Thread(target=fill)
    writer.start()
    with pytest.raises(LookupError, match="enough"):
        textwizard.read(pipe, progress=stop)
    writer.join()
    assert is_closed
