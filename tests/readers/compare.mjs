// Reads outputs back with readers that others wrote and compares every cell with the cases as raw
// JSON Lines.
//
//   node compare.mjs LIST
//
// LIST: JSON Lines of {"cases": "x.jsonl" (--values raw), "dictionary": "x.json", "files": [...]}.
// Each file is read by every reader of its kind. Ends with status 1 when anything differs.
import { readFileSync } from 'node:fs';
import { readArrow } from './arrow.mjs';
import { readByDuckDb, readValuesByDuckDb } from './duckdb.mjs';
import { readByHyparquet } from './hyparquet.mjs';
import { readByPolars } from './polars.mjs';

const readers = {
  arrow: [readArrow, readByPolars],
  parquet: [readByHyparquet, readByPolars, readByDuckDb],
  csv: [readValuesByDuckDb],
  tsv: [readValuesByDuckDb],
};

// What a column holds in files of columns.
function storedType(variable) {
  if (variable.type === 'string') return 'text';
  const name = variable.format.replace(/[0-9.]+$/, '');
  if (['DATE', 'ADATE', 'EDATE', 'SDATE', 'JDATE', 'MOYR', 'QYR', 'WKYR'].includes(name)) return 'day';
  if (['DATETIME', 'YMDHMS'].includes(name)) return 'timestamp';
  if (['TIME', 'DTIME', 'MTIME'].includes(name)) return 'duration';
  return 'number';
}

// Seconds, as the shortest text of their double, in microseconds.
function micros(seconds) {
  let text = String(seconds);
  if (text.includes('e')) text = seconds.toFixed(20);
  const negative = text.startsWith('-');
  const [whole, fraction = ''] = text.replace('-', '').split('.');
  const digits = (fraction + '0000000').slice(0, 7);
  let value = BigInt(whole) * 1000000n + BigInt(digits.slice(0, 6));
  if (digits[6] >= '5') value += 1n;
  return negative ? -value : value;
}

const epochDays = 141428n;
const epochMicros = epochDays * 86400n * 1000000n;

// The value that a file of columns has for a raw one: what readers are asked for.
function stored(raw, type) {
  if (raw === null) return null;
  switch (type) {
    case 'day':
      return BigInt(raw) / 86400n - epochDays;
    case 'timestamp':
      return micros(raw) - epochMicros;
    case 'duration':
      return micros(raw);
    default:
      return raw;
  }
}

function same(found, wanted, type) {
  if (found === null || found === undefined) return wanted === null;
  if (wanted === null) return false;
  if (type === 'text') return found === wanted;
  if (type === 'number') return Number(found) === wanted;
  return BigInt(found) === wanted;
}

let files = 0;
let cells = 0;
const differences = [];

for (const line of readFileSync(process.argv[2], 'utf8').split('\n').filter(Boolean)) {
  const entry = JSON.parse(line);
  const cases = readFileSync(entry.cases, 'utf8').split('\n').filter(Boolean).map((text) => JSON.parse(text));
  const { variables } = JSON.parse(readFileSync(entry.dictionary, 'utf8'));
  const columns = variables.map((variable) => ({ name: variable.name, type: storedType(variable) }));
  for (const file of entry.files) {
    for (const reader of readers[file.split('.').pop()] ?? []) {
      files += 1;
      try {
        const table = await reader(file, columns);
        if (table.rows !== cases.length) {
          differences.push(`${file}, ${reader.name}: ${table.rows} rows, not ${cases.length}`);
          continue;
        }
        for (const [number, column] of columns.entries()) {
          const values = table.columns[number];
          for (let row = 0; row < cases.length; row += 1) {
            cells += 1;
            const raw = cases[row][column.name];
            const wanted = reader === readValuesByDuckDb ? raw : stored(raw, column.type);
            const type = reader === readValuesByDuckDb && column.type !== 'text' ? 'number' : column.type;
            if (!same(values[row], wanted, type)) {
              differences.push(`${file}, ${reader.name}, row ${row}, ${column.name}: ${values[row]}, not ${wanted}`);
            }
          }
        }
      } catch (error) {
        differences.push(`${file}, ${reader.name}: ${error.stack}`);
      }
    }
  }
}

for (const difference of differences.slice(0, 20)) console.error(difference);
console.log(`${files} readings, ${cells} cells, ${differences.length} differences`);
process.exit(differences.length === 0 && files > 0 ? 0 : 1);
