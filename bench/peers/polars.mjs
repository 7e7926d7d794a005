// Polars: a data frame. Its reader knows other layouts of dates, so declared dates are read as text
// and converted in the same query.
//
//   node polars.mjs FILE MODE THREADS     MODE: declared or sampled (its 100 rows)
import { readFileSync } from "node:fs";

const [file, mode, threads] = process.argv.slice(2);
process.env.POLARS_MAX_THREADS = threads;
const { default: pl } = await import("nodejs-polars");
const types = readFileSync(file.replace(/csv$/, "types"), "utf8").trim().split("\n");
const kinds = { integer: pl.Int64, real: pl.Float64, date: pl.String, datetime: pl.String, text: pl.String };
const options = {
  declared: { schema: Object.fromEntries(types.map((type, i) => [`v${i + 1}`, kinds[type]])) },
  sampled: {},
};
const dates = [];
if (mode === "declared") {
  types.forEach((type, i) => {
    const text = pl.col(`v${i + 1}`).str;
    if (type === "date") dates.push(text.strptime(pl.Date, "%m/%d/%Y"));
    if (type === "datetime") dates.push(text.strptime(pl.Datetime, "%d-%b-%Y %H:%M:%S"));
  });
}

const start = performance.now();
const read = pl.readCSV(file, options[mode]);
const table = dates.length > 0 ? read.withColumns(...dates) : read;
const seconds = (performance.now() - start) / 1000;

const first = types[0] === "text" ? pl.col("v1").str.lengths() : pl.col("v1");
const checksum = Number(table.select(first.cast(pl.Float64).sum()).row(0)[0]);
const text = table.dtypes.filter((type) => type.equals(pl.String)).length;
console.log(JSON.stringify({ seconds, rows: table.height, checksum, text, version: pl.version }));
