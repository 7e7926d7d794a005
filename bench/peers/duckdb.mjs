// DuckDB: a table in memory made from the file.
//
//   node duckdb.mjs FILE MODE THREADS     MODE: declared, sampled (its 20,480 rows) or whole
import { readFileSync } from "node:fs";
import { DuckDBInstance, version } from "@duckdb/node-api";

const [file, mode, threads] = process.argv.slice(2);
const types = readFileSync(file.replace(/csv$/, "types"), "utf8").trim().split("\n");
const names = { integer: "BIGINT", real: "DOUBLE", date: "DATE", datetime: "TIMESTAMP", text: "VARCHAR" };
const columns = types.map((type, i) => `v${i + 1}: '${names[type]}'`).join(", ");
const options = {
  declared: `header = true, delim = ',', quote = '"', escape = '"', auto_detect = false,
             dateformat = '%m/%d/%Y', timestampformat = '%d-%b-%Y %H:%M:%S', columns = {${columns}}`,
  sampled: "sample_size = 20480",
  whole: "sample_size = -1",
};

const instance = await DuckDBInstance.create(":memory:", { threads });
const connection = await instance.connect();
const start = performance.now();
await connection.run(`CREATE TABLE t AS SELECT * FROM read_csv('${file}', ${options[mode]})`);
const seconds = (performance.now() - start) / 1000;

const value = types[0] === "text" ? "strlen(v1)" : "v1";
const result = await connection.runAndReadAll(`SELECT count(*)::DOUBLE, sum(${value})::DOUBLE FROM t`);
const [rows, checksum] = result.getRows()[0];
const texts = await connection.runAndReadAll(
  "SELECT count(*)::DOUBLE FROM duckdb_columns() WHERE table_name = 't' AND data_type = 'VARCHAR'");
const text = texts.getRows()[0][0];
console.log(JSON.stringify({ seconds, rows, checksum, text, version: version() }));
