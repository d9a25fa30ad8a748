// The page of a run that is served, in a real browser, while the run is recorded.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { readFileSync, rmSync } from 'node:fs';
import { join } from 'node:path';
import { after, before, test } from 'node:test';

import { afterDrawing, launch } from '../page/browser.mjs';
import { ask, record, sample, scratch } from '../page/recordings.mjs';
import { end, isPrinted, isTold, openView, recordSlowly, serve, storeOf } from './served.mjs';

let browser;
const begun = [];
before(async () => {
  browser = await launch();
});
after(async () => {
  await Promise.all(begun.map((child) => end(child)));
  await browser.close();
  rmSync(scratch, { recursive: true });
});

/** A run that is recorded, and its page once it has some rows. */
async function recording(name, options = {}) {
  const folder = storeOf(name, 'Scope 7');
  const host = recordSlowly(folder);
  const server = await serve([folder]);
  begun.push(host, server.child);
  const page = await openView(browser, server, 'run?run=last', options);
  await hasRows(page, 4);
  return { folder, host, server, page };
}

const rows = (page) => page.locator('#table tbody tr[data-execution]').count();
const hasRows = (page, least) =>
  page.waitForFunction((count) => document.querySelectorAll('#table tbody tr[data-execution]').length >= count, least, {
    timeout: 60000,
  });
const isState = (page, words, timeout = 60000) =>
  page.waitForFunction((text) => document.querySelector('#run-state')?.textContent === text, words, { timeout });
const timeShown = (page) => page.$eval('#timeline', ({ dataset }) => [dataset.from, dataset.to]);

test('what a reader has chosen stays while the run grows', async () => {
  const { server, page } = await recording('grows');
  assert.match(await page.title(), /^running · night\.mdoc · /);
  assert.match(page.url(), /run=[0-9a-f-]{36}$/, 'a link to the last run would lead to another one tomorrow');
  const few = await rows(page);
  await page.click('#table tbody tr:nth-child(2) .open');
  await afterDrawing(page, () => page.click('#zoom-in'));
  const zoomed = await timeShown(page);
  await page.selectOption('#plot-y', { label: 'Defocus' });
  await page.fill('#find', 'ZValue');
  await page.click('#columns summary');
  await page.locator('#column-choice label', { hasText: 'Description' }).click();
  await page.locator('#table thead button', { hasText: 'Started' }).click();
  await page.locator('#table thead button', { hasText: 'Started' }).click(); // the newest first
  const row = page.locator('#table tbody tr[data-execution="3"] .open');
  await row.focus();
  const opened = await page.$('.history');
  await hasRows(page, few + 4);
  assert.deepEqual(await timeShown(page), zoomed, 'it did not show the end');
  assert.equal(await page.inputValue('#find'), 'ZValue');
  assert.equal(await page.locator('#plot-y option:checked').textContent(), 'Defocus');
  assert.ok(await opened.evaluate((element) => element.isConnected), 'the history was made anew');
  assert.ok(await row.evaluate((element) => element === document.activeElement), 'the focus is lost');
  assert.equal(await page.getAttribute('#columns', 'open'), '');
  assert.ok(await page.locator('#table thead', { hasText: 'Description' }).isVisible());
  const newest = await page.$$eval('#table tbody tr[data-execution]', (list) =>
    list.slice(0, 2).map((one) => Number(one.dataset.execution)),
  );
  assert.ok(newest[0] > newest[1], 'the order is lost');
  await page.click('#zoom-all');
  const [, last] = await timeShown(page);
  await page.waitForFunction((to) => Number(document.querySelector('#timeline').dataset.to) > Number(to), last);
  assert.deepEqual(page.complaints, []);
  await server.stop();
  await page.waitForFunction(() =>
    /^not connected since .*; what is shown is from then/.test(document.querySelector('#connection').textContent),
  );
});

test('a host that is killed: STOPPED within two seconds', async () => {
  const { host, page } = await recording('killed');
  await isState(page, 'running');
  await end(host);
  await isState(page, 'STOPPED', 2000);
  await page.waitForFunction(() => document.querySelector('#alarm strong')?.textContent === 'STOPPED');
  assert.match(await page.title(), /^STOPPED · night\.mdoc · /);
  const told = await page.locator('#run-state').getAttribute('role');
  assert.equal(told, 'alert', 'a screen reader does not interrupt for it');
  await isTold(page, [
    ['navigation', /^Views$/],
    ['link', /^Download this page$/],
    ['alert', /^STOPPED$|^$/],
    ['columnheader', /^Started/],
    ['group', /^Plot/],
  ]);
  await isPrinted(page, { shown: ['h1', '#timeline canvas', '#table'], hidden: ['nav', '#to-file', '#connection'] });
  assert.deepEqual(page.complaints, []);
});

test('a run that ends is done without a reload, and its file is that of the program', async () => {
  const folder = storeOf('ends', 'Scope 7');
  const host = recordSlowly(folder, 'night.mdoc', 60);
  const server = await serve([folder]);
  begun.push(host, server.child);
  const page = await openView(browser, server, 'run?run=last');
  await isState(page, 'done');
  await page.waitForFunction(() => document.querySelector('#alarm').hidden);
  assert.match(await page.title(), /^done · /);
  assert.equal(await rows(page), 41);
  const [download] = await Promise.all([page.waitForEvent('download'), page.click('#to-file')]);
  const [{ guid }] = ask(folder, 'SELECT guid FROM executions WHERE parent_id IS NULL');
  assert.equal(download.suggestedFilename(), `run-${guid.slice(0, 8)}.html`);
  const file = join(folder, 'verb.html');
  execFileSync(`${process.env.VELORA_BIN}/velora-ts`, ['report', guid, '-o', file], { cwd: folder, stdio: 'ignore' });
  const withoutTime = (path) => readFileSync(path, 'utf8').replace(/"(made|asked)":\d+/g, '"$1":0');
  assert.equal(withoutTime(await download.path()), withoutTime(file));
  assert.ok(!withoutTime(file).includes('to-file"'), 'the file offers to download itself');
  assert.deepEqual(page.complaints, []);
});

test('a run that is not there', async () => {
  const server = await serve([record('none', 'sample.mdoc', sample())]);
  begun.push(server.child);
  const page = await openView(browser, server, 'run?run=<b>nobody</b>');
  await page.waitForFunction(() => document.querySelector('#alarm').textContent.includes('<b>nobody</b>'));
  assert.ok(!(await page.isVisible('main')));
});
