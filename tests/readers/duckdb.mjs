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

// Separated values: text as it stands, numbers as doubles; an empty number is missing.
export async function readValuesByDuckDb(file, columns) {
  const types = columns.map(({ name }) => `'${name.replaceAll("'", "''")}': 'VARCHAR'`).join(', ');
  const delimiter = file.endsWith('.tsv') ? '\t' : ',';
  const values = columns.map(({ name, type }) => (type === 'text'
    ? quoted(name) : `CASE WHEN ${quoted(name)} = '' THEN NULL ELSE CAST(${quoted(name)} AS DOUBLE) END`));
  const reader = await connection.runAndReadAll(
    `SELECT ${values.join(', ')} FROM read_csv('${file.replaceAll("'", "''")}', header = true, auto_detect = false,
       delim = '${delimiter}', quote = '"', escape = '"', nullstr = '\x01', columns = {${types}}, max_line_size = 10000000)`);
  return { rows: reader.currentRowCount, columns: reader.getColumns() };
}
