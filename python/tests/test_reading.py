"""Bare files, commands, settings, and what is told of them."""
import gzip
import io
import pathlib

import pytest
import textwizard

from conftest import command

BARE = "Full name;Born;Children;Height\n" \
       "Ada Lovelace;1815-12-10;3;1,60\nAlan Turing;1912-06-23;0;1,78\n" \
       "Grace Hopper;1906-12-09;NA;1,68\n"


class PathLike:
    def __init__(self, path):
        self.path = path

    def __fspath__(self):
        return self.path


def test_a_bare_file(write):
    table = textwizard.read(write(BARE))
    assert [(f.name, f.type) for f in table.fields] == [
        ("Full name", "utf8"), ("Born", "date32"), ("Children", "int64"), ("Height", "float64")]
    assert table.to_pandas()["Height"].tolist() == [1.60, 1.78, 1.68]
    assert table.command.startswith("GET DATA")
    assert table.reading["delimiter"] == ";"
    assert len(table.digest) == 32 and int(table.digest, 16) >= 0
    assert table.ledger["bytes"] == len(BARE) and table.ledger["cases"] == 3
    assert len(table.problems) == 0


def test_its_command_gives_the_same_cases(write):
    table = textwizard.read(write(BARE))
    again = textwizard.run(table.command, decimal=",")
    assert again.digest == table.digest
    assert again.reading == {}


def fixed_columns(encoding):
    """Columns of characters that no code page of one byte has together."""
    towns = ["\u6771\u4eac", "\u0141\u00f3d\u017a", "\u00c5rhus", "Bern"]
    return "".join(f"{towns[row % 4]:<6}{row * 7:>5}2020-{1 + row % 12:02}-{1 + row % 28:02}\n"
                   for row in range(2000)).encode(encoding)


@pytest.mark.parametrize("content, settings, needs", [
    (BARE.encode(), {}, {"decimal": ","}),
    (b'a,b\n1,"x\ny"\n2,"z"\n3,NA\n', {}, {"join_quoted_lines": True}),
    ("a,b\n1,\u00e9\n2,\u00fc\n".encode("utf-32"), {}, {"transcode": "UTF-32"}),
    ("a,b\n1,\u00e9\n2,\u00fc\n".encode("utf-16-le"), {}, {"byte_order_mark": "utf-16le"}),
    (fixed_columns("utf-8"), {"fixed": "1-6,7-11,12-21", "header": False},
     {"pad_columns": "7,12,22"}),
    (b"a,b\n1,x\n2,?\n", {"null_texts": ["?"]}, {"null_texts": ["?"]}),
    (b"a,b\n1,x\n2,y\n", {}, {}),
])
def test_what_the_command_needs_besides(write, content, settings, needs):
    table = textwizard.read(write(content), **settings)
    assert table.run_settings == needs
    again = textwizard.run(table.command, **table.run_settings)
    assert again.digest == table.digest
    assert again.run_settings == needs


def test_every_way_to_name_a_file(write):
    path = write(BARE)
    digest = textwizard.read(str(path)).digest
    assert isinstance(path, pathlib.Path)
    for same in (path, bytes(path), PathLike(str(path)), PathLike(bytes(path))):
        assert textwizard.read(same).digest == digest
    assert textwizard.read(write(gzip.compress(BARE.encode()), "data.csv.gz")).digest == digest


def test_file_like_objects(write):
    path = write(BARE)
    digest = textwizard.read(path).digest
    assert textwizard.read(io.BytesIO(BARE.encode())).digest == digest
    assert textwizard.read(io.StringIO(BARE)).digest == digest
    with open(path, "rb") as file:
        assert textwizard.read(file).digest == digest
    with open(path, encoding="utf-8") as file:
        assert textwizard.read(file).digest == digest


def test_a_file_like_object_is_read_from_where_it_stands():
    file = io.BytesIO(b"not this\n" + BARE.encode())
    file.readline()
    assert textwizard.read(file).digest == textwizard.read(io.BytesIO(BARE.encode())).digest
    assert file.read() == b""


def test_what_a_file_like_object_raises_is_raised():
    class Broken:
        def read(self, size):
            raise ConnectionError("the line went dead")

    with pytest.raises(ConnectionError, match="went dead"):
        textwizard.read(Broken())


def test_settings_of_a_bare_file(write):
    path = write("1;2\n3;4\n")
    table = textwizard.read(path, header=False, names=["left", "right"], types={"right": "A4"},
                            integers=False)
    assert [(f.name, f.type) for f in table.fields] == [("left", "float64"), ("right", "utf8")]
    same = textwizard.read(path, header=False, names="left,right", types="right=A4", integers=False)
    assert same.digest == table.digest
    assert textwizard.read(path, delimiter="", header=False).shape == (2, 1)
    assert textwizard.read(path, first_line=2, header=False).shape == (1, 2)
    assert textwizard.read(write("n\n1\n-9\n3\n"), null_texts=["-9"]).ledger["null"] == 1
    fixed = textwizard.read(write("ab12\ncd34\n"), fixed="1-2,3-4", header=False)
    assert fixed.shape == (2, 2)


def test_no_null_texts_at_all(write):
    path = write("n\n1\nNA\n3\n")
    assert textwizard.read(path, types={"n": "F4"}).ledger["null"] == 1
    assert textwizard.read(path, types={"n": "F4"}, null_texts=[]).ledger["unreadable"] == 1


def test_encoding_and_decimal(write):
    path = write("name;n\nZürich;1,5\nMünchen;2,5\n".encode("latin-1"))
    table = textwizard.read(path, encoding="windows-1252", decimal=",")
    assert table.to_pandas().values.tolist() == [["Zürich", 1.5], ["München", 2.5]]
    table = textwizard.run(command("s A10 n F8.2", path, "/FIRSTCASE=2 /DELIMITERS=';'"),
                           code_page="ISO-8859-1", decimal=",")
    assert table.to_pandas().values.tolist() == [["Zürich", 1.5], ["München", 2.5]]


def test_problems(write):
    table = textwizard.run(command("n F4.0 s A8", write("1,a\nx,b\n3,c,surplus\n")))
    assert table.problems.names == ["kind", "case", "line", "byte", "variable", "format", "text",
                                    "detail"]
    problems = table.problems.to_pandas().values.tolist()
    assert problems[0][:7] == ["unreadable", 2, 2, 4, "n", "F4", "x"]
    assert problems[1][:7] == ["surplus", 3, 3, 8, None, None, "surplus"]
    assert "surplus" in repr(table.problems)
    assert textwizard.run(table.command, problem_limit=1).problems.shape == (1, 8)
    assert textwizard.run(table.command, problem_limit=-1).problems.shape == (0, 8)


def test_evidence_is_of_variables_whose_type_was_found(write):
    table = textwizard.run(command("n AUTO s A8", write("1,a\n2,b\n")))
    assert list(table.evidence) == ["n"]
    assert table.dictionary["cases"] == 2
    assert [v["name"] for v in table.dictionary["variables"]] == ["n", "s"]
    assert table.dictionary["ledger"] == table.ledger


def test_a_command_in_a_file(write):
    data = write("1,a\n")
    path = write("\ufeff" + command("n F4.0 s A8", data), "read.sps")
    assert textwizard.run(path).to_pandas().values.tolist() == [[1, "a"]]


def test_sniffing(write):
    assert textwizard.sniff(write(BARE))["delimiter"] == ";"
    assert textwizard.sniff(io.BytesIO(BARE.encode()))["delimiter"] == ";"
    assert textwizard.sniff(write(BARE), delimiter=",")["delimiter"] == ","


def test_warnings_are_warned_of(write):
    with pytest.warns(textwizard.ImportWarning):
        table = textwizard.run(command("s A20 n F4.0", write(b"a\xffb,1\n"),
                                       "/ENCODING='UTF8' /DELIMITERS=','"))
    assert len(table) == 1


def test_progress_is_told(write):
    told = []
    table = textwizard.read(write(BARE * 1000), header=False,
                            progress=lambda *counts: told.append(counts))
    assert len(table) == 4000
    assert told and all(len(counts) == 3 for counts in told)


def test_batches_are_tables_that_outlive_the_whole(write):
    table = textwizard.run(command("n F8.0", write("".join(f"{i}\n" for i in range(100_000)))))
    first = next(iter(table))
    del table
    assert first.shape == (65536, 1)
    assert first.to_numpy()["n"].sum() == 65535 * 65536 / 2
