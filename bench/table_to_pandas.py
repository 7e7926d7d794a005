"""A command's cases as a pandas data frame: reading and to_pandas(), each by itself too.

    python3 table_to_pandas.py COMMAND-FILE

The package has to be found (PYTHONPATH).
"""
import json
import pathlib
import sys
import time

import pandas  # noqa: F401  not a part of what is measured

import textwizard

start = time.perf_counter()
table = textwizard.run(pathlib.Path(sys.argv[1]))
read = time.perf_counter()
frame = table.to_pandas()
end = time.perf_counter()

first = frame.iloc[:, 0]
checksum = first.str.len().sum() if first.dtype == object else first.sum()
print(json.dumps({"seconds": end - start, "to_pandas": end - read, "rows": len(frame),
                  "checksum": float(checksum)}))
