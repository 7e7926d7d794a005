// The page for everyone: what axe finds on every step in each of its states.
import assert from 'node:assert/strict';
import { rmSync, writeFileSync } from 'node:fs';
import { at, commandHas, importTo, open, setFormat, sticksOut, typesFinal, violations, writePeople } from './Page.mjs';
import { test } from './Tests.mjs';

// A window of 1280 at 200 % has room for 640.
const windows = [
  ['light, 400 wide', { colorScheme: 'light', viewport: { width: 400, height: 900 } }],
  ['light, 1280 wide', { colorScheme: 'light', viewport: { width: 1280, height: 900 } }],
  ['light, 1280 wide at 200 %', { colorScheme: 'light', viewport: { width: 640, height: 450 }, deviceScaleFactor: 2 }],
  ['dark, 400 wide', { colorScheme: 'dark', viewport: { width: 400, height: 900 } }],
  ['dark, 1280 wide', { colorScheme: 'dark', viewport: { width: 1280, height: 900 } }],
  ['dark, 2000 wide', { colorScheme: 'dark', viewport: { width: 2000, height: 1100 } }],
];

for (const [name, options] of windows) {
  test(`no violation of accessibility: ${name}`, async () => {
    writePeople();
    writeFileSync(at('program.bin'), '\x7fELF\x02\x01\x01 and so on, for long enough to be looked at');
    rmSync(at('axe.csv'), { force: true });
    const { page, close } = await open(null, { ...options, bypassCSP: true });
    const check = async (state) => {
      assert.deepEqual(await violations(page), [], state);
      assert.equal(await sticksOut(page), false, `${state}: something sticks out`);
    };
    await page.getByRole('button', { name: 'program.bin' }).waitFor();
    await check('the files are shown');
    await page.getByRole('button', { name: 'program.bin' }).click();
    await page.locator('#alert').waitFor();
    await check('a file cannot be read');
    await page.locator('#other-file').click();
    await page.getByRole('button', { name: 'people.csv' }).click();
    await typesFinal(page);
    await check('types are final');
    await page.locator('#decimal').selectOption('comma');
    await setFormat(page, 2, 'F8.2');
    await commandHas(page, 'amount F8.2');
    await typesFinal(page);
    await page.locator('#command').fill('GET DATA /TYPE=TXT /NONSENSE');
    await page.locator('#apply').click();
    await page.locator('#command-error').waitFor();
    await check('a value cannot be read, and a command is wrong');
    await page.locator('#revert').click();
    await importTo(page, ['csv'], 'axe');
    await check('the import has ended');
    await page.locator('#arrangement-fixed').check();
    await page.locator('#fixed').waitFor();
    await typesFinal(page);
    await check('columns are fixed');
    await close();
  });
}
