// A Parquet reader in JavaScript, of nobody's file writer.
import { readFileSync } from 'node:fs';
import { parquetMetadata, parquetRead } from 'hyparquet';
import { compressors } from 'hyparquet-compressors';

// Days and microseconds as they are stored.
const parsers = {
  dateFromDays: (days) => days,
  timestampFromMicroseconds: (micros) => micros,
};

export async function readByHyparquet(file, columns) {
  const bytes = readFileSync(file);
  const buffer = bytes.buffer.slice(bytes.byteOffset, bytes.byteOffset + bytes.length);
  const metadata = parquetMetadata(buffer);
  const found = columns.map(() => []);
  await parquetRead({
    file: buffer,
    metadata,
    compressors,
    parsers,
    onComplete: (rows) => rows.forEach((row) => row.forEach((value, number) => found[number].push(value))),
  });
  return { rows: Number(metadata.num_rows), columns: found };
}
