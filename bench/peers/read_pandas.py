"""pandas with its C engine, which is single-threaded. Dates are read as text and converted.

    python3 read_pandas.py FILE declared THREADS
"""
import json
import sys
import time

import pandas

file = sys.argv[1]
with open(file.removesuffix("csv") + "types") as lines:
    types = lines.read().split()
names = [f"v{i + 1}" for i in range(len(types))]
kinds = {"integer": "int64", "real": "float64", "date": str, "datetime": str, "text": str}
layouts = {"date": "%m/%d/%Y", "datetime": "%d-%b-%Y %H:%M:%S"}

start = time.perf_counter()
table = pandas.read_csv(file, engine="c", dtype={n: kinds[t] for n, t in zip(names, types)},
                        keep_default_na=False)
for name, kind in zip(names, types):
    if kind in layouts:
        table[name] = pandas.to_datetime(table[name], format=layouts[kind])
seconds = time.perf_counter() - start

first = table["v1"].str.len() if types[0] == "text" else table["v1"]
print(json.dumps({"seconds": seconds, "rows": len(table), "checksum": float(first.sum()),
                  "text": int((table.dtypes == object).sum()), "version": pandas.__version__}))
