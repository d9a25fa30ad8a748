// picture.mjs ADDRESS FOLDER: pictures of the pages that are served at an address.
import { join } from 'node:path';

import { launch } from '../page/browser.mjs';

const [address, folder] = process.argv.slice(2);
const browser = await launch();

/** The newest run of an instrument with a name, as the pages address it. */
async function run(instrument, limit = 1) {
  const answer = await fetch(`${address}api/runs?instrument=${encodeURIComponent(instrument)}&limit=${limit}`);
  const { store, guid } = (await answer.json()).runs[limit - 1];
  return { store, guid };
}

async function picture(name, path, height, { width = 1280, colorScheme = 'light' } = {}) {
  const context = await browser.newContext({ viewport: { width, height }, colorScheme, timezoneId: 'Europe/Vienna' });
  const page = await context.newPage();
  await page.goto(address + path);
  await page.waitForTimeout(3000); // drawings grow
  await page.screenshot({ path: join(folder, `serve-${name}.png`) });
  await context.close();
}

const [newest, before] = [await run('Scope 7', 2), await run('Scope 7', 3)];
const compared = `store=${newest.store}&run=${newest.guid}&with=${before.guid}&with_store=${before.store}`;
await picture('now', '', 470);
await picture('runs', 'runs?instrument=Scope+7', 620);
await picture('compare', `compare?${compared}`, 900);
await picture('trends', 'trends?parameter=Defocus&by=instrument', 720);
await picture('small', '', 600, { width: 800 });
await picture('dark', '', 470, { colorScheme: 'dark' });
await browser.close();
