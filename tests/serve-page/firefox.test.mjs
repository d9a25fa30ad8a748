// The basic steps in each view, in Debian's Firefox.
import assert from 'node:assert/strict';
import { rmSync } from 'node:fs';
import { after, before, test } from 'node:test';

import { scratch, twoNights } from '../page/recordings.mjs';
import { Firefox } from './firefox.mjs';
import { end, recordSlowly, serve, storeOf } from './served.mjs';

const enter = '\uE007';
const begun = [];
let firefox, server, host;
before(async () => {
  firefox = await Firefox.launch();
  const scope = storeOf('scope', 'Scope 7');
  const { folder } = twoNights();
  host = recordSlowly(scope, 'night.mdoc', 4000);
  server = await serve([folder, scope]);
  begun.push(host, server.child);
});
after(async () => {
  await Promise.all(begun.map((child) => end(child)));
  await firefox?.close();
  rmSync(scratch, { recursive: true });
});

const text = (selector) => firefox.evaluate((one) => document.querySelector(one)?.textContent, selector);
const untilText = (selector, pattern) =>
  firefox.until(
    (one, words) => new RegExp(words).test(document.querySelector(one)?.textContent ?? ''),
    selector,
    pattern.source,
  );

test('a run that grows while it is looked at', async () => {
  await firefox.open(`${server.address}run?run=last&store=2`);
  await untilText('#run-state', /^running$/);
  await firefox.until(() => document.querySelectorAll('#table tbody tr[data-execution]').length > 3);
  await firefox.click('#table tbody tr:nth-child(2) .open');
  const few = Number.parseInt(await text('#more'), 10);
  await firefox.until((rows) => parseInt(document.querySelector('#more').textContent, 10) > rows + 2, few);
  assert.ok(await firefox.evaluate(() => document.querySelector('.history') !== null), 'what was open is closed');
});

test('Now turns to STOPPED without a reload', async () => {
  await firefox.open(server.address);
  const states = (words) =>
    firefox.until(
      (state) => [...document.querySelectorAll('.instrument .state')].some((one) => one.textContent === state),
      words,
    );
  await states('running');
  await firefox.evaluate(() => (document.body.dataset.same = 'yes'));
  await end(host);
  await states('STOPPED');
  assert.equal(await firefox.evaluate(() => document.body.dataset.same), 'yes');
  await firefox.until(() => /^STOPPED: Scope 7/.test(document.title));
});

test('a filter of runs', async () => {
  await firefox.open(`${server.address}runs`);
  await firefox.until(() => document.querySelectorAll('.row:not(.head)').length === 3);
  await firefox.type('input[name=instrument]', `Scope 7${enter}`);
  await firefox.until(() => document.querySelectorAll('.row:not(.head)').length === 1);
  assert.match(await firefox.evaluate(() => window.location.search), /instrument=Scope\+7/);
});

test('a trend, of which a click leads to a run', async () => {
  await firefox.open(`${server.address}trends`);
  await firefox.type('input[name=parameter]', `Dose${enter}`);
  await firefox.until(() => Number(document.querySelector('.chart').dataset.drawn) > 0);
  assert.match(await text('.trend [role=status]'), /^[\d,]+ numbers from /);
  await firefox.click('.trend summary');
  await firefox.click('.trend-table tbody a');
  await firefox.until(() => document.querySelector('#table tbody tr[data-execution]') !== null);
});

test('a comparison with the last good run', async () => {
  await firefox.open(`${server.address}compare?store=1&run=last&ignore=DateTime`);
  await firefox.until(() => document.querySelector('#plot[data-drawn]') !== null);
  assert.match(await text('.differences'), /Image Dose/);
  assert.match(await text('#plot-note'), /numbers of the other/);
});
