// What each setting, switch and button of the page does.
import assert from 'node:assert/strict';
import { writeFileSync } from 'node:fs';
import { at, command, commandHas, formats, open, setFormat, textOf, typesFinal, until, writePeople } from './Page.mjs';
import { test } from './Tests.mjs';

const facts = (page, column) => page.locator('tbody.facts td').nth(column);

test('the runner-up is a button', async () => {
  writePeople();
  const { page, close } = await open('people.csv');
  await typesFinal(page);
  await page.locator('#runner-0').click();
  await commandHas(page, "/DELIMITERS=','");
  await typesFinal(page);
  await page.locator('#runner-up').getByRole('button', { name: 'Cut at semicolon' }).click();
  await commandHas(page, "/DELIMITERS=';'");
  await close();
});

test('day or month, and point or comma, are told with what decides and can be switched', async () => {
  writeFileSync(at('days.csv'), 'day;amount\n01/02/2020;1,250\n03/04/2020;2,500\n05/06/2020;3,125\n');
  const { page, close } = await open('days.csv');
  await typesFinal(page);
  assert.match(await facts(page, 0).textContent(), /first, though no value tells/);
  const before = (await formats(page))[0];
  await facts(page, 0).getByRole('button').click();
  await until(page, (format) => document.getElementById('format-0').value !== format, before);
  await typesFinal(page);
  assert.deepEqual(new Set([before, (await formats(page))[0]]), new Set(['ADATE10', 'EDATE10']));
  assert.match(await facts(page, 1).textContent(), /is the decimal, though no value tells.*1,250/);
  const amount = (await formats(page))[1];
  await facts(page, 1).getByRole('button', { name: /^Take the/ }).click();
  await until(page, (format) => document.getElementById('format-1').value !== format, amount);
  await close();
});

test('the bar of a column has what is read, empty, null, unreadable and cut, with the first values', async () => {
  writeFileSync(at('mixed.csv'), 'n,text\n1,short\n,quite a long text\nNA,\nx1,short\n31/12/2020,another long one\n6,a\n' + '7,a\n'.repeat(20));
  const { page, close } = await open('mixed.csv');
  await typesFinal(page);
  await page.locator('#names-1').click();
  await commandHas(page, '/FIRSTCASE=2');
  await typesFinal(page);
  await setFormat(page, 0, 'F8');
  await commandHas(page, 'n F8');
  await typesFinal(page);
  await setFormat(page, 1, 'A6');
  await commandHas(page, 'text A6');
  await typesFinal(page);
  assert.equal(await facts(page, 0).locator('.counts').textContent(), '22 read · 1 empty · 1 null · 2 unreadable');
  assert.equal(await facts(page, 0).locator('.quality span').count(), 4);
  assert.match(await facts(page, 0).textContent(), /line 5: “x1” unreadable.*line 6: “31\/12\/2020” unreadable/);
  assert.equal(await facts(page, 1).locator('.counts').textContent(), '23 read · 1 empty · 2 cut');
  assert.match(await facts(page, 1).textContent(), /line 3: “quite a long text” has 17 bytes and is cut/);
  // The same as a list, filtered by column, before anything is imported.
  assert.equal(await page.locator('#expected tbody tr').count(), 3);
  await page.locator('#expected-column').selectOption('text');
  assert.equal(await page.locator('#expected tbody tr').count(), 1);
  assert.match(await textOf(page, '#expected tbody'), /cut23quite a long text/);
  await close();
});

test('blanks in front of values and several blanks are settings', async () => {
  writeFileSync(at('blanks.csv'), 'a;b\n1; x\n2;y\n3;  z\n4;u\n');
  const { page, close } = await open('blanks.csv');
  await typesFinal(page);
  assert.doesNotMatch(await command(page), /LEADINGSPACES/);
  await page.locator('#leading-blanks').selectOption('true');
  await commandHas(page, '/LEADINGSPACES IGNORE=YES');
  await until(page, () => document.querySelector('tbody.values tr').cells[2].textContent === 'x');
  await page.locator('#delimiter').selectOption(' ');
  await page.locator('#multiple-blanks').selectOption('true');
  await commandHas(page, '/MULTIPLESPACES IGNORE=YES');
  await page.locator('#multiple-blanks').selectOption('false');
  await until(page, () => !document.getElementById('command').value.includes('MULTIPLESPACES'));
  await close();
});

test('the command and the line are copied', async () => {
  writePeople();
  const { page, close } = await open('people.csv', { permissions: ['clipboard-read', 'clipboard-write'] });
  await typesFinal(page);
  await page.locator('#copy').click();
  await until(page, () => document.getElementById('status').textContent === 'The command was copied.');
  assert.equal(await page.evaluate(() => navigator.clipboard.readText()), await command(page));
  await close();
});

test('a name that is given keeps the format that was given to its column', async () => {
  writePeople();
  const { page, close } = await open('people.csv');
  await typesFinal(page);
  await setFormat(page, 3, 'A7');
  await commandHas(page, 'note A7');
  await typesFinal(page);
  await page.locator('#name-3').fill('remark');
  await page.locator('#name-3').press('Enter');
  await commandHas(page, 'remark A7');
  await close();
});
