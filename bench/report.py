"""The report of a run of the benchmarks, in Markdown."""
import os
import pathlib
import platform
import re
import statistics
import subprocess
from dataclasses import dataclass

BEGIN, END = "<!-- measured: begin -->", "<!-- measured: end -->"
MIB = 2**20

# Goals. Shares are of the fastest peer that loads typed columns from declared types, of DuckDB where
# it finds the types in the whole file, and of the fastest that finds them in a sample; ours then is
# finding the types in the whole file and reading it.
DECLARED_SHARE = {"mixed": 0.7, "numeric": 1.2, "strings": 1.0, "wide": 1.0, "short": 1.0}
WHOLE_SHARE = 0.4
SAMPLED_SHARE = 1.0
# Of the floor: reading with declared types, and finding types alone.
DECLARED_OF_FLOOR = {"mixed": 1.4, "numeric": 1.1, "strings": 1.05, "wide": 1.05}
FINDING_OF_FLOOR = 1.2
PEAK_MIB = 32
TIME_PROPORTION = 0.05
MEMORY_PROPORTION = 0.1
# Time of a file whose lines end with CR LF or CR, against the same lines with LF.
LINE_END_SHARE = 1.1


@dataclass
class Measured:
    """One file: the contestants on it, and TextWizard's two on the one with a tenth of the rows."""
    file: object
    contestants: list
    small: object
    small_contestants: list

    def find(self, name, mode):
        return next(c for c in self.contestants if (c.name, c.mode) == (name, mode))

    def ours(self, mode):
        return self.find("TextWizard", "declared" if mode == "declared" else "whole")

    def best_declared(self):
        """The fastest peer from declared types, or None."""
        peers = [c for c in self.contestants if is_peer(c) and c.mode == "declared"
                 and c.text_columns == self.file.text_columns and c.seconds]
        return min(peers, key=median, default=None)

    def best_sampled(self):
        """The fastest peer that finds the types in a sample, or None."""
        peers = [c for c in self.contestants if is_peer(c) and c.mode == "sampled" and c.seconds]
        return min(peers, key=median, default=None)


@dataclass
class LineEnds:
    """The same rows with LF, CR LF and CR: the files, and TextWizard's two contestants on each."""
    files: list
    runs: list

    NAMES = ("LF", "CR LF", "CR")


def is_peer(contestant):
    return contestant.name not in ("floor", "TextWizard")


def median(contestant):
    return statistics.median(contestant.seconds)


def table(head, rows):
    lines = [head, ["---"] + ["---:"] * (len(head) - 2) + ["---"], *rows]
    return "\n".join("| " + " | ".join(line) + " |" for line in lines) + "\n"


def first_line(*command):
    try:
        return subprocess.run(command, capture_output=True, text=True).stdout.partition("\n")[0]
    except FileNotFoundError:
        return "not installed"


def machine(threads, measured):
    processor = re.search(r"model name\s*: (.*)", pathlib.Path("/proc/cpuinfo").read_text())
    memory = os.sysconf("SC_PAGE_SIZE") * os.sysconf("SC_PHYS_PAGES") / 2**30
    versions = {c.name: c.version for m in measured for c in m.contestants if c.version}
    peers = ", ".join(f"{name} {version}" for name, version in versions.items())
    r = first_line("Rscript", "--version")
    return [f"- Processor: {processor.group(1) if processor else platform.machine()}, {threads} "
            f"threads used of {os.cpu_count()}; memory {memory:.0f} GiB",
            f"- System: {platform.freedesktop_os_release()['PRETTY_NAME']}",
            f"- Compiler: {first_line('g++', '--version')}",
            f"- Peers: {peers}; Node.js {first_line('node', '--version')}, {r}, "
            f"Python {platform.python_version()}"]


def note(measured, contestant):
    if contestant.failure:
        return f"left out: {contestant.failure}"
    if contestant.name == "floor":
        return "bytes cut and numbers parsed, no types"
    if contestant.name == "TextWizard" and contestant.mode == "whole":
        detection = statistics.median(contestant.detection)
        return f"types found in {detection:.3f} s, then read"
    more = contestant.text_columns - measured.file.text_columns
    return f"{more} of the dates left as text" if more > 0 else ""


def file_section(measured):
    floor = median(measured.contestants[0])
    rows = []
    for c in measured.contestants:
        row = [c.name, c.mode]
        if c.failure:
            row += [""] * 5
        else:
            share = median(measured.ours(c.mode)) / median(c)
            row += [f"{median(c):.3f}", f"{min(c.seconds):.3f} to {max(c.seconds):.3f}",
                    f"{median(c) / floor:.1f}", f"{share:.2f}" if is_peer(c) else "",
                    f"{c.peak / MIB:.0f}"]
        rows.append(row + [note(measured, c)])
    file = measured.file
    return (f"### {file.kind}: {file.megabytes:.0f} MB, {file.rows:,} rows, {file.columns:,} columns"
            "\n\n" + table(["Reader", "Types", "Seconds", "Least to most", "Of the floor",
                            "TextWizard's share", "Peak MiB", ""], rows))


def limit(goal, most, ours, other):
    """A row for a share of a contestant's time, which may be missing."""
    if other is None or not other.seconds:
        return [goal, f"at most {most:.2f}", "", "not measured"]
    share = median(ours) / median(other)
    return [f"{goal} ({other.name})", f"at most {most:.2f}", f"{share:.2f}", met(share <= most)]


def of_floor(what, share, most):
    return [f"{what}: of the floor", f"at most {most:.2f}", f"{share:.2f}", met(share <= most)]


def met(is_met):
    return "met" if is_met else "**missed**"


def goals(measured):
    kind = measured.file.kind
    whole = measured.ours("whole")
    rows = [limit(f"{kind}, declared: share of the best peer", DECLARED_SHARE[kind],
                  measured.ours("declared"), measured.best_declared()),
            limit(f"{kind}, types from the whole file: share of the same", WHOLE_SHARE, whole,
                  measured.find("DuckDB", "whole"))]
    rows.append(limit(f"{kind}, types from the whole file: share of the best from a sample",
                      SAMPLED_SHARE, whole, measured.best_sampled()))
    floor = median(measured.contestants[0])
    if kind in DECLARED_OF_FLOOR:
        rows.append(of_floor(f"{kind}, declared", median(measured.ours("declared")) / floor,
                             DECLARED_OF_FLOOR[kind]))
        rows.append(of_floor(f"{kind}, finding the types of the whole file",
                             statistics.median(whole.detection) / floor, FINDING_OF_FLOOR))
    more = measured.file.rows / measured.small.rows
    for small in measured.small_contestants:
        ours = measured.ours(small.mode)
        what = f"{kind}, {'declared' if small.mode == 'declared' else 'AUTO'}"
        peak = ours.peak / MIB
        rows.append([f"{what}: peak memory", f"under {PEAK_MIB} MiB", f"{peak:.1f} MiB",
                     met(peak < PEAK_MIB)])
        time = median(ours) / median(small) / more
        memory = ours.peak / small.peak
        rows.append([f"{what}: time a row when there are {more:.1f} times the rows",
                     f"{1 - TIME_PROPORTION:.2f} to {1 + TIME_PROPORTION:.2f}", f"{time:.2f}",
                     met(abs(time - 1) <= TIME_PROPORTION)])
        rows.append([f"{what}: memory when there are {more:.1f} times the rows",
                     f"at most {1 + MEMORY_PROPORTION:.2f}", f"{memory:.2f}",
                     met(memory <= 1 + MEMORY_PROPORTION)])
    return rows


def line_end_share(contestant, lf):
    """Least against least: what disturbs a machine only ever adds to a time."""
    return min(contestant.seconds) / min(lf.seconds)


def line_ends_section(each):
    rows = []
    for name, two in zip(each.NAMES, each.runs):
        for lf, c in zip(each.runs[0], two):
            rows.append([name, c.mode, f"{median(c):.3f}",
                         f"{min(c.seconds):.3f} to {max(c.seconds):.3f}",
                         f"{line_end_share(c, lf):.2f}", ""])
    file = each.files[0]
    return (f"### Line ends: {file.kind}, {file.rows:,} rows of {file.columns:,} columns\n\n"
            + table(["Line end", "Types", "Seconds", "Least to most", "Of LF", ""], rows))


def line_end_goals(each):
    return [[f"{each.files[0].kind}, {'declared' if c.mode == 'declared' else 'AUTO'}, lines that end "
             f"with {name}: time of those with LF", f"at most {LINE_END_SHARE:.2f}",
             f"{line_end_share(c, lf):.2f}", met(line_end_share(c, lf) <= LINE_END_SHARE)]
            for name, two in list(zip(each.NAMES, each.runs))[1:]
            for lf, c in zip(each.runs[0], two)]


def ways_section(section):
    """One way after another; a share is of the way that it names."""
    rows = []
    for way in section.ways:
        row = [way.name]
        if way.failure:
            row += [""] * 5 + [f"left out: {way.failure}"]
        else:
            share = f"{way.share:.2f}" if way.reference else ""
            row += [f"{median(way):.3f}", f"{min(way.seconds):.3f} to {max(way.seconds):.3f}",
                    f"{statistics.median(way.user):.2f} + {statistics.median(way.system):.2f}", share,
                    f"{way.peak / MIB:.0f}" if way.peak else "", way.note]
        rows.append(row)
    return (f"### {section.title}\n\n"
            + table(["", "Seconds", "Least to most", "Processor (user + system)",
                     f"Of {section.reference}", "Peak MiB", ""], rows))


def ways_goals(section):
    return [[f"{section.title}: {way.name}, of {way.reference.name}", f"at most {way.most:.2f}",
             f"{way.share:.2f}", met(way.share <= way.most)]
            for way in section.ways if way.most and not way.failure]


def markdown(options, threads, measured, line_ends, compared):
    lines = [f"Made by `make bench ROUNDS={options.rounds} MEGABYTES={options.megabytes}`; seconds "
             f"are medians of {options.rounds} rounds.", "", *machine(threads, measured), ""]
    lines += [file_section(each) for each in measured]
    lines += [line_ends_section(each) for each in line_ends]
    lines += [ways_section(each) for each in compared]
    lines += ["### Goals", "", table(["Goal", "Limit", "Measured", ""],
                                     [row for each in measured for row in goals(each)]
                                     + [row for each in line_ends for row in line_end_goals(each)]
                                     + [row for each in compared for row in ways_goals(each)])]
    return "\n".join(lines)


def write(path, text, begin=BEGIN, end=END):
    old = path.read_text() if path.exists() else ""
    if begin in old and end in old:
        text = old.partition(begin)[0] + begin + "\n" + text + end + old.partition(end)[2]
    path.write_text(text)
