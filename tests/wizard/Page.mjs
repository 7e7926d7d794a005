// The wizard's page in a real browser: starts `textwizard wizard` and opens what it prints in
// Chromium. Nothing here waits for a time: it waits for what the page says.
import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { existsSync, mkdtempSync, readFileSync, readdirSync, rmSync, writeFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { createInterface } from 'node:readline';
import { chromium } from 'playwright-core';

const chromiumPath = ['/usr/bin/chromium', '/usr/bin/chromium-browser'].find(existsSync);
const axePath = createRequire(import.meta.url).resolve('axe-core/axe.min.js');

export const program = process.argv[2];
// Of machines that do much else meanwhile.
export const patience = { timeout: 120000 };
// Where all files of the tests are.
export const folder = mkdtempSync(join(tmpdir(), 'wizard-'));
export const at = (name) => join(folder, name);

const endings = [() => rmSync(folder, { recursive: true, force: true })];
process.on('exit', () => endings.forEach((end) => end()));

// Ends what a test that failed left behind.
let left = [];
export async function cleanUp() {
  for (const end of left.splice(0)) await end().catch(() => {});
}

let browser = null;
export async function launch() {
  if (!chromiumPath) throw new Error('there is no Chromium: tools/install-packages installs it');
  const args = ['--disable-gpu', '--disable-dev-shm-usage', '--force-color-profile=srgb', '--font-render-hinting=none'];
  // The sandbox is not for the superuser.
  if (process.getuid() === 0) args.push('--no-sandbox');
  browser = await chromium.launch({ executablePath: chromiumPath, args, timeout: patience.timeout });
  return browser;
}

// A running `textwizard wizard`: its address, and `ended`, which resolves to its exit status.
export async function serve(args) {
  const child = spawn(program, ['wizard', '--no-open', ...args], { stdio: ['ignore', 'pipe', 'inherit'] });
  const ended = new Promise((resolve) => { child.on('exit', (status, signal) => resolve(status ?? signal)); });
  const kill = () => child.exitCode === null && child.kill('SIGKILL');
  endings.push(kill);
  left.push(async () => { kill(); await ended; });
  const address = await new Promise((resolve, reject) => {
    createInterface({ input: child.stdout }).once('line', resolve);
    ended.then((status) => reject(new Error(`textwizard wizard ended with ${status}`)));
  });
  return { address, ended, pid: child.pid, stop: () => { child.kill('SIGINT'); return ended; } };
}

// Holds the wizard's process that does such work ("wizard-worker", "run"), so that nothing ends before
// it is let go. Gives what lets it go.
export function hold(wizard, word) {
  const children = readdirSync(`/proc/${wizard.pid}/task`).flatMap((thread) => readFileSync(`/proc/${wizard.pid}/task/${thread}/children`, 'utf8').split(' ').filter(Boolean));
  const found = children.find((pid) => readFileSync(`/proc/${pid}/cmdline`, 'utf8').split('\0')[1] === word);
  assert.ok(found, `the wizard has a process for ${word}`);
  process.kill(Number(found), 'SIGSTOP');
  const letGo = () => { try { process.kill(Number(found), 'SIGCONT'); } catch { /* it has ended */ } };
  left.push(async () => letGo());
  return letGo;
}

// A page on the file of that name, or on the folder; what goes wrong in it fails the test at close().
export async function open(file, options = {}, args = []) {
  const wizard = await serve(file ? [at(file), ...args] : ['--root', folder, ...args]);
  const context = await browser.newContext({ viewport: { width: 1280, height: 900 }, ...options });
  context.setDefaultTimeout(patience.timeout);
  left.push(() => context.close());
  const page = await context.newPage();
  const errors = [];
  page.on('pageerror', (error) => errors.push(error.message));
  page.on('console', (message) => {
    // A request that is refused is told on the page; the browser tells it, too.
    if (message.type() === 'error' && !/status of 400/.test(message.text())) errors.push(message.text());
  });
  const elsewhere = [];
  page.on('request', (request) => { if (!request.url().startsWith(new URL(wizard.address).origin)) elsewhere.push(request.url()); });
  await page.goto(wizard.address);
  return {
    page, wizard, context,
    close: async () => {
      assert.deepEqual(errors, []);
      assert.deepEqual(elsewhere, [], 'no request leaves this machine');
      await context.close();
      assert.equal(await wizard.stop(), 0);
    },
  };
}

// Waits until `look`, called in the page with `value`, holds.
export const until = (page, look, value = null) => page.waitForFunction(look, value, patience);
// The types of the file that the page shows are those of all its values.
export const typesFinal = (page) => until(page, () => document.getElementById('types-state')?.dataset.final === 'true');
export const command = (page) => page.locator('#command').inputValue();
export const commandHas = (page, part) => until(page, (text) => document.getElementById('command').value.includes(text), part);
export const names = (page) => page.locator('input[id^="name-"]').evaluateAll((inputs) => inputs.map((input) => input.value));
export const formats = (page) => page.locator('input[id^="format-"]').evaluateAll((inputs) => inputs.map((input) => input.value));
export const textOf = (page, selector) => page.locator(selector).textContent();

export async function setFormat(page, number, format) {
  await page.locator(`#format-${number}`).fill(format);
  await page.locator(`#format-${number}`).press('Enter');
}

export async function importTo(page, kinds, name) {
  for (const kind of ['csv', 'tsv', 'jsonl', 'arrow', 'parquet', 'sqlite', 'sps']) {
    await page.locator(`#output-${kind}`).setChecked(kinds.includes(kind));
  }
  await page.locator('#output-name').fill(name);
  await page.locator('#import').click();
  await page.locator('#outcome').waitFor();
}

// What is against accessibility on the page as it stands; it has to be opened with bypassCSP.
export async function violations(page) {
  if (!await page.evaluate(() => 'axe' in globalThis)) await page.addScriptTag({ path: axePath });
  const { violations: found } = await page.evaluate(() => globalThis.axe.run());
  return found.map(({ id, nodes }) => `${id}: ${nodes.map((node) => node.html).slice(0, 3).join(' ')}`);
}

export const sticksOut = (page) => page.evaluate(() => document.documentElement.scrollWidth > document.documentElement.clientWidth);

// Names, a day that only one line decides, a decimal comma, and lines in front of it all.
export const people = 'Report of people\n\nname;visited;amount;note\nJörg;31/12/2019;1,50;a\nÅsa;01/02/2020;2,25;b\nZoë;03/04/2020;x;c\nIna;05/06/2020;7,00;d\n';

export function writePeople() {
  writeFileSync(at('people.csv'), people);
}
