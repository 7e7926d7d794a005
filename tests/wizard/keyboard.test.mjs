// The page by keyboard alone, from the choice of a file to its import, in the order of the page.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { at, commandHas, open, textOf, typesFinal, until, writePeople } from './Page.mjs';
import { test } from './Tests.mjs';

const focused = (page) => page.evaluate(() => document.activeElement?.id ?? '');

// Tab, forward only, until the element of that id has the focus; it can be seen that it has.
async function tabTo(page, id) {
  for (let steps = 0; steps < 400; steps += 1) {
    await page.keyboard.press('Tab');
    if (await focused(page) !== id) continue;
    const outline = await page.evaluate(() => getComputedStyle(document.activeElement).outlineStyle);
    assert.equal(outline, 'solid', `the focus of ${id} is visible`);
    return;
  }
  assert.fail(`Tab does not come to ${id}`);
}

test('keyboard alone goes from the file to its import, in order', async () => {
  writePeople();
  const { page, close } = await open(null);
  await page.getByRole('button', { name: 'people.csv' }).waitFor();
  for (let steps = 0; await page.evaluate(() => document.activeElement?.textContent.split(' ')[0]) !== 'people.csv'; steps += 1) {
    assert.ok(steps < 100, 'Tab comes to the file');
    await page.keyboard.press('Tab');
  }
  await page.keyboard.press('Enter');
  await typesFinal(page);

  await tabTo(page, 'encoding');
  await page.keyboard.press('w');
  await until(page, () => document.getElementById('raw-lines').textContent.includes('JÃ¶rg'));
  await page.keyboard.press('Home');
  await until(page, () => document.getElementById('raw-lines').textContent.includes('Jörg'));
  assert.equal(await focused(page), 'encoding', 'the focus stays where it is');

  await tabTo(page, 'first-line');
  await tabTo(page, 'header');
  await tabTo(page, 'first-4');
  await page.keyboard.press('ArrowDown');
  assert.equal(await focused(page), 'first-5');
  await page.keyboard.press('Enter');
  await until(page, () => document.getElementById('first-line').value === '5');
  await tabTo(page, 'names-5');
  await page.keyboard.press('ArrowUp');
  await page.keyboard.press('ArrowUp');
  assert.equal(await focused(page), 'names-3');
  await page.keyboard.press('Enter');
  await until(page, () => document.getElementById('first-line').value === '4');

  await tabTo(page, 'arrangement-delimited');
  await tabTo(page, 'decimal');
  await page.keyboard.press('c');
  await until(page, () => document.getElementById('decimal').value === 'comma');
  await tabTo(page, 'delimiter');
  await page.keyboard.press('s');
  await commandHas(page, "/DELIMITERS=';'");
  await typesFinal(page);

  await tabTo(page, 'name-0');
  await page.keyboard.press('Control+A');
  await page.keyboard.type('first_name');
  await page.keyboard.press('Enter');
  await commandHas(page, 'first_name');
  await typesFinal(page);
  await tabTo(page, 'format-2');
  await page.keyboard.press('Control+A');
  await page.keyboard.type('F8.2');
  await page.keyboard.press('Enter');
  await commandHas(page, 'amount F8.2');
  await tabTo(page, 'skip-3');
  await page.keyboard.press('Space');
  await until(page, () => !document.getElementById('command').value.includes('note A'));
  await typesFinal(page);

  // One cell is in the tab order; arrow keys move from it.
  for (let steps = 0; await page.evaluate(() => document.activeElement?.localName) !== 'td'; steps += 1) {
    assert.ok(steps < 100, 'Tab comes to a cell');
    await page.keyboard.press('Tab');
  }
  await page.keyboard.press('ArrowRight');
  assert.equal(await textOf(page, '#cell-line .marked'), '31/12/2019');
  await page.keyboard.press('ArrowDown');
  assert.equal(await textOf(page, '#cell-line .marked'), '01/02/2020');

  await tabTo(page, 'output-name');
  await page.keyboard.press('Control+A');
  await page.keyboard.type('by-keyboard');
  await tabTo(page, 'output-csv');
  await tabTo(page, 'output-sps');
  await page.keyboard.press('Space');
  await tabTo(page, 'import');
  await page.keyboard.press('Enter');
  await page.locator('#outcome').waitFor();
  assert.match(await textOf(page, '#status'), /Imported 4 cases/);
  assert.match(readFileSync(at('by-keyboard.csv'), 'utf8'), /^first_name,visited,amount\nJörg,2019-12-31,1.5\n/);
  await tabTo(page, 'problem-column');
  await tabTo(page, 'copy');
  await page.keyboard.press('Enter');
  await until(page, () => document.getElementById('status').textContent === 'The command was copied.');
  await tabTo(page, 'command');
  await close();
});

test('borders of fixed columns are set, moved and removed by keys', async () => {
  writePeople();
  const { page, close } = await open('people.csv');
  await typesFinal(page);
  await page.locator('#arrangement-delimited').focus();
  await page.keyboard.press('ArrowRight');
  await page.locator('#add-border').waitFor();
  await tabTo(page, 'fixed');
  await page.keyboard.press('Control+A');
  await page.keyboard.type('1-4,5-9,10-');
  await page.keyboard.press('Enter');
  await until(page, () => document.getElementById('border-1')?.getAttribute('aria-valuenow') === '9');
  await page.locator('#ruler').focus();
  await tabTo(page, 'border-1');
  await page.keyboard.press('ArrowLeft');
  await until(page, () => document.getElementById('fixed').value === '1-4,5-8,9-');
  await page.keyboard.press('Delete');
  await until(page, () => document.getElementById('fixed').value === '1-4,5-');
  await tabTo(page, 'add-border');
  await page.keyboard.press('Enter');
  await until(page, () => document.getElementById('fixed').value.split(',').length === 3);
  await typesFinal(page);
  await close();
});
