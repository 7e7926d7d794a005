// Runs the tests of the wizard's page: `node run.mjs PROGRAM [part of a name]`. Ends with 1 when
// something is not as it should be, and with 77 when the browser's driver is not installed.
import { existsSync, readdirSync } from 'node:fs';

if (!existsSync(new URL('node_modules/playwright-core', import.meta.url))) {
  console.log('the browser\'s driver is missing: tools/install-browser installs it');
  process.exit(77);
}
const { cleanUp, launch } = await import('./Page.mjs');
const { tests } = await import('./Tests.mjs');
for (const file of readdirSync(new URL('.', import.meta.url)).sort()) {
  if (file.endsWith('.test.mjs')) await import(`./${file}`);
}

const browser = await launch();
let failed = 0;
let ran = 0;
for (const { name, run } of tests) {
  if (process.argv[3] && !name.includes(process.argv[3])) continue;
  ran += 1;
  const began = performance.now();
  try {
    await run();
    console.log(`ok      ${name} (${((performance.now() - began) / 1000).toFixed(1)} s)`);
  } catch (error) {
    failed += 1;
    console.log(`FAILED  ${name}\n${error.stack ?? error}`);
  }
  await cleanUp();
}
await browser.close();
console.log(`${ran} tests, ${failed} failed`);
process.exit(failed > 0 || ran === 0 ? 1 : 0);
