// Polars.
import { readFileSync } from 'node:fs';
import pl from 'nodejs-polars';

export async function readByPolars(file, columns) {
  const bytes = readFileSync(file);
  let frame = file.endsWith('.parquet') ? pl.readParquet(bytes) : pl.readIPC(bytes);
  const whole = columns.filter(({ type }) => type !== 'text' && type !== 'number').map(({ name }) => name);
  // Days and microseconds as they are stored; as texts, since numbers here have 53 bits.
  if (whole.length > 0) frame = frame.withColumns(...whole.map((name) => pl.col(name).cast(pl.Int64).cast(pl.Utf8)));
  return { rows: frame.height, columns: columns.map(({ name }) => frame.getColumn(name).toArray()) };
}
