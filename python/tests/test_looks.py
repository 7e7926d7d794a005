"""What is shown of a table."""
import textwizard

from conftest import command

DATA = "1,2.5,Anna,31.01.2020,01:02:03.5\n,,<b>,,\n30,-1,a\tb,01.02.2020,100:00:00\n"
TYPED = "n F8.0 x F8.2 s A20 d EDATE10 t TIME12.2"


def test_types_stand_under_the_names_and_missing_values_are_seen(write, monkeypatch):
    monkeypatch.setenv("COLUMNS", "100")
    table = textwizard.run(command(TYPED, write(DATA)), integers=True)
    assert repr(table).split("\n") == [
        "    n        x  s              d             t",
        "int64  float64  utf8      date32  duration[us]",
        "-----  -------  ----  ----------  ------------",
        "    1      2.5  Anna  2020-01-31     1:02:03.5",
        " <NA>     <NA>  <b>         <NA>          <NA>",
        "   30       -1  a\\tb  2020-02-01     100:00:00",
        "3 cases, 5 columns"]


def test_a_long_table_shows_its_ends(write):
    table = textwizard.run(command("n F8.0", write("".join(f"{i}\n" for i in range(100_000)))))
    lines = repr(table).split("\n")
    assert [line.strip() for line in lines[3:-1]] == [
        "0", "1", "2", "3", "4", "…", "99995", "99996", "99997", "99998", "99999"]
    assert lines[-1] == "100,000 cases, 1 column"


def test_a_wide_table_names_what_it_does_not_show(write, monkeypatch):
    monkeypatch.setenv("COLUMNS", "30")
    table = textwizard.run(command("first F8.0 second F8.0 third F8.0 fourth F8.0",
                                   write("1,2,3,4\n")))
    lines = repr(table).split("\n")
    assert lines[0].split() == ["first", "second", "third"]
    assert lines[-1] == "1 case, 4 columns (not shown: fourth)"


def test_long_and_wide_texts_are_cut_and_aligned(write):
    data = f"{'x' * 500},1\n東京,2\n"
    lines = repr(textwizard.run(command("s A500 n F4.0", write(data)))).split("\n")
    assert lines[3] == "x" * 39 + "…        1"
    assert lines[4] == "東京" + " " * 36 + "        2"


def test_notebooks_get_html(write):
    shown = textwizard.run(command(TYPED, write(DATA)), integers=True)._repr_html_()
    assert "<th>n</th><th>x</th>" in shown
    assert "<th><small>int64</small></th><th><small>float64</small></th>" in shown
    assert "<td>&lt;b&gt;</td>" in shown and "<b>" not in shown
    assert "<td><em>&lt;NA&gt;</em></td>" in shown
    assert "<p>3 cases, 5 columns</p>" in shown


def test_times_before_zero(write):
    table = textwizard.run(command("d DATETIME20 t TIME12.2",
                                   write("31-DEC-1969 23:59:59,-00:00:01\n")))
    assert repr(table).split("\n")[3].split() == ["1969-12-31", "23:59:59", "-0:00:01"]
