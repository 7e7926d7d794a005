"""Several files as one data set by many workers: what the program's import of the same files gives."""
import gzip
import json
import os
import pathlib
import subprocess

import pandas
import pytest

import textwizard

dask = pytest.importorskip("dask")
distributed = pytest.importorskip("distributed")

import textwizard.dask  # noqa: E402

# The program, for its import of the same files.
PROGRAM = os.environ.get("TEXTWIZARD_PROGRAM")


@pytest.fixture(scope="module")
def client():
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, processes=True,
                                  dashboard_address=None) as cluster:
        with distributed.Client(cluster) as connected:
            yield connected


def lines(first, last, line):
    return "".join(line(i) for i in range(first, last))


@pytest.fixture
def folder(tmp_path):
    """Files that differ in all that files of one structure may differ in."""
    folder = tmp_path / "data"
    folder.mkdir()
    (folder / "a.csv").write_text("id,town,day,amount\n" + lines(
        1, 400, lambda i: f"{i},Town {i % 7},{1 + i % 28:02}/{1 + i % 12:02}/2020,{i / 4}\n"))
    (folder / "b.csv").write_text("town;id;day;amount;more\n" + lines(
        400, 700, lambda i: f'"Bonn; {i % 3}";{i};{1 + i % 28:02}/{1 + i % 12:02}/2021;'
                            f"{str(i / 4).replace('.', ',')};{'bad' if i == 555 else i % 5}\n"))
    (folder / "c.csv").write_text("")
    (folder / "d.csv").write_text("id,town,day,amount\n")
    (folder / "e.csv").write_text("ID,Town,day,amount\n" + lines(
        700, 900, lambda i: f'{i},"Rome{chr(10) if i % 9 == 0 else " "}x",'
                            f"{1 + i % 28:02}/{1 + i % 12:02}/2022,{i if i % 50 else 'none'}\n"))
    (folder / "f.csv.gz").write_bytes(gzip.compress(("id,town,day,amount\n" + lines(
        900, 1100, lambda i: f"{i},Oslo,{1 + i % 28:02}/{1 + i % 12:02}/2023,{i / 2}\n")).encode()))
    (folder / "g.csv").write_bytes(("id,town,day,amount\n" + lines(
        1100, 1150, lambda i: f"{i},Köln,{1 + i % 28:02}/{1 + i % 12:02}/2024,{i}\n")).encode(
            "latin-1"))
    return folder


def imported(tmp_path, paths, *words):
    """What the program gives: dictionary, commands, problems, rows, digest."""
    if PROGRAM is None:
        pytest.skip("TEXTWIZARD_PROGRAM names no program")
    names = {kind: str(tmp_path / f"native.{kind}") for kind in ("json", "sps", "csv", "problems")}
    ended = subprocess.run(
        [PROGRAM, "import", *paths, "--digest", "--quiet", "--dictionary", names["json"],
         "--command", names["sps"], "--problems", names["problems"], "--problems-format", "csv",
         "-o", names["csv"], *words], capture_output=True, text=True, check=False)
    assert ended.returncode == 0, ended.stderr
    texts = {kind: pathlib.Path(name).read_text(encoding="utf-8") for kind, name in names.items()}
    return {"dictionary": json.loads(texts["json"]), "command": texts["sps"],
            "problems": texts["problems"], "rows": texts["csv"],
            "digest": ended.stdout.split("digest: ")[1].strip()}


def assert_same(found, native, tmp_path):
    assert found.command.strip() == native["command"].strip()
    assert found.digest == native["digest"]
    dictionary = found.dictionary
    for variable in dictionary["variables"]:
        variable.pop("evidence", None)
    assert dictionary == native["dictionary"]
    problems = pandas.read_csv(tmp_path / "native.problems", keep_default_na=False)
    told = found.problems
    assert list(told.columns) == list(problems.columns)
    assert len(problems) > 0
    for name in ("file", "kind", "case", "line", "byte", "variable", "format", "text", "detail"):
        assert told[name].tolist() == problems[name].tolist(), name


@pytest.mark.parametrize("part_size", [2000, "1MiB"])
def test_files_are_the_data_set_that_the_program_makes_of_them(client, folder, tmp_path, part_size):
    pattern = str(folder / "*.csv*")
    native = imported(tmp_path, [pattern], "--source-column", "file")
    frame = textwizard.dask.read(pattern, client, part_size, source_column="file")
    assert_same(frame.textwizard, native, tmp_path)
    assert (frame.npartitions > 10) == (part_size == 2000)
    cases = frame.compute()
    assert len(cases) == 1149
    assert cases["id"].tolist() == list(range(1, 1150))
    assert str(cases.dtypes["id"]) == "int64" and str(cases.dtypes["more"]) == "Int64"
    assert cases["more"].isna().sum() == 1149 - 299
    assert cases["file"].tolist()[399] == str(folder / "b.csv")
    assert cases["town"].tolist()[-1] == "Köln"
    assert list(cases.dtypes) == list(frame.dtypes)
    parts = frame.textwizard.parts
    assert [path for path, _, _ in parts].count(str(folder / "f.csv.gz")) == 1
    kinds = {pathlib.Path(told["file"]).name: told["kind"] for told in frame.textwizard.files}
    assert kinds == {"a.csv": "data", "b.csv": "data", "c.csv": "empty", "d.csv": "header-only",
                     "e.csv": "data", "f.csv.gz": "data", "g.csv": "data"}


def test_evidence_names_file_and_line(client, folder):
    evidence = textwizard.dask.read(folder / "*.csv", client).textwizard.evidence["amount"]
    [remark] = evidence["remarks"]
    assert (remark["file"], remark["line"], remark["text"], remark["count"]) == (
        str(folder / "e.csv"), 2, "none", 4)


def test_folders_hold_the_cases_of_all_files(client, folder, tmp_path):
    pattern = str(folder / "*.csv*")
    native = imported(tmp_path, [pattern])
    done = textwizard.dask.convert([pattern], tmp_path / "out", "csv", client, 3000)
    assert_same(done, native, tmp_path)
    manifest = json.loads((tmp_path / "out/manifest.json").read_text(encoding="utf-8"))
    assert manifest["digest"] == native["digest"]
    assert manifest["files"] == native["dictionary"]["files"]
    assert [pathlib.Path(source["path"]).name for source in manifest["sources"]] == [
        "a.csv", "b.csv", "d.csv", "e.csv", "f.csv.gz", "g.csv"]
    header = native["rows"].split("\n", 1)[0] + "\n"
    rows = header
    for part in manifest["parts"]:
        text = (tmp_path / "out" / part["file"]).read_text(encoding="utf-8")
        assert text.startswith(header)
        rows += text[len(header):]
    assert rows == native["rows"]
    # A second run has nothing to do.
    written = [os.stat(path).st_ino for path in sorted((tmp_path / "out").glob("part-*"))]
    again = textwizard.dask.convert([pattern], tmp_path / "out", "csv", client, 3000)
    assert again.digest == done.digest
    assert written == [os.stat(path).st_ino for path in sorted((tmp_path / "out").glob("part-*"))]


def test_columns_go_by_place(client, tmp_path):
    (tmp_path / "1.csv").write_text("a,b\n" + lines(1, 50, lambda i: f"{i},x\n"))
    (tmp_path / "2.csv").write_text("c,d\n" + lines(50, 90, lambda i: f"{i},y\n"))
    names = [str(tmp_path / name) for name in ("1.csv", "2.csv")]
    with pytest.raises(textwizard.FileError, match="2.csv.*skip_misfits"):
        textwizard.dask.read(names, client)
    frame = textwizard.dask.read(names, client, by="position").compute()
    assert frame.columns.tolist() == ["a", "b"] and frame["a"].tolist() == list(range(1, 90))
    left = textwizard.dask.read(names, client, skip_misfits=True)
    assert left["a"].compute().tolist() == list(range(1, 50))
    assert "0 of the 2 columns" in left.textwizard.files[1]["problem"]
    assert [each["kind"] for each in left.textwizard.drift] == ["left-out"]
    with pytest.raises(textwizard.SettingError, match='"name" or "position"'):
        textwizard.dask.read(names, client, by="luck")


def test_damaged_and_missing_files_are_named(client, folder):
    damaged = folder / "h.csv.gz"
    damaged.write_bytes((folder / "f.csv.gz").read_bytes()[:400])
    with pytest.raises(textwizard.FileError, match=r"h\.csv\.gz"):
        textwizard.dask.read(folder / "*.csv*", client)
    left = textwizard.dask.read(folder / "*.csv*", client, skip_misfits=True).textwizard
    assert left.files[-1]["kind"] == "left-out" and left.files[-1]["problem"]
    assert left.dictionary["cases"] == 1149
    with pytest.raises(textwizard.FileError, match="none.csv"):
        textwizard.dask.read([folder / "a.csv", folder / "none.csv"], client)
    with pytest.raises(textwizard.FileError, match=r"\*\.tsv"):
        textwizard.dask.read(folder / "*.tsv", client)


def test_a_file_that_changes_is_an_error(client, folder, tmp_path):
    frame = textwizard.dask.read(folder / "*.csv", client, 2000)
    with open(folder / "g.csv", "a", encoding="latin-1") as file:
        file.write("9,x,01/01/2020,1\n")
    with pytest.raises(textwizard.FileError, match="g.csv: the file changed"):
        frame.compute()


def test_a_file_that_is_cut_as_the_others_are_is_read_as_they_are(client, tmp_path):
    # By itself its commas are no delimiter: then it is one part.
    folder = tmp_path / "data"
    folder.mkdir()
    (folder / "a.csv").write_text("n,t\n" + lines(1, 300, lambda i: f"{i},x\n"))
    (folder / "b.csv").write_text("n,t\n7,y\n")
    (folder / "c.csv").write_text("n,t\n" + lines(8, 20, lambda i: f"{i},a;b;{i};c\n"))
    pattern = str(folder / "*.csv")
    native = imported(tmp_path, [pattern])
    frame = textwizard.dask.read(pattern, client, 40)
    assert frame.textwizard.digest == native["digest"]
    assert frame.compute()["t"].tolist()[-1] == "a;b;19;c"
    of_last = [part for part in frame.textwizard.parts if part[0].endswith("c.csv")]
    assert of_last == [(str(folder / "c.csv"), 0, None)]
