"""Readings that hold one batch at a time, and what is told of a bare file's columns."""
import gc

import pandas
import pytest

import textwizard


@pytest.fixture
def long_file(write):
    return write("n,text\n" + "".join(f"{i},text {i % 100}\n" for i in range(150_000)))


def test_batches_are_those_of_the_table(long_file):
    whole = textwizard.read(long_file)
    with textwizard.batches(long_file) as cases:
        assert cases.fields == whole.fields and cases.command == whole.command
        assert cases.digest is None and cases.problems is None and cases.ledger is None
        frames = [batch.to_pandas() for batch in cases]
    assert [len(frame) for frame in frames] == [65_536, 65_536, 150_000 - 2 * 65_536]
    pandas.testing.assert_frame_equal(pandas.concat(frames, ignore_index=True), whole.to_pandas())
    assert cases.digest == whole.digest and cases.ledger == whole.ledger
    assert cases.reading == whole.reading and cases.evidence == whole.evidence
    assert len(cases.problems) == 0
    assert list(cases) == [], "there is one pass"


def test_a_reading_may_be_left_early(long_file):
    cases = textwizard.batches(long_file)
    first = next(iter(cases))
    cases.close()
    assert list(cases) == [] and cases.digest is None
    assert len(first) == 65_536 and first.to_numpy()["n"][10] == 10
    abandoned = textwizard.batches(long_file)
    next(iter(abandoned))
    del abandoned
    gc.collect()
    assert len(textwizard.read(long_file)) == 150_000


def test_another_file_waits_for_a_reading(long_file, write):
    other = write("a,b\n1,2\n3,4\n", "other.csv")
    with textwizard.batches(long_file) as cases:
        iterator = iter(cases)
        next(iterator)
        with pytest.raises(textwizard.BusyError):
            textwizard.read(other)
        assert sum(len(batch) for batch in iterator) == 150_000 - 65_536
    assert len(textwizard.read(other)) == 2


def test_file_like_objects_last_as_long_as_the_reading(long_file):
    with open(long_file, "rb") as file, textwizard.batches(file) as cases:
        assert sum(len(batch) for batch in cases) == 150_000


def test_progress_tells_bytes_while_cases_are_read(long_file):
    told = []
    recipe_of = textwizard.run(textwizard.read(long_file).command,
                               progress=lambda *counts: told.append(counts))
    assert len(recipe_of) == 150_000
    size = long_file.stat().st_size
    assert told and all(0 <= seen <= size for cases, seen, _ in told if cases > 0)


def test_evidence_of_a_bare_file_says_what_else_columns_could_be(write):
    path = write("day,code\n" + "".join(f"{1 + i % 12:02}/{1 + i % 28:02}/2020,{i:03}\n"
                                        for i in range(100)))
    evidence = textwizard.read(path).evidence
    formats = {each["format"]: each for each in evidence["day"]["candidates"]}
    assert formats["ADATE10"]["read"] == 100 and formats["ADATE10"]["unread"] == 0
    assert 0 < formats["EDATE10"]["read"] < 100
    assert formats["EDATE10"]["line"] == 14 and formats["EDATE10"]["text"] == "01/13/2020"
    assert evidence["day"]["day_month"]["verdict"] == "decided"
    assert evidence["code"]["remarks"][0]["kind"] == "leading zeros"


def test_settings_that_there_are_not_are_named(long_file):
    with pytest.raises(TypeError, match="delimeter.*delimiter"):
        textwizard.read(long_file, delimeter=";")
    with pytest.raises(TypeError, match="types"):
        textwizard.run("GET DATA.", types="a=F1")
    with pytest.raises(TypeError, match="workers"):
        textwizard.sniff(long_file, workers=1)
