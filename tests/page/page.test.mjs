// What the page of a run shows, in a real browser, against what the store holds.
import assert from 'node:assert/strict';
import { readFileSync, rmSync } from 'node:fs';
import { after, before, test } from 'node:test';

import { afterDrawing, launch, openReport } from './browser.mjs';
import { ask, deep, hostile, hostileTexts, long, scratch, tiltSeries, unfinished } from './recordings.mjs';

let browser;
before(async () => (browser = await launch()));
after(async () => {
  await browser.close();
  rmSync(scratch, { recursive: true });
});

/** Both charts as ECharts has them: ends of the axis of time in values and in pixels, and data of all series. */
const charts = (page) => page.evaluate(() => Object.fromEntries(['timeline', 'plot'].map((id) => {
  const chart = echarts.getInstanceByDom(document.querySelector(`#${id} .canvas`));
  const { series, xAxis: [{ min, max }] } = chart.getOption();
  const pixels = [min, max].map((value) => chart.convertToPixel({ xAxisIndex: 0 }, value));
  const shapes = chart.getZr().storage.getDisplayList().filter((shape) => !shape.ignore && !shape.invisible);
  return [id, { ends: [min, max], pixels, texts: shapes.map((shape) => shape.style.text).filter((text) => text),
    data: series.flatMap(({ data }) => [...data].flat()),
    hatched: shapes.filter((shape) => shape.style.fill?.image).map(({ shape }) => shape.x + shape.width) }];
})));

const counts = async (page, id) => page.evaluate((name) => {
  const { executions, events, bars, points } = document.getElementById(name).dataset;
  return [executions, events, bars, points].map(Number);
}, id);

const rowsOf = (page) => page.$$eval('#table tbody tr[data-execution]', (rows) =>
  rows.map((row) => [...row.cells].map((cell) => cell.textContent)));

const heads = (page) => page.$$eval('#table thead button', (buttons) => buttons.map((button) => button.textContent));

async function downloaded(page, button) {
  const [file] = await Promise.all([page.waitForEvent('download'), page.click(button)]);
  const text = readFileSync(await file.path(), 'utf8');
  const cells = [...text.replace('\ufeff', '').matchAll(/(?:"((?:[^"]|"")*)"|([^",\r\n]*))(,|\r\n)/g)];
  const rows = [[]];
  for (const [, quoted, bare, end] of cells) {
    rows.at(-1).push(quoted?.replaceAll('""', '"') ?? bare);
    end === '\r\n' && rows.push([]);
  }
  return rows.slice(0, -1);
}

const readings = (folder, parameter, more = '') => ask(folder, `SELECT COALESCE(value_text, value_number) AS text,
  COALESCE(value_number, CAST(value_text AS REAL)) AS number, at FROM readings WHERE parameter = '${parameter}' ${more}
  ORDER BY event_id, position`);

test('a tilt series', async () => {
  const { folder, file } = tiltSeries();
  const page = await openReport(browser, file);
  assert.match(await page.textContent('#facts'), /Statedone.*not sealed.*all 42 events, 42 executions/);
  assert.equal(await page.textContent('h1'), 'sample.mdoc');
  assert.ok(!(await page.isVisible('#alarm')));
  assert.deepEqual((await counts(page, 'timeline')).slice(0, 3), [42, 42, 0]);

  const [defocus, angle] = ['Defocus', 'TiltAngle'].map((name) => readings(folder, name).map(({ number }) => number));
  assert.deepEqual((await charts(page)).plot.data, defocus.flatMap((y, at) => [angle[at], y]), 'a sensible pair');

  for (const [choice, label, expected] of [['#plot-x', 'time', defocus],
    ['#plot-y', 'FramesOnDisk', new Array(41).fill(0)], ['#plot-y', 'Magnification', new Array(41).fill(33000)]]) {
    await afterDrawing(page, () => page.selectOption(choice, { label }));
    assert.deepEqual((await charts(page)).plot.data.filter((unused, at) => at % 2 === 1), expected, label);
  }

  await page.focus('#timeline');
  for (const key of ['+', '+', 'ArrowRight']) {
    await afterDrawing(page, () => page.keyboard.press(key));
  }
  const { timeline, plot } = await charts(page);
  assert.deepEqual(timeline.ends, plot.ends);
  assert.deepEqual(timeline.pixels, plot.pixels);
  const start = ask(folder, 'SELECT MIN(started_at) AS at FROM executions')[0].at;
  const inWindow = (at) => {
    const micro = (text) => Date.parse(text.slice(0, 19) + 'Z') * 1000 + Number(text.slice(20, 26));
    return micro(at) - micro(start) >= timeline.ends[0] && micro(at) - micro(start) <= timeline.ends[1];
  };
  const shown = ask(folder, 'SELECT at FROM events').filter(({ at }) => inWindow(at)).length;
  assert.ok(shown > 3 && shown < 20, `${shown} of 42 events are in a quarter of the run`);
  assert.equal((await counts(page, 'timeline'))[1], shown);
  await afterDrawing(page, () => page.click('#zoom-all'));
  assert.equal((await counts(page, 'timeline'))[1], 42);
  const bar = { position: { x: (timeline.pixels[0] + timeline.pixels[1]) / 2, y: 40 } };
  await afterDrawing(page, () => page.dblclick('#timeline canvas', bar));
  assert.ok(!(await page.isVisible('.history')), 'a double click zooms and opens nothing');
  await page.click('#timeline canvas', bar);
  await page.waitForSelector('.history');
  await page.click('#own-history');
  await afterDrawing(page, () => page.click('#zoom-all'));

  const texts = readings(folder, 'TiltAngle').map(({ text }) => String(text));
  const column = async (name) => (await rowsOf(page)).map((row) => row[place[name]]);
  const place = Object.fromEntries((await heads(page)).map((name, at) => [name, at]));
  assert.deepEqual(await column('TiltAngle'), texts);
  for (const direction of [1, -1]) {
    await page.click('#table thead button:has-text("TiltAngle")');
    assert.deepEqual(await column('TiltAngle'), [...texts].sort((a, b) => direction * (a - b)));
  }
  await page.click('#columns summary');
  await page.check('#column-choice label:has-text("SubFramePath") input');
  assert.ok((await heads(page)).includes('SubFramePath'));

  const [names, ...rows] = await downloaded(page, '#download');
  assert.deepEqual(rows.map((row) => row[names.indexOf('TiltAngle')]), await column('TiltAngle'));
  assert.deepEqual(rows.map((row) => row[names.indexOf('SubFramePath')]).sort(),
    readings(folder, 'SubFramePath').map(({ text }) => text).sort());
  const [fields, ...events] = await downloaded(page, '#download-events');
  assert.deepEqual(events.map((row) => row[fields.indexOf('Time')]),
    ask(folder, 'SELECT at FROM events').map(({ at }) => at));
  assert.equal(fields.length, 5 + ask(folder, `SELECT DISTINCT parameter,
    ROW_NUMBER() OVER (PARTITION BY event_id, parameter ORDER BY position) FROM readings`).length);

  await page.click('#table tbody th:has-text("ZValue 7")');
  const history = page.locator('#table .history');
  assert.equal(await history.locator('.statuses li').count(), 2);
  assert.deepEqual(await history.locator('dt').allTextContents(),
    ask(folder, `SELECT parameter FROM readings WHERE node = 'ZValue 7'`).map(({ parameter }) => parameter));
  assert.deepEqual(page.complaints, []);
});

test('an unfinished run', async () => {
  const { folder, file } = unfinished();
  const page = await openReport(browser, file, { colorScheme: 'dark' });
  const open = ask(folder, 'SELECT node FROM execution_states WHERE status = 4 ORDER BY execution_id DESC');
  assert.equal(open.length, 2);
  assert.deepEqual(await page.locator('#alarm li strong').allTextContents(), open.map(({ node }) => node));
  const [alarm, header] = await Promise.all(['#alarm', 'header'].map((part) => page.locator(part).boundingBox()));
  assert.ok(alarm.y + alarm.height <= header.y, 'what did not finish is said first');
  const { timeline } = await charts(page);
  assert.equal(timeline.hatched.length, 2);
  assert.ok(timeline.hatched.every((end) => Math.abs(end - timeline.pixels[1]) < 1e-6), 'hatched to the edge');
  const pages = (await page.pdf({ preferCSSPageSize: true })).toString('latin1').match(/\/Type\s*\/Page\b/g);
  assert.equal(pages.length, 1, 'sheets of paper');
  assert.deepEqual(page.complaints, []);
});

test('a run of markup, script, quotes and broken UTF-8', async () => {
  const { file } = hostile();
  const page = await openReport(browser, file);
  const { node, event, value, name, braces, formula, below } = hostileTexts;
  assert.equal(await page.textContent('h1'), '<img src=x onerror="window.bad = 1">.mdoc');
  const { timeline } = await charts(page);
  for (const text of [node, `${event}  1`]) {
    assert.ok(timeline.texts.includes(text), `${text} is drawn: ${timeline.texts}`);
  }
  for (const row of await page.locator('#table tr[data-execution]').all()) {
    await row.click();
  }
  await page.click('#own-history');
  const shown = await page.$$eval('#table th button.open, #table h4 span, #table dt, #table dd', (elements) =>
    elements.map((element) => element.textContent));
  for (const text of [node, below, event, value, name, braces, formula, '\\x41', 'a\\u61cb\\u202ec\\ue0041', 'a\\xff\\xc3(<u>', '\\x00\\xff',
    'NaN', 'inf']) {
    assert.ok(shown.includes(text), `${text} is shown: ${shown}`);
  }
  assert.equal(shown.filter((text) => text === 'Twice').length, 2);
  const [names, ...rows] = await downloaded(page, '#download-events');
  const cell = (field) => rows.map((row) => row[names.indexOf(field)]).filter((text) => text)[0];
  assert.equal(cell('Formula'), `'${formula}`);
  assert.deepEqual(['Twice', 'Twice (2)', braces].map(cell), ['1', '2', braces]);
  assert.equal(cell('Bytes'), 'a\ufffd\ufffd(<u>');
  await page.evaluate(() => {
    document.body.append(Object.assign(document.createElement('script'), { textContent: 'window.bad = 2' }));
    document.body.insertAdjacentHTML('beforeend', '<img src="data:," onerror="window.bad = 3">');
  });
  await page.waitForTimeout(100);
  assert.equal(await page.evaluate(() => window.bad), undefined);
  assert.ok(page.complaints.length >= 2, 'the policy holds scripts back');
  assert.deepEqual(page.complaints.filter((text) => !/Content Security Policy/.test(text)), []);
});

test('3,000 levels', async () => {
  const { file } = deep(3000);
  const page = await openReport(browser, file);
  const { height } = await page.locator('#timeline .canvas').boundingBox();
  assert.ok(height < 16384, `a canvas of ${height} pixels cannot be drawn`);
  assert.deepEqual(await page.evaluate(() => timeline.lanes.slice(-1).map(({ label, total }) => [label, total])),
    [['levels 23 to 3000', 2978]]);
  const rows = await page.$$eval('#table th button.open', (buttons) =>
    buttons.map((button) => [button.textContent, parseInt(button.style.marginLeft, 10)]));
  assert.deepEqual([rows[0], rows[19], rows[20], rows[99]],
    [['level 1', 0], ['level 20', 266], ['21: level 21', 266], ['100: level 100', 266]]);
  assert.deepEqual(page.complaints, []);
});

test('100,000 events', async () => {
  const { folder, file, bytes } = long(100000);
  assert.ok(bytes < 10e6, `${bytes} bytes`);
  const page = await openReport(browser, file);
  assert.match(await page.textContent('#facts'), /all 100,000 events/);
  const drift = readings(folder, 'Drift').map(({ number }) => number);
  const drawn = (await charts(page)).plot.data.filter((unused, at) => at % 2 === 1);
  assert.deepEqual(drawn.sort((a, b) => a - b), drift.sort((a, b) => a - b));
  const total = () => page.evaluate(() => timeline.items.reduce((sum, item) =>
    sum + (item.type === 'bar' ? item.total : item.type === 'event' ? 1 : 0), 0));
  assert.equal(await total(), 100000);
  for (let times = 0; times < 9; ++times) {
    await afterDrawing(page, () => page.click('#zoom-in'));
  }
  const [, events, bars] = await counts(page, 'timeline');
  const { ends } = (await charts(page)).timeline;
  const within = ask(folder, `SELECT COUNT(*) AS n FROM events WHERE event_id >= 10000 AND
    (event_id - 10000) * 360000 BETWEEN ${ends[0]} AND ${ends[1]}`)[0].n;
  assert.deepEqual([events, bars], [within, 0]);
  assert.deepEqual(page.complaints, []);
});

test('more than a plot can draw', async () => {
  const { folder, file } = long(250000);
  const page = await openReport(browser, file);
  const [, kept] = /binned: ([\d,]+) of 250,000 events/.exec(await page.textContent('#facts'));
  assert.ok(Number(kept.replaceAll(',', '')) < 50000, kept);
  assert.equal(await page.evaluate(() => recorded.raw.slices.kinds[0].counts.reduce((sum, n) => sum + n)), 250000);
  const { plot } = await charts(page);
  for (let slice = 0; slice < 2000; slice += 111) {
    const [x, low, high] = await page.evaluate((at) => {
      const point = plot.groups.flatMap((group) => group.points).sort((a, b) => a.x - b.x)[at];
      return [point.x, point.y, point.high];
    }, slice);
    const [first, end] = [x, x + (249999 * 144000) / 2000].map((time) => 10000 + Math.ceil((time - 1e-3) / 144000));
    const expected = ask(folder, `SELECT MIN(value_number) AS low, MAX(value_number) AS high FROM parameters
      WHERE position = 1 AND event_id >= ${first} AND event_id < ${end}`);
    assert.deepEqual([{ low, high }], expected, `slice ${slice}`);
  }
  assert.equal(plot.data.length, 3 * 2000);
  assert.match(await page.textContent('#download-events'), /the kept events/);
  assert.deepEqual(page.complaints, []);
});
