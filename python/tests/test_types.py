"""Types and missing values, in Arrow, numpy and pandas."""
import datetime
import math

import numpy
import pandas
import pytest
import textwizard

import arrow_abi
from conftest import command

TYPED = ("whole F8.0 real F8.2 text A12 born EDATE10 at DATETIME23.2 took TIME8 day WKDAY9 "
         "month MONTH9")
ROWS = ("1,2.5,abc,31.01.2020,31-JAN-2020 12:00:00.50,01:00:00,Monday,March\n"
        ",,,,,,,\n")


@pytest.fixture
def table(write):
    return textwizard.run(command(TYPED, write(ROWS)), integers=True)


def test_fields_say_type_format_and_width(table):
    assert [(f.name, f.type) for f in table.fields] == [
        ("whole", "int64"), ("real", "float64"), ("text", "utf8"), ("born", "date32"),
        ("at", "timestamp[us]"), ("took", "duration[us]"), ("day", "int8"), ("month", "int8")]
    assert table.fields[1].metadata["format"] == "F8.2"
    assert table.fields[1].metadata["width"] == "8"
    assert table.fields[2].metadata["variable"] == "text"
    assert table.shape == (2, 8)
    assert len(table) == 2


def test_arrow_stream(table):
    schema = arrow_abi.of(keep := table.__arrow_c_schema__(), b"arrow_schema", arrow_abi.Schema)
    codes = ["l", "g", "u", "tdD", "tsu:", "tDu", "c", "c"]
    assert arrow_abi.columns_of(schema) == list(zip(table.names, codes))
    capsule = table.__arrow_c_stream__()
    stream = arrow_abi.of(capsule, b"arrow_array_stream", arrow_abi.Stream)
    batch = arrow_abi.next_batch(stream)
    # 2020-01-31 is 18,292 days after 1970-01-01.
    assert [arrow_abi.values_of(batch, i, code) for i, code in enumerate(codes)] == [
        [1, None], [2.5, None], ["abc", ""], [18292, None], [1580472000500000, None],
        [3600000000, None], [2, None], [3, None]]
    batch.release(batch)
    assert arrow_abi.next_batch(stream) is None
    del keep


def test_pandas(table):
    frame = table.to_pandas()
    assert list(frame.columns) == table.names
    assert [str(t) for t in frame.dtypes] == [
        "Int64", "float64", "object", "datetime64[ns]", "datetime64[ns]", "timedelta64[ns]", "Int8",
        "Int8"]
    assert frame.loc[0].tolist() == [
        1, 2.5, "abc", pandas.Timestamp(2020, 1, 31), pandas.Timestamp("2020-01-31 12:00:00.5"),
        pandas.Timedelta(hours=1), 2, 3]
    assert frame.loc[1].isna().tolist() == [True, True, False, True, True, True, True, True]
    assert frame.loc[1, "text"] == ""
    assert frame["whole"][1] is pandas.NA and math.isnan(frame["real"][1])
    assert frame["born"][1] is pandas.NaT


def test_whole_numbers_without_missing_are_plain(write):
    frame = textwizard.run(command("n F8.0 d WKDAY9", write("1,Monday\n2,Tuesday\n")),
                           integers=True).to_pandas()
    assert [str(t) for t in frame.dtypes] == ["int64", "int8"]
    assert frame["n"].tolist() == [1, 2]
    assert frame["d"].tolist() == [2, 3]


def test_numpy(table):
    arrays = table.to_numpy()
    assert list(arrays) == table.names
    assert isinstance(arrays["whole"], numpy.ma.MaskedArray)
    assert arrays["whole"].mask.tolist() == [False, True] and arrays["whole"][0] == 1
    assert arrays["real"][0] == 2.5 and numpy.isnan(arrays["real"][1])
    assert arrays["text"].tolist() == ["abc", ""]
    assert arrays["born"].dtype == "datetime64[D]"
    assert arrays["born"][0] == numpy.datetime64("2020-01-31") and numpy.isnat(arrays["born"][1])
    assert arrays["at"].dtype == "datetime64[us]"
    assert arrays["at"][0] == numpy.datetime64("2020-01-31T12:00:00.500000")
    assert arrays["took"].dtype == "timedelta64[us]"
    assert arrays["took"][0] == numpy.timedelta64(3600, "s") and numpy.isnat(arrays["took"][1])


def test_missing_values_anywhere_in_several_batches(write):
    count = 150_000
    is_missing = [i % 7 == 0 or 1000 <= i < 1100 for i in range(count)]
    lines = "".join(",,\n" if gone else f"{i},{i},01.01.{1700 + i % 500}\n"
                    for i, gone in enumerate(is_missing))
    table = textwizard.run(command("n F8.0 x E12.3 d EDATE10", write(lines)), integers=True)
    assert [len(batch) for batch in table] == [65536, 65536, count - 2 * 65536]
    frame = table.to_pandas()
    assert str(frame["n"].dtype) == "Int64"
    for column in frame:
        assert frame[column].isna().tolist() == is_missing
    there = [i for i, gone in enumerate(is_missing) if not gone]
    assert frame["n"].dropna().tolist() == there
    assert frame["x"].dropna().tolist() == there
    assert frame["d"].dropna().dt.year.tolist() == [1700 + i % 500 for i in there]


def test_dates_that_nanoseconds_do_not_reach_are_dates(write):
    data = "31.12.1600,01-JAN-1600 10:00:00\n,\n01.01.2000,01-JAN-2000 10:00:00\n"
    table = textwizard.run(command("d EDATE10 at DATETIME20", write(data)))
    frame = table.to_pandas()
    assert frame["d"].tolist() == [datetime.date(1600, 12, 31), None, datetime.date(2000, 1, 1)]
    assert frame["at"].tolist() == [datetime.datetime(1600, 1, 1, 10), None,
                                    datetime.datetime(2000, 1, 1, 10)]
    assert table.to_numpy()["d"][0] == numpy.datetime64("1600-12-31")


def test_times_at_the_ends_of_nanoseconds(write):
    frame = textwizard.run(command("d EDATE10", write("22.09.1677\n11.04.2262\n"))).to_pandas()
    assert frame["d"].tolist() == [pandas.Timestamp(1677, 9, 22), pandas.Timestamp(2262, 4, 11)]
    frame = textwizard.run(command("d EDATE10", write("21.09.1677\n"))).to_pandas()
    assert frame["d"].tolist() == [datetime.date(1677, 9, 21)]


@pytest.mark.parametrize("integers", [False, True])
def test_zero_cases(write, integers):
    table = textwizard.run(command(TYPED, write("")), integers=integers)
    assert len(table) == 0 and list(table) == []
    frame = table.to_pandas()
    assert frame.shape == (0, 8)
    assert str(frame["whole"].dtype) == ("int64" if integers else "float64")
    assert str(frame["born"].dtype) == "datetime64[ns]"
    assert [len(array) for array in table.to_numpy().values()] == [0] * 8
    capsule = table.__arrow_c_stream__()
    assert arrow_abi.next_batch(
        arrow_abi.of(capsule, b"arrow_array_stream", arrow_abi.Stream)) is None
    assert "0 cases" in repr(table) and "0 cases" in table._repr_html_()


def test_all_values_missing(write):
    frame = textwizard.run(command("a F8.0 b F8.0 c EDATE10", write(",,\n" * 100)),
                           integers=True).to_pandas()
    assert frame.isna().all().all() and frame.shape == (100, 3)


def test_longest_strings(write):
    longest = "x" * 32767
    table = textwizard.run(command("s A32767 n F4.0", write(f"{longest},1\ny,2\n")))
    assert table.to_pandas()["s"].tolist() == [longest, "y"]
    assert table.to_numpy()["s"].tolist() == [longest, "y"]


def test_strings_keep_their_characters(write):
    texts = ["Zürich", "東京", "🙂", "a\u0301", "plain", "plain"]
    table = textwizard.run(command("s A20 n F4.0", write("".join(f"{t},1\n" for t in texts)),
                                   "/ENCODING='UTF8' /DELIMITERS=','"))
    assert table.to_pandas()["s"].tolist() == texts


def test_invalid_utf8_is_replaced(write):
    with pytest.warns(textwizard.ImportWarning, match="no character"):
        table = textwizard.run(command("s A20 n F4.0", write(b"a\xffb,1\n\xc3,2\n")))
    assert table.to_pandas()["s"].tolist() == ["a\ufffdb", "\ufffd"]
    assert "\ufffd" in repr(table)


def test_many_different_and_repeating_strings(write):
    texts = [f"text {i}" if i % 3 else f"r{i % 5}" for i in range(100_000)]
    table = textwizard.run(command("s A20 n F4.0", write("".join(f"{t},1\n" for t in texts))))
    assert table.to_numpy()["s"].tolist() == texts
    # A column in which nothing repeats, and one in which only the ends differ.
    texts = [f"the same beginning {i:06} the same end" for i in range(50_000)]
    table = textwizard.run(command("s A40 n F4.0", write("".join(f"{t},1\n" for t in texts))))
    assert table.to_numpy()["s"].tolist() == texts


def test_ten_thousand_columns(write):
    names = " ".join(f"v{i} F8.0" for i in range(10_000))
    table = textwizard.run(command(names, write(",".join(map(str, range(10_000))) + "\n")))
    assert table.to_pandas().iloc[0].tolist() == list(range(10_000))
    assert repr(table).endswith(", …)")


def test_names_that_stand_twice(write):
    table = textwizard.read(write("x,x\n1,a\n2,b\n3,c\n"), header=True)
    assert table.names == ["x", "x"]
    frame = table.to_pandas()
    assert list(frame.columns) == ["x", "x"] and frame.iloc[1].tolist() == [2, "b"]
    arrays = table.to_numpy()
    assert len(arrays) == 2 and [a.tolist() for a in arrays.values()] == [[1, 2, 3], ["a", "b", "c"]]
