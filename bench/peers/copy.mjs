// DuckDB: the rows of the file, typed, into another file of separated values.
//
//   node copy.mjs FILE TARGET THREADS
import { readFileSync } from "node:fs";
import { DuckDBInstance, version } from "@duckdb/node-api";

const [file, target, threads] = process.argv.slice(2);
const types = readFileSync(file.replace(/csv$/, "types"), "utf8").trim().split("\n");
const names = { integer: "BIGINT", real: "DOUBLE", date: "DATE", datetime: "TIMESTAMP", text: "VARCHAR" };
const columns = types.map((type, i) => `v${i + 1}: '${names[type]}'`).join(", ");

const instance = await DuckDBInstance.create(":memory:", { threads });
const connection = await instance.connect();
const start = performance.now();
const result = await connection.runAndReadAll(
  `COPY (SELECT * FROM read_csv('${file}', header = true, delim = ',', quote = '"', escape = '"',
     auto_detect = false, dateformat = '%m/%d/%Y', timestampformat = '%d-%b-%Y %H:%M:%S',
     columns = {${columns}})) TO '${target}' (FORMAT csv, HEADER)`);
const seconds = (performance.now() - start) / 1000;
console.log(JSON.stringify({ seconds, rows: Number(result.getRows()[0][0]), version: version() }));
