// The view of trends in a real browser, against what the server answers and the store has.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { rmSync } from 'node:fs';
import { after, before, test } from 'node:test';

import { launch } from '../page/browser.mjs';
import { ask, scratch, write } from '../page/recordings.mjs';
import { isPrinted, isTold, openView, serve, storeOf } from './served.mjs';

const hostile = `<img src=x onerror="window.bad=1">\u202egnp.${'W'.repeat(300)}`;
const quoted = (text) => `'${text.replaceAll("'", "''")}'`;

/** 3,000 events of two instruments in half a year, each in a run of its own instrument. */
function filled() {
  const folder = storeOf('trends', 'Scope 7');
  execFileSync(`${process.env.VELORA_BIN}/velora-ts`, ['prepare', '--config', folder]);
  write(
    folder,
    `INSERT INTO sessions VALUES (1, 's', 'Scope 7', '', '2026', '', '', ''), (2, 't', ${quoted(hostile)}, '', '2026',
      '', '', '');
    INSERT INTO executions SELECT value, printf('%08x-0000-4000-8000-000000000000', value), NULL, value, value % 2 + 1,
      NULL, 'grid ' || value, '', 5, '2026' FROM generate_series(1, 100);
    INSERT INTO events SELECT value, (value - 1) % 100 % 2 + 1, (value - 1) % 100 + 1, NULL, 'Image',
      strftime('%Y-%m-%dT%H:%M:%S', '2026-01-01', (value * 90) || ' minutes') || '.000000Z'
      FROM generate_series(1, 3000);
    INSERT INTO parameters SELECT value, 1, 'Dose', 'double', NULL, value * 7919 % 1009 / 8.0 + value / 20.0
      FROM generate_series(1, 3000);
    INSERT INTO parameters SELECT value, 2, ${quoted(hostile)}, 'int', NULL, value FROM generate_series(1, 3000);
    INSERT INTO sessions SELECT value, 'm' || value, 'Veldmar ' || value, '', '2026', '', '', ''
      FROM generate_series(11, 22);
    INSERT INTO events SELECT value, value % 12 + 11, NULL, NULL, 'Image', '2026-03-01T00:00:00.000000Z'
      FROM generate_series(3001, 3024);
    INSERT INTO parameters SELECT value, 1, 'Current', 'int', NULL, value FROM generate_series(3001, 3024);`,
  );
  return folder;
}

let browser, folder, server;
before(async () => {
  browser = await launch();
  folder = filled();
  server = await serve([folder]);
});
after(async () => {
  await server.stop();
  await browser.close();
  rmSync(scratch, { recursive: true });
});

const drawn = (page) => page.waitForFunction(() => document.querySelector('.chart').dataset.drawn > 0);
const answerOf = async (page) => (await fetch(page.url().replace('/trends', '/api/trends'))).json();

async function openTrend(parameters, options) {
  const page = await openView(browser, server, `trends?${new URLSearchParams(parameters)}`, options);
  await drawn(page);
  return page;
}

/** Waits until the view shows what the address asks, after something was done. */
async function afterAsking(page, action) {
  const answered = page.waitForResponse((response) => response.url().includes('/api/trends'));
  await page.$eval('.chart', (chart) => delete chart.dataset.drawn);
  await action();
  await answered;
  await drawn(page);
}

test('the plot and the table have the numbers of the answer, and links to the runs', async () => {
  const page = await openTrend({ parameter: 'Dose', by: 'instrument' });
  const { groups } = await answerOf(page);
  assert.deepEqual(
    groups.map(({ count }) => count),
    [1500, 1500],
  );
  const bins = groups.flatMap((group) => group.bins);
  assert.equal(await page.getAttribute('.chart', 'data-drawn'), String(bins.length));
  await page.getByText('The numbers as a table').press('Enter');
  for (let more = page.getByRole('button', { name: /^Show more/ }); await more.isVisible();) {
    await more.click();
  }
  const rows = await page.$$eval('.trend-table tbody tr', (all) =>
    all.map((row) => [...row.cells].slice(3).map((cell) => [cell.title, cell.querySelector('a')?.search ?? null])),
  );
  const link = (extreme) => `?store=${extreme.store}&run=${extreme.run}`;
  assert.deepEqual(
    rows,
    bins.map((bin) => [
      [String(bin.min), link(bin.lowest)],
      ...['q05', 'q25', 'median', 'q75', 'q95'].map((name) => [String(bin[name]), null]),
      [String(bin.max), link(bin.highest)],
    ]),
  );
  const words = await page.textContent('.trend [role=status]');
  assert.match(words, /^3,000 numbers from 2026-01-01.* All numbers are exact\.$/);
  assert.deepEqual(page.complaints, []);
  await page.context().close();
});

for (const [what, extreme, row] of [
  ['top', 'highest', 'DESC'],
  ['bottom', 'lowest', 'ASC'],
]) {
  test(`a click at the ${what} of a bin leads to the run of its ${extreme} number`, async () => {
    const page = await openTrend({ parameter: 'Dose', instrument: 'Scope 7' });
    const { groups } = await answerOf(page);
    const bin = groups[0].bins[40];
    const [x, y] = await page.evaluate(
      ([from, to, low, high, isTop]) => {
        const at = echarts.getInstanceByDom(document.querySelector('.canvas'));
        const middle = (Date.parse(from) + Date.parse(to)) / 2;
        const little = (high - low) / 20;
        return at.convertToPixel({ gridIndex: 0 }, [middle, isTop ? high - little : low + little]);
      },
      [bin.from, bin.to, bin.min, bin.max, what === 'top'],
    );
    const { run } = bin[extreme];
    const [told] = ask(
      folder,
      `SELECT r.guid FROM events v JOIN parameters p USING (event_id) JOIN executions r USING (execution_id)
        WHERE v.session_id = 1 AND p.name = 'Dose' AND at >= '${bin.from}' AND at < '${bin.to}'
        ORDER BY value_number ${row} LIMIT 1`,
    );
    assert.equal(run, told.guid);
    await page.locator('.canvas').click({ position: { x, y } });
    await page.waitForURL(new RegExp(`/run\\?store=1&run=${run}$`));
    await page.context().close();
  });
}

test('no two groups look the same', async () => {
  const page = await openTrend({ parameter: 'Current', by: 'instrument' });
  const looks = await page.evaluate(() => {
    const chart = echarts.getInstanceByDom(document.querySelector('.canvas'));
    const shapes = chart.getZr().storage.getDisplayList();
    const marked = new Set(shapes.filter(({ type }) => type === 'polygon').map(({ parent }) => parent));
    const bands = shapes.filter(({ type, style }) => type === 'rect' && style.opacity === 0.15);
    return bands.map(({ parent, style }) => `${style.fill} ${marked.has(parent)}`);
  });
  assert.equal(looks.length, 11);
  assert.equal(new Set(looks).size, 11, looks.join());
  assert.deepEqual(page.complaints, []);
  await page.context().close();
});

test('the address holds what is chosen, and a closer look asks again', async () => {
  const page = await openView(browser, server, 'trends');
  assert.equal(await page.locator('.trend').isVisible(), false);
  await page.getByLabel('Parameter').fill('Dose');
  await page.keyboard.press('Enter');
  await drawn(page);
  const width = (await answerOf(page)).bin_microseconds;
  await afterAsking(page, () => page.getByLabel('Groups').selectOption('by instrument'));
  assert.match(page.url(), /\/trends\?parameter=Dose&by=instrument$/);
  await afterAsking(page, () => page.getByRole('button', { name: 'Closer' }).press('Enter'));
  const closer = await answerOf(page);
  assert.ok(closer.bin_microseconds < width && closer.count < 1700 && closer.count > 1300, String(closer.count));
  assert.equal(await page.locator('label', { hasText: /^Time/ }).locator('select').inputValue(), 'own');
  const other = await openView(browser, server, page.url().slice(server.address.length)); // as a colleague
  await drawn(other);
  const [one, two] = await Promise.all([page, other].map((each) => each.textContent('.trend [role=status]')));
  assert.equal(one, two);
  await afterAsking(page, () => page.goBack());
  assert.match(page.url(), /\/trends\?parameter=Dose&by=instrument$/);
  await afterAsking(page, () =>
    page.evaluate(() => {
      const chart = echarts.getInstanceByDom(document.querySelector('.canvas'));
      chart.dispatchAction({ type: 'dataZoom', start: 40, end: 60 });
    }),
  );
  const { count } = await answerOf(page);
  assert.ok(count > 500 && count < 700, count);
  await page.context().close();
});

test('what cannot be answered is said', async () => {
  const page = await openView(browser, server, 'trends?parameter=Dose&since=soon');
  assert.match(await page.getByRole('alert').filter({ hasText: 'soon' }).textContent(), /time 'soon': expected/);
  await page.locator('[name=since]').fill('2040-01-01');
  await page.keyboard.press('Enter');
  await page.getByText('There are no numbers of this parameter like that.').waitFor();
  await page.context().close();
});

test('names that are markup, turn the line, and are long, also where it is small and dark', async () => {
  const page = await openTrend(
    { parameter: hostile, by: 'instrument' },
    { viewport: { width: 800, height: 600 }, colorScheme: 'dark' },
  );
  await page.getByText('The numbers as a table').click();
  const [bad, overflow, title] = await page.evaluate(() => [
    window.bad,
    document.documentElement.scrollWidth - window.innerWidth,
    document.querySelector('.trend h2').textContent,
  ]);
  assert.deepEqual([bad, overflow <= 0], [undefined, true], `${overflow}`);
  assert.ok(title.startsWith('<img src=x onerror="window.bad=1">\\u202egnp.'), title);
  assert.deepEqual(page.complaints, []);
  await page.context().close();
});

test('what a screen reader is told, and what is on paper', async () => {
  const page = await openTrend({ parameter: 'Dose', by: 'instrument' });
  await page.getByText('The numbers as a table').click();
  await isTold(page, [
    ['search', /^Trend shown$/],
    ['heading', /^Dose$/],
    ['image', /^Minimum, quantiles and maximum of Dose over time$/],
    ['columnheader', /^Median$/i],
    ['button', /^Closer$/],
  ]);
  await isPrinted(page, { shown: ['.trend h2', '.chart canvas'], hidden: ['nav', '.filter', '.bar button'] });
});
