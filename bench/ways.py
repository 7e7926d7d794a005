"""The same rows in other ways: other arrangements and encodings, files that are written, few and
many workers, a file that is not in the page cache. Each way of TextWizard stands against its plain
reading of the rows, and beside what other tools take for the same work.
"""
import csv
import json
import os
import pathlib
import statistics
import sys
import time
from dataclasses import dataclass, field

from process import Failed, run

SECTIONS = ("arrangements", "outputs", "encodings", "workers", "cold")
# Bytes of the columns of the mixed file where they are fixed; text stands left, all else right.
FIXED_WIDTHS = (10, 12, 10, 12, 10, 20, 40, 12, 8, 10)
FIXED_TEXT = (3, 6, 8)
ENDING = ".csv"
OWN_PEAK = 64 * 2**20


@dataclass
class Way:
    name: str
    command: list
    # The way that its time is divided by, and the most that this may be.
    reference: object = None
    most: float = 0.0
    # Ours ends with a line of figures; a peer with one of its own, or is timed as a whole.
    ours: bool = True
    timed_whole: bool = False
    before: object = None  # is called before each run
    rows: int = 0
    seconds: list = field(default_factory=list)
    user: list = field(default_factory=list)
    system: list = field(default_factory=list)
    peak: int = 0
    note: str = ""
    failure: str = ""

    @property
    def share(self):
        return statistics.median(self.seconds) / statistics.median(self.reference.seconds)


@dataclass
class Section:
    title: str
    reference: str
    ways: list


def take_turn(way, longest):
    if way.failure:
        return
    if way.before:
        way.before()
    start = time.perf_counter()
    try:
        output, usage = run(way.command, longest)
    except Failed as failure:
        print(f"{way.name}: {failure}", file=sys.stderr)
        if way.ours:
            sys.exit(1)
        way.failure = str(failure)
        return
    seconds = time.perf_counter() - start
    peak = usage.ru_maxrss * 1024
    # A small program's figure is what this one held when it was started.
    if way.timed_whole and peak <= OWN_PEAK:
        peak = 0
    if not way.timed_whole:
        said = json.loads(output.splitlines()[-1])
        rows = said["cases" if way.ours else "rows"]
        if rows != way.rows:
            sys.exit(f"{way.name} read {rows} of {way.rows} rows")
        seconds = said.get("seconds") or sum(
            said[part] for part in ("dictionary_seconds", "read_seconds", "write_seconds"))
        peak = said.get("peak_rss_bytes", peak)
    way.seconds.append(seconds)
    way.user.append(usage.ru_utime)
    way.system.append(usage.ru_stime)
    way.peak = max(way.peak, peak)
    print(f"{way.name:40} {seconds:8.3f} s {peak / 2**20:6.0f} MiB", file=sys.stderr)


def write_command(path, text):
    path.write_text(text)
    return path


def fixed_command(data, automatic, formats):
    begin, lines = 0, []
    for i, width in enumerate(FIXED_WIDTHS):
        lines.append(f"    v{i + 1} {begin}-{begin + width - 1} {'AUTO' if automatic else formats[i]}")
        begin += width
    return (f"GET DATA\n  /TYPE=TXT\n  /FILE='{data}'\n  /ENCODING='UTF8'\n  /ARRANGEMENT=FIXED\n"
            "  /FIXCASE=1\n  /VARIABLES=/1\n" + "\n".join(lines) + ".\n")


def write_fixed(file):
    """The rows of the mixed file in fixed columns of bytes."""
    path = file.path.with_name("mixed-fixed.csv")
    with open(file.path, newline="", encoding="utf-8") as lines, open(path, "wb") as out:
        rows = csv.reader(lines)
        next(rows)
        for row in rows:
            cells = (text.encode() for text in row)
            out.write(b"".join(cell.ljust(width) if i in FIXED_TEXT else cell.rjust(width)
                               for i, (cell, width) in enumerate(zip(cells, FIXED_WIDTHS))) + b"\n")
    path.with_suffix(".types").write_text(file.path.with_suffix(".types").read_text())
    path.with_suffix(".widths").write_text("\n".join(map(str, FIXED_WIDTHS)) + "\n")
    return path


def forget(path):
    """Has the system drop the file's pages, as far as it does."""
    descriptor = os.open(path, os.O_RDONLY)
    os.fsync(descriptor)
    os.posix_fadvise(descriptor, 0, 0, os.POSIX_FADV_DONTNEED)
    os.close(descriptor)


class Ways:
    def __init__(self, options, file, peers, threads):
        self.options, self.file, self.peers, self.threads = options, file, peers, threads
        self.declared = file.path.with_suffix(".sps")
        self.automatic = file.path.with_name(f"{file.kind}-auto.sps")

    def ours(self, name, command, *arguments, **more):
        return Way(name, [self.options.bin / "textwizard", "run", "--quiet", "--stats", "--show", "0",
                          *arguments, command], rows=self.file.rows, **more)

    def peer(self, name, *command, **more):
        return Way(name, list(command), ours=False, rows=self.file.rows, **more)

    def changed(self, name, change, command=None):
        """A command like the file's, changed."""
        command = command or self.declared
        text = command.read_text()
        changed = change(text)
        if changed == text:
            sys.exit(f"the command for {name} is the same")
        return write_command(command.with_name(f"{command.stem}-{name}.sps"), changed)

    def arrangements(self):
        line = self.ours("by line", self.declared)
        by_values = lambda text: text.replace("/DELCASE=LINE", f"/DELCASE=VARIABLES {self.file.columns}")
        data = write_fixed(self.file)
        formats = [line.split()[1].rstrip(".")
                   for line in self.declared.read_text().partition("/VARIABLES=\n")[2].splitlines()]
        fixed = self.ours("FIXED", write_command(data.with_suffix(".sps"),
                                                 fixed_command(data, False, formats)), reference=line)
        fixed_auto = write_command(data.with_name("mixed-fixed-auto.sps"),
                                   fixed_command(data, True, formats))
        line_auto = self.ours("by line, AUTO", self.automatic, reference=line)
        fwf = lambda name, program, script, mode: self.peer(
            name, *program, self.peers / script, data, mode, self.threads, reference=fixed)
        r = ("Rscript", "--vanilla")
        return Section("Arrangements (mixed)", "the way before the comma", [
            line,
            self.ours("by number of values", self.changed("values", by_values), reference=line,
                      most=1.5),
            line_auto,
            self.ours("by number of values, AUTO",
                      self.changed("values", by_values, self.automatic), reference=line_auto),
            fixed,
            self.ours("FIXED, AUTO", fixed_auto, reference=fixed, most=1.2,
                      note="of FIXED, as the peers below"),
            fwf("vroom_fwf", r, "fixed.R", "vroom"),
            fwf("readr read_fwf", r, "fixed.R", "readr"),
            fwf("pandas read_fwf", ("/usr/bin/python3",), "read_fwf.py", "declared")])

    def outputs(self):
        reading = self.ours("reading alone", self.declared)
        target = self.file.path.with_name("written")
        source = self.file.path

        def writing(name, form, file, **more):
            return self.ours(name, self.declared, "--cases", file, "--format", form,
                             reference=reading, **more)

        return Section("Files of text that are written (mixed)", "reading alone", [
            reading,
            writing("CSV, written to nowhere", "csv", "/dev/null", most=1.3),
            writing("JSON Lines, written to nowhere", "jsonl", "/dev/null", most=1.6),
            writing("CSV to a file", "csv", target),
            writing("JSON Lines to a file", "jsonl", target),
            self.peer("DuckDB COPY, CSV to CSV", "node", self.peers / "copy.mjs", source, target,
                      self.threads, reference=reading, note="dates are read and written as dates"),
            self.peer("Miller, CSV to CSV", "sh", "-c", 'mlr --icsv --ocsv cat "$1" > "$2"', "sh",
                      source, target, timed_whole=True, reference=reading,
                      note="the program as a whole; no types"),
            self.peer("csvkit csvformat, CSV to CSV", "sh", "-c", 'csvformat "$1" > "$2"', "sh",
                      source, target, timed_whole=True, reference=reading,
                      note="the program as a whole; no types")])

    def encodings(self):
        utf8 = self.ours("UTF-8", self.declared)
        text = self.file.path.read_text(encoding="utf-8")
        ways = [utf8]
        for name, encoding, mark, subcommand, arguments in (
                ("Latin-1", "latin-1", b"", "LOCALE", ("--locale-code-page", "ISO-8859-1")),
                ("UTF-16", "utf-16-le", b"\xff\xfe", "UTF16", ())):
            path = self.file.path.with_name(f"mixed-{encoding}{ENDING}")
            # Of what the page lacks, a letter alone stays.
            kept = text.translate({ord("\u0141"): "L", ord("\u017a"): "z"})
            path.write_bytes(mark + kept.encode(encoding))
            command = self.changed(encoding, lambda old: old.replace("'UTF8'", f"'{subcommand}'")
                                   .replace(self.file.path.name, path.name))
            ways.append(self.ours(name, command, *arguments, reference=utf8,
                                  note=f"{path.stat().st_size / 1e6:.0f} MB"))
        return Section("Encodings (mixed)", "UTF-8", ways)

    def workers(self):
        ways = []
        for command, what in ((self.declared, "declared"), (self.automatic, "AUTO")):
            one = None
            for count in (1, 2, 4):
                way = self.ours(f"{what}, --workers {count}", command, "--workers", count,
                                reference=one)
                one = one or way
                ways.append(way)
        return Section("Workers (mixed)", "--workers 1", ways)

    def cold(self):
        drop = lambda: forget(self.file.path)
        warm = self.ours("in the page cache", self.declared)
        plain = self.peer("cat, not in the page cache", "sh", "-c", 'cat "$1" > /dev/null', "sh",
                          self.file.path, timed_whole=True, before=drop, reference=warm)
        return Section("Not in the page cache (mixed)", "what is in it", [
            warm, self.ours("not in the page cache", self.declared, before=drop, reference=warm),
            self.ours("not in the page cache, AUTO", self.automatic, before=drop, reference=warm),
            plain])


def measure(options, file, peers, threads):
    """The sections that are wanted, of the mixed file."""
    ways = Ways(options, file, pathlib.Path(peers), threads)
    sections = [getattr(ways, name)() for name in options.ways.split(",") if name]
    for section in sections:
        for _ in range(options.rounds):
            for way in section.ways:
                take_turn(way, options.longest)
        for way in section.ways:
            if way.reference is not None and way.reference.failure:
                sys.exit(f"{way.reference.name} was not measured")
    return sections
