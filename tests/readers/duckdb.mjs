// DuckDB.
import duckdb from '@duckdb/node-api';

const connection = await (await duckdb.DuckDBInstance.create(':memory:')).connect();

const quoted = (name) => `"${name.replaceAll('"', '""')}"`;

// Days and microseconds as they are stored.
function expression({ name, type }) {
  if (type === 'day') return `CAST(${quoted(name)} - DATE '1970-01-01' AS BIGINT)`;
  if (type === 'timestamp') return `epoch_us(${quoted(name)})`;
  return quoted(name);
}

export async function readByDuckDb(file, columns) {
  const reader = await connection.runAndReadAll(
    `SELECT ${columns.map(expression).join(', ')} FROM read_parquet('${file.replaceAll("'", "''")}')`);
  return { rows: reader.currentRowCount, columns: reader.getColumns() };
}
