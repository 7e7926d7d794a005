"""Reads databases and separated values back with Python's own readers and compares every cell with
the cases as raw JSON Lines.

    compare.py LIST

LIST: JSON Lines of {"cases": "x.jsonl" (--values raw), "dictionary": "x.json", "files": [...]}. Databases
are expected with the numbers behind dates and times. Ends with status 1 when anything differs.
"""
import csv
import json
import sqlite3
import sys

csv.field_size_limit(1 << 30)


def rows_of_database(path):
    database = sqlite3.connect(f"file:{path}?mode=ro", uri=True)
    try:
        checked = database.execute("PRAGMA integrity_check").fetchall()
        if checked != [("ok",)]:
            raise ValueError(f"integrity check: {checked}")
        (strict,) = database.execute("SELECT strict FROM pragma_table_list WHERE name = 'cases'").fetchone()
        if strict != 1:
            raise ValueError("the table of cases is not STRICT")
        return database.execute("SELECT * FROM cases ORDER BY rowid").fetchall()
    finally:
        database.close()


def rows_of_values(path, variables):
    delimiter = "\t" if path.endswith(".tsv") else ","
    with open(path, encoding="utf-8", newline="") as file:
        rows = list(csv.reader(file, delimiter=delimiter))
    header, rows = rows[0], rows[1:]
    if header != [variable["name"] for variable in variables]:
        raise ValueError(f"header {header}")
    return [
        tuple(
            text if variable["type"] == "string" else None if text == "" else float(text)
            for text, variable in zip(row, variables, strict=True)
        )
        for row in rows
    ]


def main():
    files = cells = 0
    differences = []
    with open(sys.argv[1], encoding="utf-8") as entries:
        for entry in map(json.loads, entries):
            with open(entry["cases"], encoding="utf-8", newline="\n") as file:
                cases = [tuple(json.loads(line).values()) for line in file]
            with open(entry["dictionary"], encoding="utf-8") as file:
                variables = json.load(file)["variables"]
            for path in entry["files"]:
                ending = path.rsplit(".", 1)[1]
                if ending not in ("sqlite", "csv", "tsv"):
                    continue
                files += 1
                try:
                    rows = rows_of_database(path) if ending == "sqlite" else rows_of_values(path, variables)
                except Exception as error:  # whatever a reader says of a file is a difference
                    differences.append(f"{path}: {error}")
                    continue
                if len(rows) != len(cases):
                    differences.append(f"{path}: {len(rows)} rows, not {len(cases)}")
                    continue
                for number, (row, case) in enumerate(zip(rows, cases)):
                    cells += len(case)
                    if row != case:
                        differences.append(f"{path}, row {number}: {row}, not {case}")
    for difference in differences[:20]:
        print(difference, file=sys.stderr)
    print(f"{files} readings, {cells} cells, {len(differences)} differences")
    return 1 if differences or files == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
