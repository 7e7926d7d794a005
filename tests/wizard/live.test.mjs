// Files that change, are large, and pages that come and go.
import assert from 'node:assert/strict';
import { appendFileSync, createWriteStream, existsSync, rmSync, writeFileSync } from 'node:fs';
import { at, commandHas, hold, importTo, open, textOf, typesFinal, until, writePeople } from './Page.mjs';
import { test } from './Tests.mjs';

test('two tabs work side by side', async () => {
  writePeople();
  const { page, wizard, context, close } = await open('people.csv');
  const other = await context.newPage();
  await other.goto(new URL(wizard.address).origin);
  await typesFinal(page);
  await typesFinal(other);
  await page.locator('#delimiter').selectOption(',');
  await other.locator('#delimiter').selectOption('');
  await commandHas(page, "/DELIMITERS=','");
  await commandHas(other, "/DELIMITERS=''");
  await commandHas(page, "/DELIMITERS=','");
  await close();
});

test('a file that grows and one that vanishes', async () => {
  writeFileSync(at('live.csv'), 'id,value\n1,2\n3,4\n');
  const { page, close } = await open('live.csv');
  await typesFinal(page);
  appendFileSync(at('live.csv'), '5,6\n');
  await importTo(page, ['csv'], 'live-out');
  assert.match(await page.locator('#outcome').textContent(), /3 cases/);
  rmSync(at('live.csv'));
  await page.locator('#delimiter').selectOption(';');
  await page.locator('#alert').waitFor({ state: 'visible' });
  assert.match(await page.locator('#alert').textContent(), /no file of that name/);
  await close();
});

test('a file of 1 GB shows its table at once, and reading and import are stopped', async () => {
  const rows = Array.from({ length: 40000 }, (_, row) => `${row},name ${row % 97},${(row * 7.25).toFixed(2)},2020-01-${String((row % 28) + 1).padStart(2, '0')}\n`).join('');
  const file = createWriteStream(at('big.csv'));
  file.write('id,name,amount,day\n');
  for (let written = 0; written < 1e9; written += rows.length) {
    if (!file.write(rows)) await new Promise((resolve) => { file.once('drain', resolve); });
  }
  await new Promise((resolve) => { file.end(resolve); });
  const { page, wizard, close } = await open('big.csv');
  await page.locator('tbody.values tr').first().waitFor();
  const reads = () => until(page, () => !document.getElementById('progress').hidden && document.getElementById('progress').value > 0);
  await reads();
  let letGo = hold(wizard, 'wizard-worker');
  assert.equal(await page.locator('#types-state').getAttribute('data-final'), 'false');
  assert.match(await textOf(page, '#status'), /Reading the whole file: \d+ %/);
  // The problems to expect can be filtered while types are still read.
  await page.locator('#expected-column').selectOption('amount');
  assert.match(await textOf(page, '#expected'), /No value of amount is unreadable or cut so far/);
  await page.locator('#cancel').click();
  letGo();
  await until(page, () => document.getElementById('status').textContent.includes('stopped'));

  // What is being typed stays when more of the file was read.
  await page.locator('#read-on').click();
  await reads();
  letGo = hold(wizard, 'wizard-worker');
  await page.locator('#name-1').focus();
  await page.keyboard.press('Control+A');
  await page.keyboard.type('half a na');
  const before = await page.locator('#progress').getAttribute('value');
  letGo();
  await until(page, (value) => document.getElementById('progress').hidden || document.getElementById('progress').getAttribute('value') !== value, before);
  assert.equal(await page.locator('#name-1').inputValue(), 'half a na');
  assert.equal(await page.evaluate(() => document.activeElement.id), 'name-1');
  await page.keyboard.press('Control+A');
  await page.keyboard.type('who');
  await page.keyboard.press('Enter');
  await commandHas(page, '    who A');

  await page.locator('#output-name').fill('big-out');
  await page.locator('#import').click();
  await until(page, () => document.getElementById('status').textContent.startsWith('Importing'));
  letGo = hold(wizard, 'run');
  await page.locator('#cancel').click();
  letGo();
  await until(page, () => document.getElementById('result').textContent.includes('was stopped'));
  assert.equal(existsSync(at('big-out.csv')), false);
  rmSync(at('big.csv'));
  await close();
});

test('with --once the program ends when its page is closed', async () => {
  writePeople();
  const { page, wizard, context } = await open('people.csv', {}, ['--once']);
  await typesFinal(page);
  await page.close({ runBeforeUnload: true });
  await context.close();
  assert.equal(await wizard.ended, 0);
});
