"""One import by many workers, with a real scheduler and real worker processes."""
import asyncio
import concurrent.futures
import contextlib
import json
import os
import pathlib
import random
import signal
import subprocess
import sys
import time

import pandas
import pytest

import textwizard

dask = pytest.importorskip("dask")
distributed = pytest.importorskip("distributed")

import textwizard.dask  # noqa: E402
from textwizard import _manifest, _parts  # noqa: E402

# How often a worker is killed while it works.
KILLS = int(os.environ.get("TEXTWIZARD_DASK_KILLS", "2"))


@pytest.fixture(scope="module")
def client():
    with dask.config.set({"distributed.worker.daemon": True,
                          "distributed.scheduler.allowed-failures": 10}):
        with distributed.LocalCluster(n_workers=2, threads_per_worker=1, processes=True,
                                      dashboard_address=None) as cluster:
            with distributed.Client(cluster) as connected:
                yield connected


@pytest.fixture(scope="module")
def survey(tmp_path_factory):
    """Dates, whole numbers with and without missing ones, quotes, problems of several kinds."""
    lines = ["Number;Town;Day;Amount;Count;Share"]
    for row in range(1, 3001):
        town = f'"Town; {row % 17}"' if row % 3 else f"Graz {row % 5}"
        lines.append(f"{row};{town};{1 + row % 28:02}.{1 + row % 12:02}.{1990 + row % 40};"
                     f"{'NA' if row % 9 == 0 else row * 3};{row % 7};"
                     f"{'bad' if row % 500 == 0 else f'{row / 8:.3f}'.replace('.', ',')}"
                     f"{';surplus' if row == 1234 else ''}")
    path = tmp_path_factory.mktemp("survey") / "survey.csv"
    path.write_text("\n".join(lines) + "\n", encoding="utf-8")
    return path


def assert_same(found, whole):
    """That what Dask found out is what one reading found out."""
    assert found.command == whole.command
    assert found.reading == whole.reading
    assert found.evidence == whole.evidence
    assert found.digest == whole.digest
    assert found.ledger == whole.ledger


@pytest.mark.parametrize("part_size", ["10kB", 33_333, "1MiB"])
def test_a_frame_is_what_one_reading_gives(client, survey, part_size):
    whole = textwizard.read(survey)
    frame = textwizard.dask.read(survey, client, part_size)
    assert frame.npartitions == len(frame.textwizard.parts)
    expected = whole.to_pandas()
    assert list(frame.dtypes) == list(expected.dtypes)
    pandas.testing.assert_frame_equal(frame.compute().reset_index(drop=True), expected)
    assert_same(frame.textwizard, whole)
    problems = whole.problems.to_pandas()
    assert len(problems) > 0
    pandas.testing.assert_frame_equal(frame.textwizard.problems, problems, check_dtype=False)


@pytest.mark.parametrize("content, settings", [
    ("".join(f"{row},\u00e9t\u00e9 {row % 7}\n" for row in range(3000)).encode("utf-32"), {}),
    ("".join(f"{('Bern', chr(0x6771) + chr(0x141), chr(0xe5))[row % 3]:<4}{row:>6}\n"
             for row in range(3000)).encode(), {"fixed": "1-4,5-10"}),
], ids=["converted", "padded"])
def test_what_is_converted_first_is_one_part(client, tmp_path, content, settings):
    path = tmp_path / "data.txt"
    path.write_bytes(content)
    settings = {"header": False, **settings}
    whole = textwizard.read(path, **settings)
    assert len(whole) == 3000
    frame = textwizard.dask.read(path, client, "10kB", **settings)
    # Whoever reads a part of it converts all of it.
    assert frame.npartitions == 1
    pandas.testing.assert_frame_equal(frame.compute().reset_index(drop=True), whole.to_pandas())
    assert_same(frame.textwizard, whole)


def test_without_a_client_this_process_does_the_work(survey):
    frame = textwizard.dask.read(survey, part_size="50kB")
    assert frame.npartitions > 1
    assert frame["Count"].sum().compute(scheduler="sync") == sum(i % 7 for i in range(1, 3001))


def test_settings_go_to_every_worker(client, survey):
    settings = {"types": {"Number": "A8"}, "null_texts": ["NA", "bad"], "names_as_variables": True}
    whole = textwizard.read(survey, **settings)
    frame = textwizard.dask.read(survey, client, "40kB", **settings)
    pandas.testing.assert_frame_equal(frame.compute().reset_index(drop=True), whole.to_pandas())
    assert frame.textwizard.digest == whole.digest


def test_line_breaks_within_quotes_are_kept(client, tmp_path):
    path = tmp_path / "quoted.csv"
    path.write_text("id,text,n\n" + "".join(
        f'{i},"a{chr(10) if i % 3 == 0 else " "}b",{3 * i}\n' for i in range(1, 500)))
    whole = textwizard.read(path)
    frame = textwizard.dask.read(path, client, 1000)
    pandas.testing.assert_frame_equal(frame.compute().reset_index(drop=True), whole.to_pandas())
    assert_same(frame.textwizard, whole)


def test_a_file_whose_quotes_are_not_certain_is_one_part(client, tmp_path):
    path = tmp_path / "long.csv"
    # A value that is longer than what is tried of a part, in which it looks like lines of data.
    path.write_text("id,text,n\n" + "".join(f'{i},"a b",{i}\n' for i in range(100))
                    + '100,"' + 30 * ("x" * 50_000 + ",y,z\n") + '",100\n'
                    + "".join(f'{i},"a{chr(10)}b",{i}\n' for i in range(101, 200)))
    whole = textwizard.read(path)
    with pytest.warns(textwizard.ImportWarning, match="one part: .*not certain at byte"):
        frame = textwizard.dask.read(path, client, 300_000)
    assert frame.npartitions == 1
    assert_same(frame.textwizard, whole)
    assert frame.compute()["n"].tolist() == list(range(200))


def test_times_beyond_nanoseconds_are_an_error_or_objects(client, tmp_path):
    path = tmp_path / "old.csv"
    path.write_text("n,day\n" + "".join(f"{i},{1600 + i}-01-02\n" for i in range(300)))
    with pytest.raises(textwizard.FileError, match="day.*times"):
        textwizard.dask.read(path, client, 1000).compute()
    frame = textwizard.dask.read(path, client, 1000, times="objects").compute()
    assert frame["day"].tolist()[0].isoformat() == "1600-01-02"


def rows_of(path):
    return path.read_text(encoding="utf-8").splitlines()[1:]


def test_files_of_parts_are_those_of_one_reading(client, survey, tmp_path):
    whole = textwizard.read(survey)
    done = textwizard.dask.convert(survey, tmp_path / "csv", "csv", client, "30kB")
    manifest = json.loads((tmp_path / "csv/manifest.json").read_text(encoding="utf-8"))
    assert manifest == done.manifest or manifest == {"textwizard_manifest": 1, **done.manifest}
    assert manifest["cases"] == len(whole) and manifest["digest"] == whole.digest
    assert manifest["ledger"] == whole.ledger and manifest["command"] == whole.command
    names = [part["file"] for part in manifest["parts"]]
    assert sorted(os.listdir(tmp_path / "csv")) == ["manifest.json", *names]
    one = textwizard.dask.convert(survey, tmp_path / "one", "csv", client, "1GiB")
    assert one.digest == done.digest == whole.digest
    parts = [row for name in names for row in rows_of(tmp_path / "csv" / name)]
    assert parts == rows_of(tmp_path / "one/part-00001.csv")
    assert [part["cases"] for part in manifest["parts"]] == [
        len(rows_of(tmp_path / "csv" / name)) for name in names]


@pytest.mark.parametrize("format", ["parquet", "arrow"])
def test_other_formats(client, survey, tmp_path, format):
    done = textwizard.dask.convert(survey, tmp_path / format, format, client, "60kB")
    for part in done.manifest["parts"]:
        start = (tmp_path / format / part["file"]).read_bytes()[:6]
        assert start.startswith(b"PAR1" if format == "parquet" else b"ARROW1")


def test_a_second_run_finishes_what_is_there(client, survey, tmp_path):
    folder = tmp_path / "out"
    done = textwizard.dask.convert(survey, folder, "csv", client, "30kB")
    # As a run that died leaves it: the second part is written, the first is half written.
    keys = {part["file"]: part["key"] for part in done.manifest["parts"]}
    second = folder / "part-00002.csv"
    store = _manifest.Folder(str(folder))
    store.prepare()
    plan = done._plan
    (folder / "manifest.json").unlink()
    second.unlink()
    assert _parts.write(*plan.calls()[1], store, "csv")["key"] == keys[second.name]
    (folder / ".parts/00001.half.csv").write_text("half")
    (folder / "part-00001.csv").write_text("stale")
    written = second.stat().st_ino
    again = textwizard.dask.convert(survey, folder, "csv", client, "30kB")
    assert again.digest == done.digest and again.manifest["parts"] == done.manifest["parts"]
    assert second.stat().st_ino == written, "what was finished is kept"
    assert sorted(os.listdir(folder)) == ["manifest.json", *sorted(keys)]
    # A third one has nothing to do.
    third = textwizard.dask.convert(survey, folder, "csv", client, "30kB")
    assert third.digest == done.digest and second.stat().st_ino == written
    # Another cut leaves nothing of this one.
    other = textwizard.dask.convert(survey, folder, "csv", client, "1GiB")
    assert other.digest == done.digest
    assert sorted(os.listdir(folder)) == ["manifest.json", "part-00001.csv"]


def test_a_file_that_changes_between_the_passes_is_an_error(client, survey, tmp_path):
    path = tmp_path / "changing.csv"
    path.write_bytes(survey.read_bytes())
    frame = textwizard.dask.read(path, client, "30kB")
    with open(path, "a", encoding="utf-8") as file:
        file.write("3001;x;01.01.2020;1;1;1,0\n")
    with pytest.raises(textwizard.FileError, match="changed since"):
        frame.compute()


def test_wrong_arguments_are_said(client, survey, tmp_path):
    read, convert = textwizard.dask.read, textwizard.dask.convert
    with pytest.raises(textwizard.FileError, match="none.csv"):
        read(tmp_path / "none.csv", client)
    for size in (0, "many", "5 parsecs"):
        with pytest.raises(textwizard.SettingError, match="part_size"):
            read(survey, client, size)
    with pytest.raises(textwizard.SettingError, match="xlsx"):
        convert(survey, tmp_path / "x", "xlsx", client)
    with pytest.raises(textwizard.SettingError, match="sample_lines"):
        read(survey, client, sample_lines=10)
    with pytest.raises(textwizard.SettingError, match="progress"):
        read(survey, client, progress=print)
    with pytest.raises(TypeError, match="delimeter"):
        read(survey, client, delimeter=",")
    with pytest.raises(textwizard.Error, match="no such one"):
        read(survey, client, encoding="no such one")
    (tmp_path / "used").mkdir()
    (tmp_path / "used/letter.txt").write_text("dear")
    with pytest.raises(textwizard.FileError, match="letter.txt"):
        convert(survey, tmp_path / "used", "csv", client)


def await_two_workers(client):
    """Whoever restarts them may have given up on one."""
    with contextlib.suppress(TimeoutError, asyncio.TimeoutError):
        client.wait_for_workers(2, timeout=15)
        return
    client.cluster.scale(len(client.cluster.workers) + 1)
    client.wait_for_workers(2, timeout=120)


def test_a_worker_that_is_killed_changes_nothing(client, survey, tmp_path):
    digest = textwizard.read(survey).digest
    draw = random.Random(7)
    with concurrent.futures.ThreadPoolExecutor(1) as pool:
        for kill in range(KILLS):
            folder = tmp_path / str(kill)
            await_two_workers(client)
            victims = list(client.run(os.getpid).values())
            work = pool.submit(textwizard.dask.convert, survey, folder, "csv", client, "3kB")
            # Somewhere in the passes; where it is not quick enough, behind them.
            parts = draw.randrange(40)
            while not work.done() and len(list(folder.glob("part-*"))) < parts:
                time.sleep(0.001)
            with contextlib.suppress(ProcessLookupError):
                os.kill(draw.choice(victims), signal.SIGKILL)
            done = work.result()
            assert done.digest == digest
            files = [row for part in done.manifest["parts"]
                     for row in rows_of(folder / part["file"])]
            assert len(files) == 3000 and done.manifest["cases"] == 3000
            assert sorted(os.listdir(folder)) == [
                "manifest.json", *(part["file"] for part in done.manifest["parts"])]


class Commands:
    """A scheduler and two workers, started by their commands."""

    def __init__(self, folder):
        self.file = folder / "scheduler.json"
        self.file.unlink(missing_ok=True)
        self.scheduler = self._start("dask_scheduler", "--port", "0", "--no-dashboard",
                                     "--scheduler-file", self.file)
        self.workers = [self._start("dask_worker", "--no-dashboard", "--nthreads", "1",
                                    "--no-nanny", "--scheduler-file", self.file)
                        for _ in range(2)]

    @staticmethod
    def _start(command, *words):
        return subprocess.Popen([sys.executable, "-m", f"distributed.cli.{command}",
                                 *map(str, words)], stdout=subprocess.DEVNULL,
                                stderr=subprocess.DEVNULL)

    def connect(self):
        client = distributed.Client(scheduler_file=str(self.file), timeout="60s")
        client.wait_for_workers(2, timeout=60)
        return client

    def stop(self):
        for process in [*self.workers, self.scheduler]:
            process.kill()
            process.wait()


def test_a_scheduler_that_dies_is_an_error_and_a_second_run_finishes(survey, tmp_path):
    folder = tmp_path / "out"
    commands = Commands(tmp_path)
    try:
        client = commands.connect()
        # Once it is gone it is given up soon.
        with dask.config.set({"distributed.comm.timeouts.connect": "3s",
                              "distributed.comm.retry.count": 0}):
            with concurrent.futures.ThreadPoolExecutor(1) as pool:
                work = pool.submit(textwizard.dask.convert, survey, folder, "csv", client, "400B")
                while not work.done() and not list(pathlib.Path(folder).glob("part-*")):
                    time.sleep(0.001)
                commands.scheduler.kill()
                with pytest.raises(textwizard.dask.SchedulerLost, match="do this again"):
                    work.result()
            # It cannot take its leave of a scheduler that is gone.
            with contextlib.suppress(TimeoutError):
                client.close(timeout=1)
    finally:
        commands.stop()
    assert not (folder / "manifest.json").exists()
    kept = {path.name: path.stat().st_ino for path in folder.glob("part-*")}
    assert kept
    commands = Commands(tmp_path)
    try:
        with commands.connect() as client:
            done = textwizard.dask.convert(survey, folder, "csv", client, "400B")
    finally:
        commands.stop()
    assert done.digest == textwizard.read(survey).digest
    now = {path.name: path.stat().st_ino for path in folder.glob("part-*")}
    assert sum(now[name] == inode for name, inode in kept.items()) >= len(kept) - 2
