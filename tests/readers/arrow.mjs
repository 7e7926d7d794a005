// Arrow's own library for JavaScript.
import { readFileSync } from 'node:fs';
import { compressionRegistry, CompressionType, tableFromIPC } from 'apache-arrow';
import lz4 from 'lz4js';

compressionRegistry.set(CompressionType.LZ4_FRAME, { decode: (bytes) => lz4.decompress(bytes) });

// Values as they are stored, before the library makes dates of them.
export async function readArrow(file, columns) {
  const table = tableFromIPC(readFileSync(file));
  return {
    rows: table.numRows,
    columns: columns.map(({ name, type }, number) => {
      const vector = table.getChildAt(number);
      if (table.schema.fields[number].name !== name) throw new Error(`column ${number} is not ${name}`);
      if (type === 'text' || type === 'number') return Array.from(vector, (value) => value);
      return vector.data.flatMap((data) =>
        Array.from({ length: data.length }, (_, row) => (data.getValid(row) ? data.values[row] : null)));
    }),
  };
}
