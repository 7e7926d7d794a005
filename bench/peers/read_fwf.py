"""pandas' reader of fixed columns. Dates are left as text.

    python3 read_fwf.py FILE declared THREADS
"""
import json
import sys
import time

import pandas

file = sys.argv[1]
with open(file.removesuffix("csv") + "types") as lines:
    types = lines.read().split()
with open(file.removesuffix("csv") + "widths") as lines:
    widths = [int(width) for width in lines]
names = [f"v{i + 1}" for i in range(len(types))]
kinds = {"integer": "int64", "real": "float64", "date": str, "datetime": str, "text": str}

start = time.perf_counter()
table = pandas.read_fwf(file, widths=widths, header=None, names=names,
                        dtype={n: kinds[t] for n, t in zip(names, types)}, keep_default_na=False)
seconds = time.perf_counter() - start
print(json.dumps({"seconds": seconds, "rows": len(table), "version": pandas.__version__}))
