// Two runs beside each other, in a real browser.
import assert from 'node:assert/strict';
import { rmSync } from 'node:fs';
import { after, before, test } from 'node:test';

import { launch } from '../page/browser.mjs';
import { ask, scratch, twoNights } from '../page/recordings.mjs';
import { end, isPrinted, isTold, openView, serve, storeOf } from './served.mjs';

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

test('two runs that the reader chooses with the keyboard, and the other way round', async () => {
  const page = await openView(browser, server, 'compare');
  await page.waitForFunction(() => document.querySelectorAll('.run-choice .found button').length === 2);
  await page.keyboard.type(older.slice(0, 8));
  await page.waitForFunction(() => document.querySelectorAll('.run-choice .found button').length === 1);
  await page.locator('.found button').press('Enter');
  await page.getByRole('alert').filter({ hasText: 'there is no finished run' }).waitFor({ timeout: 30000 });
  await page.getByRole('button', { name: 'The other: choose another' }).press('Enter');
  await page.locator('.found button', { hasText: newer.slice(0, 8) }).press('Enter');
  await isCompared(page);
  assert.match(page.url(), new RegExp(`run=${older}&with=${newer}`));
  await page.getByRole('button', { name: 'Swap' }).press('Enter');
  await isCompared(page);
  assert.match(page.url(), new RegExp(`run=${newer}&with=${older}`));
  await page.goBack();
  await isCompared(page);
  assert.match(await page.textContent('.run-choice .facts'), new RegExp(older.slice(0, 8)), 'the address is not shown');
  const own = page.complaints.filter((text) => !text.includes('404')); // nothing is like the older one
  assert.deepEqual(own, []);
});

test('on a small dark screen', async () => {
  const options = { viewport: { width: 800, height: 600 }, colorScheme: 'dark' };
  const page = await openView(browser, server, `compare?run=${newer}${noise}`, options);
  await isCompared(page);
  assert.ok((await page.evaluate(() => document.documentElement.scrollWidth)) <= 800, 'it is wider than the screen');
  const back = await page.evaluate(() => getComputedStyle(document.body).backgroundColor);
  assert.equal(back, 'rgb(20, 24, 31)');
});

test('what a screen reader is told, and what is on paper', async () => {
  const page = await openView(browser, server, `compare?run=${newer}${noise}`);
  await isCompared(page);
  await isTold(page, [
    ['heading', /^This run$/],
    ['button', /^The other: choose another$/],
    ['columnheader', /^Where$/],
    ['rowheader', /^Image Dose$/],
    ['group', /^Both in one plot$/],
  ]);
  await isPrinted(page, {
    shown: ['.run-choice .facts', '.rules', '.differences', '#plot canvas'],
    hidden: ['nav', '.run-choice button', '#connection'],
  });
});
