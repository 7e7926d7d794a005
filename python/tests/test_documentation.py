"""The example of the documentation, run as it stands."""
import doctest
import pathlib

DOCUMENT = pathlib.Path(__file__).parents[2] / "docs" / "python.md"


def test_the_notebook_prints_what_it_says(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    monkeypatch.setenv("COLUMNS", "100")
    # A fence ends the output above it.
    text = DOCUMENT.read_text(encoding="utf-8").replace("\n```", "\n\n```")
    test = doctest.DocTestParser().get_doctest(text, {}, "python.md", str(DOCUMENT), 0)
    assert len(test.examples) > 12
    report = []
    result = doctest.DocTestRunner().run(test, out=report.append)
    assert result.failed == 0, "".join(report)


def test_every_public_name_has_a_docstring():
    import textwizard

    for name in textwizard.__all__:
        thing = getattr(textwizard, name)
        assert thing.__doc__, name
        for member, value in vars(thing).items() if isinstance(thing, type) else ():
            if not member.startswith("_") and (callable(value) or isinstance(value, property)):
                assert value.__doc__, f"{name}.{member}"
