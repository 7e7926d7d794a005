// Polars: the file as a Parquet file, from declared types, read and written in one query. Its reader
// knows other layouts of dates, so these are read as text and converted on the way.
//
//   node polars_parquet.mjs FILE declared THREADS OUTPUT
import { readFileSync } from "node:fs";

const [file, , threads, output] = process.argv.slice(2);
process.env.POLARS_MAX_THREADS = threads;
const { default: pl } = await import("nodejs-polars");
const types = readFileSync(file.replace(/csv$/, "types"), "utf8").trim().split("\n");
const kinds = { integer: pl.Int64, real: pl.Float64, date: pl.String, datetime: pl.String, text: pl.String };
const schema = Object.fromEntries(types.map((type, i) => [`v${i + 1}`, kinds[type]]));
const dates = [];
types.forEach((type, i) => {
  const text = pl.col(`v${i + 1}`).str;
  if (type === "date") dates.push(text.strptime(pl.Date, "%m/%d/%Y"));
  if (type === "datetime") dates.push(text.strptime(pl.Datetime, "%d-%b-%Y %H:%M:%S"));
});

const start = performance.now();
const read = pl.readCSV(file, { schema });
(dates.length > 0 ? read.withColumns(...dates) : read).writeParquet(output);
const seconds = (performance.now() - start) / 1000;

const table = pl.readParquet(output);
const first = types[0] === "text" ? pl.col("v1").str.lengths() : pl.col("v1");
const checksum = Number(table.select(first.cast(pl.Float64).sum()).row(0)[0]);
console.log(JSON.stringify({ seconds, rows: table.height, checksum, version: pl.version }));
