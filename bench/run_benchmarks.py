"""Whole imports against the floor and against other readers, on generated files.

    python3 run_benchmarks.py --bin FOLDER [--rounds N] [--megabytes N] [--kinds KIND,...]
                              [--line-ends KIND,...] [--ways SECTION,...] [--longest SECONDS]
                              --report FILE

Every contestant reads every file once a round, one after the other, so that what disturbs the
machine disturbs all of them. All must agree on the rows and on a checksum of the first column;
otherwise the run ends with status 1. Prints the report and writes it to FILE, where it replaces what
stands between the two marks if FILE has them.
"""
import argparse
import json
import os
import pathlib
import subprocess
import sys
from dataclasses import dataclass, field

import report
import ways
from process import Failed, run

PEERS = pathlib.Path(__file__).parent / "peers"
THREADS = len(os.sched_getaffinity(0))
SEED = 1
# Runs on the file with a tenth of the rows are short and noisy, so there are more of them.
SMALL_RUNS = 3


@dataclass
class Contestant:
    """A reader in one of its modes, and what its runs on one file said."""
    name: str
    mode: str  # declared, sampled (types from its sample) or whole (types from the whole file)
    command: list
    seconds: list = field(default_factory=list)
    detection: list = field(default_factory=list)  # TextWizard: the part of it for the types
    peak: int = 0  # bytes
    text_columns: int = 0
    version: str = ""
    failure: str = ""


@dataclass
class DataFile:
    kind: str
    path: pathlib.Path  # of the data; commands and types stand beside it
    rows: int = 0
    checksum: float = 0.0
    columns: int = 0
    text_columns: int = 0

    @property
    def megabytes(self):
        return self.path.stat().st_size / 1e6


def sum_first_column(lines, is_text):
    """Rows, and the sum of the first column or of its lengths when it is text."""
    rows, total = 0, 0.0
    next(lines)
    for line in lines:
        first = line.split(b",", 1)[0]
        total += len(first) if is_text else float(first)
        rows += 1
    return rows, total


def check(file, who, rows, checksum):
    if (rows, checksum) != (file.rows, file.checksum):
        sys.exit(f"{who} read {rows} rows with checksum {checksum:.0f} from the {file.kind} file, "
                 f"which has {file.rows} and {file.checksum:.0f}")


def generate(options, kind, megabytes, same_rows=None):
    """The file, which has the rows of `same_rows` if that is given: lines that Python does not see."""
    folder = options.bin.parent / "data" / str(megabytes)
    folder.mkdir(parents=True, exist_ok=True)
    run([options.bin / "generate_data", kind, megabytes, SEED, folder])
    file = DataFile(kind, folder / f"{kind}.csv")
    types = file.path.with_suffix(".types").read_text().split()
    file.columns, file.text_columns = len(types), types.count("text")
    if same_rows:
        file.rows, file.checksum = same_rows.rows, same_rows.checksum
        return file
    with open(file.path, "rb") as lines:
        file.rows, file.checksum = sum_first_column(lines, types[0] == "text")
    return file


def check_cases(options, file):
    """That TextWizard's cases are those of the file, with types declared and found."""
    for command in (file.path.with_suffix(".sps"), file.path.with_name(f"{file.kind}-auto.sps")):
        dictionary = file.path.with_name("dictionary.json")
        process = subprocess.Popen(
            [options.bin / "textwizard", "run", "--quiet", "--show", "0", "--cases", "-", "--format",
             "csv", "--dictionary", dictionary, command], stdout=subprocess.PIPE)
        is_text = file.path.with_suffix(".types").read_text().startswith("text")
        check(file, command.name, *sum_first_column(process.stdout, is_text))
        if process.wait() != 0:
            sys.exit(f"{command.name} failed")
        types = [variable["type"] for variable in json.loads(dictionary.read_text())["variables"]]
        if types.count("string") != file.text_columns:
            sys.exit(f"{command.name} made {types.count('string')} strings, not {file.text_columns}")


def ours(options, file):
    """TextWizard's two contestants on `file`."""
    def command(ending):
        return [options.bin / "textwizard", "run", "--quiet", "--stats", "--show", "0",
                file.path.with_name(file.kind + ending)]

    return [Contestant("TextWizard", "declared", command(".sps")),
            Contestant("TextWizard", "whole", command("-auto.sps"))]


def contestants(options, file):
    def peer(name, *command):
        mode = command[-1]
        return Contestant(name, mode, [*command[:-2], PEERS / command[-2], file.path, mode, THREADS])

    r = ("Rscript", "--vanilla")
    return [
        Contestant("floor", "", [options.bin / "floor", file.path]),
        *ours(options, file),
        peer("DuckDB", "node", "duckdb.mjs", "declared"),
        peer("DuckDB", "node", "duckdb.mjs", "sampled"),
        peer("DuckDB", "node", "duckdb.mjs", "whole"),
        peer("Polars", "node", "polars.mjs", "declared"),
        peer("Polars", "node", "polars.mjs", "sampled"),
        peer("fread", *r, "fread.R", "declared"),
        peer("fread", *r, "fread.R", "sampled"),
        peer("vroom", *r, "vroom.R", "declared"),
        peer("vroom", *r, "vroom.R", "sampled"),
        peer("pandas", "/usr/bin/python3", "read_pandas.py", "declared"),
    ]


def take_turn(contestant, file, longest):
    """Runs the contestant once; one that fails is reported and has no more turns."""
    if contestant.failure:
        return
    who = f"{contestant.name} {contestant.mode}".strip()
    try:
        output, usage = run(contestant.command, longest)
    except Failed as failure:
        print(f"{who} on {file.kind}: {failure}", file=sys.stderr)
        if contestant.name in ("floor", "TextWizard"):
            sys.exit(1)
        contestant.failure = str(failure)
        return
    said = json.loads(output)
    peak = usage.ru_maxrss * 1024
    if contestant.name == "floor":
        contestant.seconds.append(said["seconds"])
    elif contestant.name == "TextWizard":
        if said["cases"] != file.rows:
            sys.exit(f"TextWizard read {said['cases']} of {file.rows} rows of {file.kind}")
        contestant.detection.append(said["dictionary_seconds"])
        contestant.seconds.append(said["dictionary_seconds"] + said["read_seconds"])
        contestant.text_columns = file.text_columns
        peak = said["peak_rss_bytes"]  # the system's figure begins at what this program holds
    else:
        check(file, who, said["rows"], said["checksum"])
        contestant.seconds.append(said["seconds"])
        contestant.text_columns = said["text"]
        contestant.version = said["version"]
    contestant.peak = max(contestant.peak, peak)
    print(f"{file.kind:10} {who:20} {contestant.seconds[-1]:8.3f} s {peak / 2**20:6.0f} MiB",
          file=sys.stderr)


def measure(options, kind):
    file = generate(options, kind, options.megabytes)
    small = generate(options, kind, max(options.megabytes // 10, 1))
    for each in (file, small):
        check_cases(options, each)
    large_runs, small_runs = contestants(options, file), ours(options, small)
    for _ in range(options.rounds):
        for contestant in large_runs:
            take_turn(contestant, file, options.longest)
        for contestant in small_runs * SMALL_RUNS:
            take_turn(contestant, small, options.longest)
    return report.Measured(file, large_runs, small, small_runs)


def measure_line_ends(options, kind):
    """The same rows with every line end, read in turn."""
    files = [generate(options, kind, options.megabytes)]
    files += [generate(options, kind + ending, options.megabytes, files[0])
              for ending in ("-crlf", "-cr")]
    for file in files:
        check_cases(options, file)
    runs = [ours(options, file) for file in files]
    for _ in range(options.rounds * SMALL_RUNS):
        for file, two in zip(files, runs):
            for contestant in two:
                take_turn(contestant, file, options.longest)
    return report.LineEnds(files, runs)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--bin", type=pathlib.Path, required=True, help="folder of the programs")
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--megabytes", type=int, default=200, help="size of every file")
    parser.add_argument("--kinds", default="mixed,numeric,strings,wide,short")
    parser.add_argument("--line-ends", default="short,mixed",
                        help="kinds that are also read with CR LF and CR")
    parser.add_argument("--ways", default=",".join(ways.SECTIONS),
                        help="what is compared with a plain reading of the same rows")
    parser.add_argument("--longest", type=int, default=900,
                        help="seconds after which a reader is left out")
    parser.add_argument("--report", type=pathlib.Path, required=True)
    options = parser.parse_args()
    measured = [measure(options, kind) for kind in options.kinds.split(",") if kind]
    line_ends = [measure_line_ends(options, kind) for kind in options.line_ends.split(",") if kind]
    compared = ways.measure(options, generate(options, "mixed", options.megabytes), PEERS, THREADS)
    text = report.markdown(options, THREADS, measured, line_ends, compared)
    print(text)
    report.write(options.report, text)


if __name__ == "__main__":
    main()
