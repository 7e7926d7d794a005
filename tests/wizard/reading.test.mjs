// How the file is read: encoding, lines, fields, and what the page shows of it.
import assert from 'node:assert/strict';
import { writeFileSync } from 'node:fs';
import { at, commandHas, names, open, people, typesFinal, until, writePeople } from './Page.mjs';
import { test } from './Tests.mjs';

test('a file is opened, and its encoding, header and delimiter are changed', async () => {
  writeFileSync(at('people.csv'), Buffer.from(people, 'latin1'));
  const { page, close } = await open('people.csv');
  await typesFinal(page);
  assert.deepEqual(await names(page), ['name', 'visited', 'amount', 'note']);
  assert.match(await page.locator('#raw-lines').textContent(), /Jörg/);
  await page.locator('#encoding').selectOption('windows-1251');
  await until(page, () => document.getElementById('raw-lines').textContent.includes('Jцrg'));
  await page.locator('#encoding').selectOption('windows-1252');
  await until(page, () => document.getElementById('raw-lines').textContent.includes('Jörg'));
  await page.locator('#names-4').click();
  await until(page, () => document.getElementById('first-line').value === '5');
  await page.locator('#names-3').click();
  await until(page, () => document.getElementById('first-line').value === '4');
  await page.locator('#delimiter').selectOption(',');
  await commandHas(page, "/DELIMITERS=','");
  await page.locator('#delimiter').selectOption(';');
  await commandHas(page, "/DELIMITERS=';'");
  await typesFinal(page);
  assert.deepEqual(await names(page), ['name', 'visited', 'amount', 'note']);
  await close();
});

test('a border of fixed columns is dragged, and moved by keys', async () => {
  writeFileSync(at('fixed.txt'), 'ab123xy\ncd456zz\nef789qq\ngh012rr\n');
  const { page, close } = await open('fixed.txt');
  await typesFinal(page);
  await page.locator('#arrangement-fixed').check();
  await page.locator('#fixed').fill('1-2,3-5,6-7');
  await page.locator('#fixed').press('Enter');
  await page.locator('#border-1').waitFor();
  await until(page, () => document.getElementById('border-1').getAttribute('aria-valuenow') === '5');
  await page.locator('#border-0').focus();
  await page.keyboard.press('ArrowRight');
  await until(page, () => document.getElementById('fixed').value === '1-3,4-5,6-7');
  // What is above the ruler stands still once everything is read.
  await commandHas(page, '3-4');
  await typesFinal(page);
  const box = await page.locator('#border-0').boundingBox();
  const character = (await page.locator('#border-1').boundingBox()).x - box.x;
  await page.mouse.move(box.x + box.width / 2, box.y + box.height / 2);
  await page.mouse.down();
  await page.mouse.move(box.x + box.width / 2 - character / 2, box.y + box.height / 2, { steps: 4 });
  await page.mouse.up();
  await until(page, () => document.getElementById('fixed').value === '1-2,3-5,6-7');
  await commandHas(page, '2-4');
  await typesFinal(page);
  await close();
});

test('pointing at a cell marks its characters in the line', async () => {
  writePeople();
  const { page, close } = await open('people.csv');
  await typesFinal(page);
  await page.locator('tbody.values td').nth(1).focus();
  assert.equal(await page.locator('#raw-lines .marked').textContent(), '31/12/2019');
  await close();
});

test('markup, direction marks and control characters of a file are text', async () => {
  writeFileSync(at('odd<b>.csv'), 'a,<img src=x onerror=alert(1)>\n1,<script>alert(1)</script>\n2,\u202eabc\u0007\n3,日本語 שלום\n');
  const { page, close } = await open('odd<b>.csv');
  await typesFinal(page);
  assert.equal(await page.locator('main img, main script, main b').count(), 0);
  assert.match(await page.locator('#raw-lines').textContent(), /<script>/);
  assert.ok(await page.locator('#raw-lines .control').count() >= 2);
  await close();
});

test('a chooser lists the files below the root', async () => {
  writePeople();
  const { page, close } = await open(null);
  await page.getByRole('button', { name: 'people.csv' }).click();
  await typesFinal(page);
  assert.deepEqual(await names(page), ['name', 'visited', 'amount', 'note']);
  await close();
});

test('the page comes in at most 200 kB, and from this program alone', async () => {
  writePeople();
  const { page, close } = await open('people.csv');
  await typesFinal(page);
  const loaded = [];
  page.on('response', (response) => { if (!response.url().includes('/api/')) loaded.push(response.body()); });
  await page.reload();
  await typesFinal(page);
  const sizes = (await Promise.all(loaded)).map((body) => body.length);
  assert.ok(sizes.length >= 10, 'page, style, modules');
  const all = sizes.reduce((sum, size) => sum + size, 0);
  assert.ok(all > 10000 && all <= 200000, `${all} bytes`);
  await close();
});
