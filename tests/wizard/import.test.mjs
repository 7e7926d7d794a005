// Types, the command, and what an import leaves.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { readFileSync, writeFileSync } from 'node:fs';
import { at, command, commandHas, formats, importTo, open, program, typesFinal, until, writePeople } from './Page.mjs';
import { test } from './Tests.mjs';

test('a type is set, its problem is seen, and the import is what run gives of the command', async () => {
  writePeople();
  const { page, close } = await open('people.csv');
  await typesFinal(page);
  await page.locator('#decimal').selectOption('comma');
  await page.locator('#format-2').fill('F8.2');
  await page.locator('#format-2').press('Enter');
  await commandHas(page, 'amount F8.2');
  await typesFinal(page);
  assert.match(await page.locator('#columns').textContent(), /1 unreadable/);
  await importTo(page, ['csv', 'parquet', 'sps'], 'out');
  assert.match(await page.locator('#outcome').textContent(), /4 cases/);
  assert.match(await page.locator('#outcome').textContent(), /unreadable/);
  const digest = await page.locator('#digest').textContent();
  writeFileSync(at('shown.sps'), await command(page));
  assert.equal(readFileSync(at('out.sps'), 'utf8'), await command(page));
  const line = await page.locator('#outcome .line').textContent();
  const options = line.split(' ').slice(3, line.split(' ').indexOf('-o'));
  const printed = execFileSync(program, ['run', '--quiet', '--digest', at('shown.sps'), ...options, '-o', at('again.csv'), '-o', at('again.parquet')], { encoding: 'utf8' });
  assert.equal(printed.trim(), `digest: ${digest}`);
  assert.equal(readFileSync(at('again.csv'), 'utf8'), readFileSync(at('out.csv'), 'utf8'));
  assert.ok(readFileSync(at('again.parquet')).equals(readFileSync(at('out.parquet'))));
  // What is there is not replaced unless that is allowed.
  await page.locator('#import').click();
  await page.locator('#alert').waitFor({ state: 'visible' });
  assert.match(await page.locator('#alert').textContent(), /already/);
  await close();
});

test('edits of the command change the page, and a wrong one is told with its place', async () => {
  writePeople();
  const { page, close } = await open('people.csv');
  await typesFinal(page);
  await page.locator('#command').fill((await command(page)).replace('note A1', 'remark A9'));
  await page.locator('#apply').click();
  await until(page, () => document.getElementById('name-3').value === 'remark');
  assert.equal((await formats(page))[3], 'A9');
  await typesFinal(page);
  await page.locator('#command').fill((await command(page)).replace('FIRSTCASE=4', 'FIRSTCASE=0'));
  await page.locator('#apply').click();
  await page.locator('#command-error').waitFor({ state: 'visible' });
  assert.match(await page.locator('#command-error').textContent(), /Line 6/);
  await close();
});
