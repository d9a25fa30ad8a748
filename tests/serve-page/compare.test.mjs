// Two runs beside each other, in a real browser.
import assert from 'node:assert/strict';
import { rmSync } from 'node:fs';
import { after, before, test } from 'node:test';

import { launch } from '../page/browser.mjs';
import { ask, scratch, twoNights } from '../page/recordings.mjs';
import { end, openView, serve, storeOf } from './served.mjs';

let browser, server, folder, older, newer;
before(async () => {
  browser = await launch();
  ({ folder } = twoNights());
  [older, newer] = ask(folder, 'SELECT guid FROM executions WHERE parent_id IS NULL ORDER BY execution_id').map(
    ({ guid }) => guid,
  );
  server = await serve([folder, storeOf('empty', 'Scope 7')]);
});
after(async () => {
  await end(server.child);
  await browser.close();
  rmSync(scratch, { recursive: true });
});

const isCompared = (page) => page.waitForSelector('#plot[data-drawn]', { timeout: 60000 });
const tableOf = (page) =>
  page.$$eval('.differences tbody tr.group', (list) => list.map((row) => [...row.cells].map((one) => one.textContent)));
const noise = ['File', 'DateTime', 'Defocus', 'FocusScore'].map((name) => `&ignore=${name}`).join('');

test('the last good run, what differs in words, and both in one plot', async () => {
  const page = await openView(browser, server, `compare?run=last&store=1${noise}`);
  await isCompared(page);
  assert.match(await page.textContent('.run-choice:nth-child(2) .facts'), new RegExp(older.slice(0, 8)));
  const found = await tableOf(page);
  const dose = found.find(([what]) => what === 'Image Dose');
  assert.match(dose[1], /^[\d,]+ of [\d,]+$/);
  assert.deepEqual([dose[3], dose[5]], ['41.5', '+1.5']);
  assert.ok(found.some(([what, , where]) => what === 'steps only in this run' && where.endsWith('hole 5 (2)')));
  assert.ok(found.some(([what, , , own, other]) => /version/.test(what) && own === 'Hole 2.1' && other === 'Hole 2.0'));
  assert.match(await page.textContent('#against .parting'), /They first part at .*hole 5: only in this run/);
  assert.match(await page.textContent('#plot-note'), /points.*; [\d,]+ of the other run/);
  const link = page.locator('#against .parting a').first();
  assert.match(
    await link.getAttribute('href'),
    new RegExp(`run\\?store=1&run=${newer}.*with=${older}.*#execution-\\d+`),
  );
  assert.deepEqual(page.complaints, []);
});
