// The view of runs, in a real browser: what it lists, filters and leads to, against what the store holds.
import assert from 'node:assert/strict';
import { rmSync } from 'node:fs';
import { after, before, test } from 'node:test';

import { launch } from '../page/browser.mjs';
import { ask, record, sample, scratch, write } from '../page/recordings.mjs';
import { end, isPrinted, isTold, openView, recordSlowly, serve } from './served.mjs';

const count = 5000;
const begun = [];
let browser, folder, server;
before(async () => {
  browser = await launch();
  folder = record('thousands', 'first.mdoc', sample());
  const started = (ahead) =>
    `strftime('%Y-%m-%dT%H:%M:%S', '2024-01-01', (i * 2 + ${ahead}) || ' hours') || '.000000Z'`;
  write(
    folder,
    `WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < ${count - 1})
      INSERT INTO executions SELECT 10000 + i, printf('%08x-0000-4000-8000-000000000000', i), NULL, 10000 + i, 1, 1,
        CASE WHEN i % 7 = 0 THEN '<b>' || i || '</b>' ELSE 'night ' || i END, '', 0, ${started(0)} FROM n;
    INSERT INTO statuses SELECT execution_id, execution_id, 1, 14, replace(started_at, ':00:00', ':30:00')
      FROM executions WHERE execution_id > 10000;
    INSERT INTO events SELECT execution_id, 1, execution_id, NULL, 'Exposure', started_at FROM executions
      WHERE execution_id > 10000;
    INSERT INTO parameters SELECT execution_id, 1, 'Dose', 'double', NULL, execution_id % 100 FROM executions
      WHERE execution_id > 10000;`,
  );
  server = await serve([folder]);
  begun.push(server.child);
});
after(async () => {
  await Promise.all(begun.map((child) => end(child)));
  await browser.close();
  rmSync(scratch, { recursive: true });
});

const nodesOf = (page) =>
  page.$$eval('.row[data-key]', (rows) =>
    rows.sort((a, b) => a.ariaRowIndex - b.ariaRowIndex).map((row) => row.children[8].textContent),
  );
const nodesIn = (condition) =>
  ask(
    folder,
    `SELECT node FROM executions WHERE parent_id IS NULL AND ${condition} ORDER BY started_at DESC, execution_id DESC`,
  ).map(({ node }) => node);
const isCount = (page, words) => page.getByText(words, { exact: true }).waitFor();
const opened = async (address = 'runs') => {
  const page = await openView(browser, server, address);
  await page.waitForSelector('.row[data-key]');
  return page;
};

test('thousands of runs, of which few are rows, by pointer and by keyboard alone', async () => {
  const page = await opened();
  const all = nodesIn('1');
  assert.deepEqual((await nodesOf(page)).slice(0, 20), all.slice(0, 20));
  assert.ok((await page.$$('.row')).length < 100);
  const grid = page.getByRole('grid', { name: 'Runs' });
  await grid.focus();
  await page.keyboard.press('End');
  await isCount(page, '5,000 runs');
  const active = () => page.$eval('.row.active', (row) => [row.ariaRowIndex, row.children[8].textContent]);
  assert.deepEqual(await active(), ['5001', all[count - 1]]);
  assert.equal(await grid.getAttribute('aria-rowcount'), '5001');
  const described = await grid.getAttribute('aria-activedescendant');
  assert.ok(await page.$eval(`#${described}`, (row) => row.classList.contains('active')));
  for (const at of [0, 0.2, 0.5, 0.9]) {
    await grid.evaluate((element, part) => (element.scrollTop = part * element.scrollHeight), at);
    await page.waitForFunction((part) => {
      const rows = [...document.querySelectorAll('.row[data-key]')].map((row) => Number(row.ariaRowIndex) - 2);
      return rows.includes(Math.floor(part * 5000));
    }, at);
    const some = await nodesOf(page);
    assert.deepEqual(some, all.slice(all.indexOf(some[0]), all.indexOf(some[0]) + some.length));
    assert.ok(some.length < 100);
  }
  await page.keyboard.press('Home');
  await page.keyboard.press('ArrowDown');
  await page.keyboard.press('PageDown');
  const [row] = await active();
  assert.ok(row > 12, row);
  await page.keyboard.press('Enter');
  await page.waitForURL(/\/run\?store=1&run=[0-9a-f-]{36}$/);
  assert.deepEqual(page.complaints, []);
});

test('what is asked is in the address, and an address asks the same', async () => {
  const page = await opened();
  await page.getByLabel('Text').fill('night 12');
  await page.keyboard.press('Enter');
  const some = nodesIn(`node LIKE 'night 12%'`);
  await isCount(page, `${some.length} runs`);
  await page.getByLabel('With an event where').fill('Dose > 40');
  await page.keyboard.press('Enter');
  const both = nodesIn(`node LIKE 'night 12%' AND execution_id % 100 > 40`);
  await isCount(page, `${both.length} runs`);
  await page.getByLabel('Since').fill('2024-04-15');
  await page.keyboard.press('Enter');
  const since = nodesIn(`node LIKE 'night 12%' AND execution_id % 100 > 40 AND started_at >= '2024-04-14T22'`);
  await isCount(page, `${since.length} runs`);
  assert.ok(since.length > 0 && since.length < both.length && both.length < some.length);
  const address = page.url();
  const asked = { text: 'night 12', since: '2024-04-15 00:00+02:00', where: 'Dose > 40' };
  assert.deepEqual(Object.fromEntries(new URL(address).searchParams), asked);
  const other = await opened(`runs${new URL(address).search}`);
  await isCount(other, `${since.length} runs`);
  assert.deepEqual(await nodesOf(other), since.slice(0, 60).slice(0, (await nodesOf(other)).length));
  await page.goBack();
  await isCount(page, `${both.length} runs`);
  await page.getByRole('button', { name: 'No longer ask for Dose > 40' }).click();
  await isCount(page, `${some.length} runs`);
  await page.getByRole('button', { name: 'Clear' }).click();
  await page.waitForURL(/runs$/);
  assert.deepEqual([...page.complaints, ...other.complaints], []);
});

test('names of instruments and activities are offered', async () => {
  const page = await opened();
  const offered = (name) => page.$$eval(`#known-${name} option`, (list) => list.map((one) => one.value));
  await page.waitForFunction(() => document.querySelector('#known-activity option'));
  const expected = (question) => ask(folder, `SELECT DISTINCT ${question} AS name ORDER BY 1`).map(({ name }) => name);
  assert.deepEqual(await offered('instrument'), expected('instrument FROM sessions'.replace(' FROM', ' AS name FROM')));
  assert.ok((await offered('activity')).includes('TiltSeries'));
  assert.equal(await page.getByLabel('Activity').getAttribute('list'), 'known-activity');
});

test('the words of the server stand beside what it does not understand', async () => {
  const page = await opened();
  const earlier = await nodesOf(page);
  await page.getByLabel('With an event where').fill('Dose');
  await page.keyboard.press('Enter');
  const alarm = page.locator('.error[role=alert]');
  await page.waitForFunction(() => document.querySelector('.error').textContent !== '');
  assert.match(await alarm.textContent(), /Dose/);
  assert.deepEqual(await nodesOf(page), earlier);
  await page.getByRole('button', { name: 'No longer ask for Dose' }).click();
  await page.waitForFunction(() => document.querySelector('.error').textContent === '');
});

test('two runs are chosen to be compared', async () => {
  const page = await opened();
  await page.locator('.grid').focus();
  for (const key of ['ArrowDown', 'ArrowDown', ' ', 'ArrowDown', ' ']) {
    await page.keyboard.press(key);
  }
  const [newer, older] = ask(
    folder,
    'SELECT guid FROM executions WHERE parent_id IS NULL ORDER BY started_at DESC, execution_id DESC LIMIT 2 OFFSET 1',
  );
  const link = page.getByRole('link', { name: /^Compare / });
  const expected = `./compare?store=1&run=${newer.guid}&with=${older.guid}&with_store=1`;
  assert.equal(await link.getAttribute('href'), expected);
  assert.equal(await page.locator('[role=row][aria-selected=true]').count(), 2);
});

test('a run that begins is listed, and moves nothing that is read', async () => {
  const page = await opened();
  const grid = page.locator('.grid');
  await grid.evaluate((element) => (element.scrollTop = 1000));
  const places = () =>
    page.$$eval('.row[data-key]', (rows) => {
      const { top, bottom } = document.querySelector('.grid').getBoundingClientRect();
      const seen = rows.map((row) => [row.children[8].textContent, Math.round(row.getBoundingClientRect().top)]);
      return Object.fromEntries(seen.filter(([, at]) => at > top + 30 && at < bottom));
    });
  await page.waitForFunction(() => document.querySelector('.row[aria-rowindex="40"]'));
  const earlier = await places();
  const host = recordSlowly(folder, 'new.mdoc');
  begun.push(host);
  await page.getByRole('button', { name: /^1 newer run/ }).waitFor();
  assert.deepEqual(await places(), earlier);
  await page.getByRole('button', { name: /^1 newer run/ }).click();
  const first = page.locator('.row[aria-rowindex="2"]');
  assert.match(await first.textContent(), /running.*new\.mdoc/);
  await end(host);
  await page.waitForFunction(() => /STOPPED/.test(document.querySelector('.row[aria-rowindex="2"]').textContent));
  assert.deepEqual(page.complaints, []);
});

test('what a screen reader is told, and what is on paper', async () => {
  const page = await opened('runs?text=night');
  await isTold(page, [
    ['search', /^Runs shown$/],
    ['searchbox', /^With an event where$/],
    ['grid', /^Runs$/],
    ['columnheader', /^Started$/],
    ['gridcell', /^finished$|^done$/],
    ['status', /.*/],
  ]);
  const isCut = (element) => element.getBoundingClientRect().top < element.parentElement.getBoundingClientRect().top;
  assert.equal(await page.$eval('.cell > .state', isCut), false, 'the state is cut at its top');
  await page.locator('.grid').press('End');
  await page.waitForFunction(() => /\d runs$/.test(document.querySelector('.counts .hint').textContent));
  await page.evaluate(() => window.dispatchEvent(new window.Event('beforeprint')));
  await isPrinted(page, { shown: ['h1', '.row[data-key]', '.on-paper'], hidden: ['nav', '.filter', '#connection'] });
  assert.equal((await page.$$('.row[data-key]')).length, 1000);
  const left = (nodesIn(`node LIKE '%night%'`).length - 1000).toLocaleString('en');
  assert.equal(await page.textContent('.on-paper'), `1,000 runs on paper; ${left} more are left out`);
  await page.evaluate(() => window.dispatchEvent(new window.Event('afterprint')));
  assert.ok((await page.$$('.row[data-key]')).length < 100);
});
