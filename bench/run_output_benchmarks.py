"""What it costs to hand data on: files of columns, the C stream and pandas, against plain reading and
against other systems that do the same.

    python3 run_output_benchmarks.py --bin FOLDER [--rounds N] [--megabytes N] [--scratch FOLDER]
                                     [--longest SECONDS] --report FILE

The file is the mixed one, its types declared. Every contestant has its turn once a round. All must
agree on the rows and on a checksum of the first column; otherwise the run ends with status 1. The
report replaces what stands between its marks in FILE.
"""
import argparse
import json
import os
import pathlib
import statistics
import subprocess
import sys
import time

import process
import report
import run_benchmarks

BEGIN, END = "<!-- handed on: begin -->", "<!-- handed on: end -->"
# Goals: of plain reading, and how much faster than pandas.
FILE_SHARE = 1.5
STREAM_SHARE = 1.25
PANDAS_TIMES = 5


class Runner:
    """Runs contestants and keeps their seconds by name."""

    def __init__(self, options, file):
        self.options = options
        self.file = file
        self.command = file.path.with_suffix(".sps")
        self.seconds = {}
        self.sizes = {}
        self.failures = {}

    def note(self, name, seconds):
        self.seconds.setdefault(name, []).append(seconds)
        print(f"{name:40} {seconds:8.3f} s", file=sys.stderr)

    def scratch(self, ending):
        return self.options.scratch / f"textwizard-bench-{os.getpid()}.{ending}"

    def own(self, name, ending=None):
        """The program, from its start to its end."""
        words = [self.options.bin / "textwizard", "run", "--quiet", "--stats", "--show", "0"]
        if ending:
            words += ["-o", self.scratch(ending)]
        start = time.perf_counter()
        output = subprocess.run([*words, self.command], check=True, capture_output=True).stdout
        self.note(name, time.perf_counter() - start)
        if json.loads(output)["cases"] != self.file.rows:
            sys.exit(f"{name} read {json.loads(output)['cases']} of {self.file.rows} rows")
        if ending:
            self.sizes[name] = self.scratch(ending).stat().st_size
            self.scratch(ending).unlink()

    def other(self, name, *words, part=None, output=None):
        """A program that says its own seconds; `part` is another of its figures that is kept."""
        if name in self.failures:
            return
        try:
            text, _ = process.run(words, self.options.longest)
        except process.Failed as failure:
            self.failures[name] = str(failure)
            print(f"{name}: {failure}", file=sys.stderr)
            return
        said = json.loads(text)
        run_benchmarks.check(self.file, name, said["rows"], said["checksum"])
        self.note(name, said["seconds"])
        if part:
            self.note(f"{name}: {part}", said[part])
        if output:
            self.sizes[name] = output.stat().st_size
            output.unlink()

    def round(self):
        peers, file = run_benchmarks.PEERS, self.file.path
        threads = run_benchmarks.THREADS
        self.own("plain reading")
        self.own("Arrow file", "arrow")
        self.own("Parquet file", "parquet")
        self.other("C stream", self.options.bin / "stream", self.command)
        os.environ["PYTHONPATH"] = str(self.options.bin.parent / "python")
        self.other("pandas by TextWizard", "/usr/bin/python3",
                   pathlib.Path(__file__).with_name("table_to_pandas.py"), self.command,
                   part="to_pandas")
        self.other("pandas.read_csv", "/usr/bin/python3", peers / "read_pandas.py", file, "declared",
                   threads)
        for name in ("DuckDB", "Polars"):
            output = self.scratch(f"{name}.parquet")
            self.other(f"Parquet file by {name}", "node", peers / f"{name.lower()}_parquet.mjs", file,
                       "declared", threads, output, output=output)


def median(runner, name):
    return statistics.median(runner.seconds[name]) if name in runner.seconds else None


def markdown(options, runner):
    reading = median(runner, "plain reading")
    rows = []
    for name, seconds in runner.seconds.items():
        size = f"{runner.sizes[name] / 1e6:.0f}" if name in runner.sizes else ""
        rows.append([name, f"{statistics.median(seconds):.3f}",
                     f"{min(seconds):.3f} to {max(seconds):.3f}",
                     f"{statistics.median(seconds) / reading:.2f}", size, ""])
    rows += [[name, "", "", "", "", f"left out: {why}"] for name, why in runner.failures.items()]

    goals = []

    def goal(what, ours, other, most):
        ours, other = median(runner, ours), median(runner, other)
        if ours is None or other is None:
            goals.append([what, f"at most {most:.2f}", "", "not measured"])
        else:
            goals.append([what, f"at most {most:.2f}", f"{ours / other:.2f}",
                          report.met(ours / other <= most)])

    for name in ("Arrow file", "Parquet file"):
        goal(f"{name}: of plain reading", name, "plain reading", FILE_SHARE)
        for peer in ("DuckDB", "Polars"):
            goal(f"{name}: of {peer}'s Parquet file", name, f"Parquet file by {peer}", 1.0)
    goal("C stream: of plain reading", "C stream", "plain reading", STREAM_SHARE)
    for name in ("pandas by TextWizard", "pandas by TextWizard: to_pandas"):
        goal(f"{name}: of pandas.read_csv", name, "pandas.read_csv", 1 / PANDAS_TIMES)
    file = runner.file
    return "\n".join([
        f"Made by `make bench ROUNDS={options.rounds} MEGABYTES={options.megabytes}` of the mixed file, "
        f"{file.megabytes:.0f} MB, {file.rows:,} rows; types are declared; seconds are medians of "
        f"{options.rounds} rounds. TextWizard's program is timed from its start to its end, the others "
        "by themselves without theirs.", "",
        report.table(["Work", "Seconds", "Least to most", "Of plain reading", "MB written", ""], rows),
        report.table(["Goal", "Limit", "Measured", ""], goals)])


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--bin", type=pathlib.Path, required=True, help="folder of the programs")
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--megabytes", type=int, default=200)
    shared = pathlib.Path("/dev/shm")
    parser.add_argument("--scratch", type=pathlib.Path,
                        default=shared if shared.is_dir() else None,
                        help="where outputs are written; without a disk where there is one")
    parser.add_argument("--longest", type=int, default=900)
    parser.add_argument("--report", type=pathlib.Path, required=True)
    options = parser.parse_args()
    options.bin = options.bin.resolve()
    options.scratch = options.scratch or options.bin.parent / "data"
    runner = Runner(options, run_benchmarks.generate(options, "mixed", options.megabytes))
    for _ in range(options.rounds):
        runner.round()
    text = markdown(options, runner)
    print(text)
    report.write(options.report, text, BEGIN, END)


if __name__ == "__main__":
    main()
