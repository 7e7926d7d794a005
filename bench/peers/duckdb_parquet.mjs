// DuckDB: the file as a Parquet file, from declared types, as its COPY writes it.
//
//   node duckdb_parquet.mjs FILE declared THREADS OUTPUT
import { readFileSync } from "node:fs";
import { DuckDBInstance, version } from "@duckdb/node-api";

const [file, , threads, output] = process.argv.slice(2);
const types = readFileSync(file.replace(/csv$/, "types"), "utf8").trim().split("\n");
const names = { integer: "BIGINT", real: "DOUBLE", date: "DATE", datetime: "TIMESTAMP", text: "VARCHAR" };
const columns = types.map((type, i) => `v${i + 1}: '${names[type]}'`).join(", ");
const declared = `header = true, delim = ',', quote = '"', escape = '"', auto_detect = false,
  dateformat = '%m/%d/%Y', timestampformat = '%d-%b-%Y %H:%M:%S', columns = {${columns}}`;

const instance = await DuckDBInstance.create(":memory:", { threads });
const connection = await instance.connect();
const start = performance.now();
await connection.run(
  `COPY (SELECT * FROM read_csv('${file}', ${declared})) TO '${output}' (FORMAT parquet)`);
const seconds = (performance.now() - start) / 1000;

const value = types[0] === "text" ? "strlen(v1)" : "v1";
const result = await connection.runAndReadAll(
  `SELECT count(*)::DOUBLE, sum(${value})::DOUBLE FROM '${output}'`);
const [rows, checksum] = result.getRows()[0];
console.log(JSON.stringify({ seconds, rows, checksum, version: version() }));
