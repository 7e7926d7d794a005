// Pictures of the wizard's page: `node screenshots.mjs PROGRAM FOLDER`. Every step, light and dark, narrow
// and wide, of a file with all there is to see, of fixed columns, and of what is not there.
import { mkdirSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { at, importTo, launch, open, setFormat, typesFinal, until } from './Page.mjs';

const pictures = process.argv[3];
mkdirSync(pictures, { recursive: true });

// Orders of many countries: scripts that run both ways, characters that cannot be seen, days that one
// line decides, a comma as decimal, codes with leading zeros, and some values that are none.
function writeOrders() {
  const names = ['Jörg Müller', '山田太郎', 'أحمد منصور', 'Zoë Brontë', 'דנה לוי', 'Łukasz Żak', '김민수', 'Ana "Nita" Gómez', 'Иван Петров', '李小龍'];
  const notes = ['', 'gift', 'call\tback', 'second\u00a0floor', 'urgent', '', 'n/a', 'bell\u0007', 'ring twice; wait', ''];
  const rows = Array.from({ length: 3000 }, (_, row) => {
    const day = String((row * 7) % 12 + 1 + (row === 217 ? 16 : 0)).padStart(2, '0');
    const amount = row === 41 ? 'on request' : row === 903 ? '12,5O' : `${(row * 37) % 900},${String((row * 13) % 100).padStart(2, '0')}`;
    const name = names[row % names.length].replaceAll('"', '""');
    const note = notes[(row * 3) % notes.length];
    return [String(4711 + row * 3).padStart(8, '0'), `${day}/${String((row % 12) + 1).padStart(2, '0')}/2024`, `"${name}"`, amount,
      row % 29 === 0 ? '' : `${(row * 11) % 101}%`, row % 3 ? 'yes' : 'no', note.includes(';') ? `"${note}"` : note].join(';');
  });
  writeFileSync(at('orders.csv'), ['Orders of all shops, first half', '', 'order;placed;customer;amount;discount;paid;note', ...rows].join('\n') + '\n');
}

function writeFixed() {
  const rows = Array.from({ length: 200 }, (_, row) => `${String(1000 + row)}${['Aachen    ', 'Berlin    ', 'Köln      ', 'Ulm       '][row % 4]}${String(row * 7 % 1000).padStart(6)}${['A', 'B', 'C'][row % 3]}2024${String(row % 12 + 1).padStart(2, '0')}15`);
  writeFileSync(at('stations.txt'), rows.join('\n') + '\n');
  writeFileSync(at('letters.txt'), ['東京都　０１２あいう', '大阪府　３４５かきく', '京都府　６７８さしす', 'שלום אבגד הוזח', 'مرحبا بالعالم'].join('\n') + '\n');
}

// The page whole, or one part of it, with nothing in front of it.
async function picture(page, name, selector = null) {
  await page.mouse.move(0, 0);
  await page.addStyleTag({ content: 'body > footer, .bar { position: static !important; }' });
  await (selector ? page.locator(selector) : page).screenshot({ path: join(pictures, `${name}.png`), animations: 'disabled', ...(selector ? {} : { fullPage: true }) });
}

// What a person sees who has gone to a step.
async function sight(page, name, step) {
  await page.evaluate((id) => document.getElementById(id).scrollIntoView({ behavior: 'instant' }), step);
  await page.screenshot({ path: join(pictures, `${name}.png`), animations: 'disabled' });
}

const has = (page, part) => until(page, (text) => document.getElementById('command').value.includes(text), part);

const browser = await launch();
writeOrders();
writeFixed();
writeFileSync(at('latin.csv'), Buffer.from('name;town\nJörg;Zürich\nÅsa;Malmö\nZoë;Köln\n', 'latin1'));
writeFileSync(at('program.bin'), '\x7fELF\x02\x01\x01 and so on, for long enough to be looked at');

for (const colorScheme of ['light', 'dark']) {
  for (const width of [400, 1280, 2000]) {
    const name = `${colorScheme}-${width}`;
    const options = { colorScheme, bypassCSP: true, viewport: { width, height: width === 400 ? 800 : 1000 } };
    const { page, close } = await open('orders.csv', options);
    await typesFinal(page);
    await sight(page, `${name}-window`, 'file');
    await picture(page, `${name}-page`);
    for (const step of ['file', 'lines', 'fields', 'columns', 'result']) await picture(page, `${name}-${step}`, `#${step}`);
    await setFormat(page, 3, 'DOT8.2');
    await has(page, 'amount DOT8.2');
    await typesFinal(page);
    await setFormat(page, 2, 'A12');
    await has(page, 'customer A12');
    await typesFinal(page);
    await page.locator('tbody.values td').nth(3).focus();
    await page.locator('#columns').screenshot({ path: join(pictures, `${name}-columns-given.png`), animations: 'disabled' });
    await picture(page, `${name}-expected`, '#result');
    await importTo(page, ['csv', 'parquet', 'sps'], `orders-${name}`);
    await until(page, () => document.getElementById('problems') !== null);
    await picture(page, `${name}-imported`, '#result');
    await close();
  }
}
for (const [file, colorScheme, width] of [['stations.txt', 'light', 1280], ['stations.txt', 'dark', 400], ['letters.txt', 'light', 1280]]) {
  const { page, close } = await open(file, { colorScheme, bypassCSP: true, viewport: { width, height: 1000 } });
  await typesFinal(page);
  await page.locator('#arrangement-fixed').check();
  await page.locator('#fixed').waitFor();
  await page.locator('#fixed').fill(file === 'letters.txt' ? '1-3,4-7,8-' : '1-4,5-14,15-20,21-21,22-');
  await page.locator('#fixed').press('Enter');
  await page.locator('#border-1').waitFor();
  await typesFinal(page);
  await picture(page, `${file.split('.')[0]}-${colorScheme}-${width}-fixed`, '#fields');
  await picture(page, `${file.split('.')[0]}-${colorScheme}-${width}-columns`, '#columns');
  await close();
}
for (const colorScheme of ['light', 'dark']) {
  const { page, close } = await open(null, { colorScheme, bypassCSP: true });
  await page.getByRole('button', { name: 'orders.csv' }).waitFor();
  await picture(page, `${colorScheme}-chooser`);
  await page.getByRole('button', { name: 'program.bin' }).click();
  await page.locator('#alert').waitFor();
  await picture(page, `${colorScheme}-error`);
  await page.locator('#other-file').click();
  await page.getByRole('button', { name: 'latin.csv' }).click();
  await typesFinal(page);
  await picture(page, `${colorScheme}-encodings`, '#file');
  await close();
}

// What the README shows: a cell with its characters in the line.
const { page, close } = await open('orders.csv', { viewport: { width: 1280, height: 860 } });
await typesFinal(page);
await page.locator('tbody.values td').nth(9).focus();
await sight(page, 'cell', 'columns');
await close();
await browser.close();
process.exit(0);
