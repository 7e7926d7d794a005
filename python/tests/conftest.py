"""What several tests use."""
import pytest


def command(variables, path, more="/DELIMITERS=','"):
    """A GET DATA command for a delimited file."""
    return f"GET DATA /TYPE=TXT /FILE='{path}' {more} /VARIABLES={variables}."


@pytest.fixture
def write(tmp_path):
    """Writes a file and gives its path."""

    def written(content, name="data.csv"):
        path = tmp_path / name
        path.write_bytes(content if isinstance(content, bytes) else content.encode())
        return path

    return written
