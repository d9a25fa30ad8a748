// Two runs beside each other, in a real browser.
import assert from 'node:assert/strict';
import { once } from 'node:events';
import { rmSync } from 'node:fs';
import { after, before, test } from 'node:test';
import { setTimeout as pause } from 'node:timers/promises';

import { launch } from '../page/browser.mjs';
import { ask, scratch, twoNights } from '../page/recordings.mjs';
import { end, isPrinted, isTold, openView, recordSlowly, serve, storeOf } from './served.mjs';

let browser, server, folder, older, newer;
const begun = [];
before(async () => {
  browser = await launch();
  ({ folder } = twoNights());
  [older, newer] = ask(folder, 'SELECT guid FROM executions WHERE parent_id IS NULL ORDER BY execution_id').map(
    ({ guid }) => guid,
  );
  server = await serve([folder, storeOf('empty', 'Scope 7')]);
});
after(async () => {
  await Promise.all([server.child, ...begun].map((child) => end(child)));
  await browser.close();
  rmSync(scratch, { recursive: true });
});

const isCompared = (page) => page.waitForSelector('#plot[data-drawn]', { timeout: 60000 });
const plotted = (page) => page.getAttribute('#plot', 'data-quantity');
const tableOf = (page) =>
  page.$$eval('.differences tbody tr.group', (list) => list.map((row) => [...row.cells].map((one) => one.textContent)));
const noise = ['File', 'DateTime', 'Defocus', 'FocusScore'].map((name) => `&ignore=${name}`).join('');

test('the last good run, what differs in words, and both in one plot', async () => {
  const asked = [];
  const prepare = (one) => one.on('request', (request) => asked.push(new URL(request.url()).pathname));
  const page = await openView(browser, server, `compare?run=last&store=1${noise}`, { prepare });
  await isCompared(page);
  assert.match(await page.textContent('.run-choice:nth-child(2) .facts'), new RegExp(older.slice(0, 8)));
  const found = await tableOf(page);
  const dose = found.find(([what]) => what === 'Image Dose');
  assert.match(dose[1], /^[\d,]+ of [\d,]+$/);
  assert.deepEqual([dose[3], dose[5]], ['41.5', '+1.5']);
  assert.ok(found.some(([what, , where]) => what === 'steps only in this run' && where.endsWith('hole 5 (2)')));
  assert.ok(found.some(([what, , , own, other]) => /version/.test(what) && own === 'Hole 2.1' && other === 'Hole 2.0'));
  assert.match(
    await page.textContent('p.parting'),
    /They first part at .*after the start: .*hole 5 \(2\): only in this run/,
  );
  assert.equal(await plotted(page), 'Image Dose', 'of those that differ, it says most');
  assert.match(await page.textContent('#plot-note'), /^[\d,]+ numbers of this run.*; [\d,]+ numbers of the other/);
  assert.ok(!asked.includes('/api/run/data'), 'it loads both records');
  const link = page.locator('p.parting a');
  assert.match(
    await link.getAttribute('href'),
    new RegExp(`run\\?store=1&run=${newer}.*with=${older}.*#execution-\\d+`),
  );
  assert.deepEqual(page.complaints, []);
});

test('another parameter in the plot, which the address holds, and a step of it', async () => {
  const page = await openView(browser, server, `compare?run=${newer}${noise}`);
  await isCompared(page);
  await page.selectOption('#plot-y', { label: 'StageX' });
  await page.waitForFunction(() => document.querySelector('#plot').dataset.quantity === 'Stage moved StageX');
  assert.match(page.url(), /event=Stage\+moved&parameter=StageX/);
  const sent = await openView(browser, server, page.url().slice(server.address.length));
  await isCompared(sent);
  assert.equal(await plotted(sent), 'Stage moved StageX');
  assert.equal(await sent.locator('#plot-y option:checked').textContent(), 'StageX');
  await page.goBack();
  await page.waitForFunction(() => document.querySelector('#plot').dataset.quantity === 'Image Dose');
  assert.deepEqual([...page.complaints, ...sent.complaints], []);
});

test('a run that is recorded is compared again as it grows, and what is plotted stays', async () => {
  const own = storeOf('grows', 'Scope 7');
  const done = recordSlowly(own, 'first.mdoc', 1);
  await once(done, 'exit');
  const host = recordSlowly(own, 'second.mdoc');
  while (ask(own, 'SELECT execution_id FROM events GROUP BY execution_id').length < 43) {
    await pause(100); // until its first event
  }
  const beside = await serve([own]);
  begun.push(host, beside.child);
  const page = await openView(browser, beside, 'compare?run=last&event=ZValue&parameter=TiltAngle');
  await isCompared(page);
  const numbers = () => page.textContent('#plot-note').then((text) => Number(/^\d+/.exec(text)));
  const few = await numbers();
  const drawn = await page.$('#plot canvas');
  await page.waitForFunction((least) => parseInt(document.querySelector('#plot-note').textContent) > least, few + 1);
  assert.ok(await drawn.evaluate((element) => element.isConnected), 'the plot was made anew');
  await end(host);
  await page.waitForFunction(() => /STOPPED/.test(document.querySelector('.run-choice .state').textContent));
  assert.equal(await plotted(page), 'ZValue TiltAngle');
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
