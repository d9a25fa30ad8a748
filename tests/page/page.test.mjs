// What the page of a run shows, in a real browser, against what the store holds.
import assert from 'node:assert/strict';
import { readFileSync, rmSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { after, before, test } from 'node:test';

import { afterDrawing, launch, openReport } from './browser.mjs';
import {
  ask,
  binned,
  csvCases,
  deep,
  hostile,
  hostileTexts,
  imported,
  longText,
  manyKinds,
  night,
  nightNote,
  outlier,
  scratch,
  stepOfDecember,
  tiltSeries,
  twoNights,
  unfinished,
  withOutlier,
} from './recordings.mjs';

let browser;
before(async () => {
  browser = await launch();
});
after(async () => {
  await browser.close();
  rmSync(scratch, { recursive: true });
});

/** Tests the page of a recording, of which the browser must not complain. */
function testPage(name, { recording, ...options }, check) {
  test(name, async () => {
    const run = recording();
    const page = await openReport(browser, run.file, options);
    await check(page, run);
    assert.deepEqual(page.complaints, []);
    await page.context().close();
  });
}

/** Both charts as ECharts has them: ends of the axis of time in values and in pixels, ticks, and data of all series. */
const charts = (page) =>
  page.evaluate(() =>
    Object.fromEntries(
      [...document.querySelectorAll('.chart .canvas')].map((canvas) => {
        const chart = echarts.getInstanceByDom(canvas);
        const { series, xAxis } = chart.getOption();
        const ends = [xAxis[0].min, xAxis[0].max];
        const shapes = chart.getZr().storage.getDisplayList();
        const visible = shapes.filter((shape) => !shape.ignore && !shape.invisible);
        const drawn = {
          ends,
          pixels: ends.map((value) => chart.convertToPixel({ xAxisIndex: 0 }, value)),
          range: chart.getModel().getComponent('yAxis').axis.scale.getExtent(),
          texts: visible.map((shape) => shape.style.text).filter((text) => text),
          ticks: visible
            .filter(({ style }) => /\d\d:\d\d:\d\d/.test(style.text))
            .map(({ style, transform }) => [style.text, transform[4]]),
          closeItems: visible
            .filter(({ shape }) => shape?.rectangles)
            .map(({ style, shape }) => [shape.rectangles[0].y, style.fill]),
          gridLines: visible
            .filter(({ shape }) => shape?.x1 === shape?.x2 && shape?.y2 - shape?.y1 > 60)
            .map(({ shape }) => shape.x1),
          data: series.flatMap(({ data }) => [...data].flat()),
          hatched: visible.filter((shape) => shape.style.fill?.image).map(({ shape }) => shape.x + shape.width),
        };
        return [canvas.parentElement.id, drawn];
      }),
    ),
  );

/** Timeline and plot have the same clock times at the same places, each with a line. */
function checkAxes({ timeline, plot }) {
  assert.ok(plot.ticks.length > 3);
  assert.deepEqual([timeline.ends, timeline.pixels, timeline.ticks], [plot.ends, plot.pixels, plot.ticks]);
  for (const { gridLines } of [timeline, plot]) {
    assert.equal(gridLines.length, plot.ticks.length);
    gridLines.forEach((x, at) => assert.ok(Math.abs(x - plot.ticks[at][1]) < 1, `a line at ${x}`));
  }
}

/** How many events the timeline shows, alone and in bars, as its tooltips say when the pointer is moved over it. */
const eventsShown = async (page) => {
  const words = await page.evaluate(() => {
    const chart = echarts.getInstanceByDom(document.querySelector('#timeline .canvas'));
    const [{ data, tooltip }] = chart.getOption().series;
    const said = [...data].map(() => new Set());
    for (let offsetX = 150; offsetX < chart.getWidth() - 40; offsetX += 0.5) {
      chart.getZr().trigger('mousemove', { offsetX, offsetY: 0 });
      said.forEach((texts, dataIndex) => texts.add(tooltip.formatter({ dataIndex })));
    }
    return said.flatMap((texts) => [...texts]);
  });
  const eventsIn = (text) => /^([\d,]+) within/.exec(text)?.[1].replaceAll(',', '') ?? !text.includes('\nstarted ');
  return words.reduce((sum, text) => sum + Number(eventsIn(text)), 0);
};

const counts = (page) =>
  page.$eval('#timeline', ({ dataset }) => [dataset.executions, dataset.events, dataset.bars].map(Number));

const rowsOf = (page) =>
  page.$$eval('#table tbody tr[data-execution]', (rows) =>
    rows.map((row) => [...row.cells].map((cell) => cell.textContent)),
  );

const heads = (page) =>
  page.$$eval('#table thead button', (buttons) => buttons.map((button) => button.firstChild.textContent));

async function columnOf(page, name) {
  const place = (await heads(page)).indexOf(name);
  return (await rowsOf(page)).map((row) => row[place]);
}

async function downloaded(page, button) {
  const [file] = await Promise.all([page.waitForEvent('download'), page.click(button)]);
  return readFileSync(await file.path(), 'utf8');
}

/** Names and columns of a CSV file. */
async function tableIn(page, button) {
  const text = await downloaded(page, button);
  const rows = [[]];
  for (const [, quoted, bare, end] of text.matchAll(/\ufeff?(?:"((?:[^"]|"")*)"|([^",\r\n]*))(,|\r\n)/g)) {
    rows.at(-1).push(quoted?.replaceAll('""', '"') ?? bare);
    if (end === '\r\n') {
      rows.push([]);
    }
  }
  const [names, ...others] = rows.slice(0, -1);
  const cellsOf = (name) => others.map((row) => row[names.indexOf(name)]);
  return { names, cellsOf };
}

const readings = (folder, parameter) =>
  ask(
    folder,
    `SELECT COALESCE(value_text, value_number) AS text, COALESCE(value_number, CAST(value_text AS REAL)) AS number
    FROM readings WHERE parameter = '${parameter}' ORDER BY event_id, position`,
  );
const numbers = (folder, parameter) => readings(folder, parameter).map(({ number }) => number);
const texts = (folder, parameter) => readings(folder, parameter).map(({ text }) => String(text));

/** The members of an object and of what is in it, as page/FORM.md names them. */
function membersOf(value, path = '') {
  if (Array.isArray(value)) {
    return value.flatMap((item) => membersOf(item, `${path}[].`));
  }
  return Object.entries(value instanceof Object ? value : {}).flatMap(([name, member]) => [
    path + name,
    ...membersOf(name === 'units' ? null : member, path + name + (Array.isArray(member) ? '' : '.')),
  ]);
}

test('the form of the data', () => {
  const found = [tiltSeries(), csvCases(), binned(), night()].flatMap(({ file }) =>
    membersOf(JSON.parse(/id="recorded">([^<]*)/.exec(readFileSync(file, 'utf8'))[1])),
  );
  const [description] = readFileSync(join(process.env.SOURCE, 'page/FORM.md'), 'utf8').split('\n## Against');
  const described = [...description.matchAll(/^\| `(.*?)` \|/gm)].map(([, member]) => member);
  assert.deepEqual([...new Set(found)].sort(), described.sort());
});

const everySecond = (list) => list.filter((unused, at) => at % 2 === 1);

testPage('the head and the plot of a tilt series', { recording: tiltSeries }, async (page, { folder }) => {
  assert.match(await page.textContent('#facts'), /Statedone.*not sealed.*all 42 events, 42 executions/);
  assert.equal(await page.textContent('h1'), 'sample.mdoc');
  assert.ok(!(await page.isVisible('#alarm')));
  assert.deepEqual(await counts(page), [42, 42, 0]);

  const angle = numbers(folder, 'TiltAngle');
  const { plot } = await charts(page);
  assert.deepEqual(everySecond(plot.data), angle, 'as many points as others have, and spread more');
  await afterDrawing(page, () => page.selectOption('#plot-x', { label: 'DateTime' }));
  const over = (await charts(page)).plot;
  const start = Date.parse('2026-11-24T23:59:30Z');
  const stated = texts(folder, 'DateTime').map((text) => 1000 * (Date.parse(`${text} +0100`) - start));
  assert.deepEqual(
    over.data,
    angle.flatMap((y, at) => [stated[at], y]),
  );
  assert.deepEqual(
    over.ticks.map(([text]) => text),
    ['2026-11-24 22:10:00', '22:15:00', '22:20:00', '22:25:00', '22:30:00'],
  );
  const choices = [
    ['#plot-y', 'FramesOnDisk', new Array(41).fill(0)],
    ['#plot-y', 'Magnification', new Array(41).fill(33000)],
  ];
  for (const [choice, label, expected] of choices) {
    await afterDrawing(page, () => page.selectOption(choice, { label }));
    assert.deepEqual(everySecond((await charts(page)).plot.data), expected, label);
  }
});

testPage('a tilt series that was recorded from its file', { recording: imported }, async (page) => {
  const [choice] = await page.locator('#plot-x option:checked').allTextContents();
  assert.equal(choice, 'DateTime');
  assert.equal((await charts(page)).plot.ticks.length, 5);
});

testPage('moving through the time of a tilt series', { recording: tiltSeries }, async (page, { folder }) => {
  await afterDrawing(page, () => page.selectOption('#plot-x', { label: 'time' }));
  await page.focus('#timeline');
  for (const key of ['+', '+', 'Shift+ArrowRight']) {
    await afterDrawing(page, () => page.keyboard.press(key));
  }
  const { timeline, plot } = await charts(page);
  checkAxes({ timeline, plot });
  const [{ shown }] = ask(
    folder,
    `SELECT COUNT(*) AS shown FROM events WHERE 1e6 * (strftime('%s', at) -
      (SELECT MIN(strftime('%s', started_at)) FROM executions)) BETWEEN ${timeline.ends.join(' AND ')}`,
  );
  assert.ok(shown > 3 && shown < 20, `${shown} of 42 events are in a quarter of the run`);
  assert.equal((await counts(page))[1], shown);
  await page.focus('#plot');
  await afterDrawing(page, () => page.keyboard.press('+'));
  checkAxes(await charts(page));
  await afterDrawing(page, () => page.click('#zoom-all'));
  assert.equal((await counts(page))[1], 42);

  const bar = { position: { x: (timeline.pixels[0] + timeline.pixels[1]) / 2, y: 40 } };
  await afterDrawing(page, () => page.dblclick('#timeline canvas', bar));
  assert.ok(!(await page.isVisible('.history')), 'a double click zooms and opens nothing');
  await page.click('#timeline canvas', bar);
  await page.waitForSelector('.history');
});

testPage(
  'things too close to be told apart',
  { recording: tiltSeries, viewport: { width: 340, height: 800 } },
  async (page) => {
    const colourOf = (name) =>
      page.evaluate((it) => window.getComputedStyle(document.documentElement).getPropertyValue(it), `--${name}`);
    const [done, event] = [await colourOf('done'), await colourOf('event')];
    const fills = (await charts(page)).timeline.closeItems.sort(([a], [b]) => a - b).map(([, fill]) => fill);
    assert.deepEqual([...new Set(fills)], [done, event], 'steps as they ended, then events');
  },
);

testPage('from bar to bar on the keyboard', { recording: tiltSeries }, async (page) => {
  await page.focus('#timeline');
  for (const key of ['+', '+', '+']) {
    await afterDrawing(page, () => page.keyboard.press(key));
  }
  const press = async (key) => {
    const said = await page.textContent('#said');
    await page.keyboard.press(key);
    const isNew = (old) => !['', old].includes(document.getElementById('said').textContent.replace(/^no more.*/, ''));
    await page.waitForFunction(isNew, said);
    return page.textContent('#said');
  };
  assert.match(await press('ArrowRight'), /^TiltSeries, 1 of 1: sample.mdoc;/);
  const stepIn = (said) => Number(/^Section, \d+ of \d+: ZValue (\d+); .* done after 28.0 s; 1 event$/.exec(said)[1]);
  const first = stepIn(await press('ArrowDown'));
  for (let step = first + 1; step < first + 20; ++step) {
    assert.equal(stepIn(await press('ArrowRight')), step, 'beyond the time shown too');
  }
  const { ends, pixels } = (await charts(page)).timeline;
  const started = (first + 20) * 30e6;
  const expected = pixels[0] + ((started - ends[0]) / (ends[1] - ends[0])) * (pixels[1] - pixels[0]);
  const [frame, drawing] = await Promise.all(['.cursor', '#timeline'].map((part) => page.locator(part).boundingBox()));
  assert.ok(Math.abs(frame.x - drawing.x - expected) < 1, `${frame.x - drawing.x} for ${expected}`);
  await press('ArrowLeft');
  assert.match(
    await press('ArrowDown'),
    new RegExp(`^ZValue, .*: ZValue of ZValue ${first + 18}; .*; FramesOnDisk  false$`),
  );
  await press('ArrowUp');
  await page.keyboard.press('Enter');
  assert.equal(await page.locator('tr:has(+ .opened) th').textContent(), `ZValue ${first + 18}`);
});

testPage('the table of a tilt series', { recording: tiltSeries }, async (page, { folder }) => {
  const angles = texts(folder, 'TiltAngle');
  assert.deepEqual(await columnOf(page, 'TiltAngle'), angles);
  for (const direction of [1, -1]) {
    await page.click('#table thead button:has-text("TiltAngle")');
    assert.deepEqual(
      await columnOf(page, 'TiltAngle'),
      [...angles].sort((a, b) => direction * (a - b)),
    );
  }
  await page.click('#columns summary');
  await page.check('#column-choice label:has-text("SubFramePath") input');
  assert.ok((await heads(page)).includes('SubFramePath'));

  const table = await tableIn(page, '#download');
  assert.deepEqual(table.cellsOf('TiltAngle'), await columnOf(page, 'TiltAngle'));
  assert.deepEqual(table.cellsOf('SubFramePath').sort(), texts(folder, 'SubFramePath').sort());
  const events = await tableIn(page, '#download-events');
  assert.deepEqual(
    events.cellsOf('Time'),
    ask(folder, 'SELECT at FROM events').map(({ at }) => at),
  );
  const parameters = ask(
    folder,
    `SELECT DISTINCT parameter, ROW_NUMBER() OVER (PARTITION BY event_id, parameter ORDER BY position) FROM readings`,
  );
  assert.equal(events.names.length, 5 + parameters.length);

  await page.click('#table tbody th:has-text("ZValue 7")');
  const history = page.locator('#table .history');
  assert.equal(await history.locator('.statuses li').count(), 2);
  assert.deepEqual(
    await history.locator('dt').allTextContents(),
    ask(folder, `SELECT parameter FROM readings WHERE node = 'ZValue 7'`).map(({ parameter }) => parameter),
  );
});

testPage('an unfinished run', { recording: unfinished, colorScheme: 'dark' }, async (page, { folder }) => {
  const open = ask(folder, 'SELECT node FROM execution_states WHERE status = 4 ORDER BY execution_id DESC');
  assert.equal(open.length, 2);
  assert.deepEqual(await page.locator('#alarm .path a').allTextContents(), open.map(({ node }) => node).reverse());
  const [alarm, header] = await Promise.all(['#alarm', 'header'].map((part) => page.locator(part).boundingBox()));
  assert.ok(alarm.y + alarm.height <= header.y, 'what did not finish is said first');
  await page.click('#columns summary');
  await page.check('#column-choice label:has-text("DateTime") input');
  await page.selectOption('#order', { label: 'DateTime' });
  assert.equal(
    (await columnOf(page, 'DateTime')).filter((text) => text).at(-1),
    stepOfDecember,
    'in the order of time',
  );
  const { timeline, plot } = await charts(page);
  assert.ok(plot.texts.includes('TiltAngle [<b>°]'), `the unit stands on the axis: ${plot.texts}`);
  assert.equal(timeline.hatched.length, 2);
  assert.ok(
    timeline.hatched.every((end) => Math.abs(end - timeline.pixels[1]) < 1e-6),
    'hatched to the edge',
  );
  const pages = (await page.pdf({ preferCSSPageSize: true })).toString('latin1').match(/\/Type\s*\/Page\b/g);
  assert.equal(pages.length, 1, 'sheets of paper');
});

const focused = (page) =>
  page.evaluate(() => {
    const row = document.activeElement.closest('tr');
    return [document.activeElement.textContent, row?.getAttribute('aria-level'), row?.getAttribute('aria-expanded')];
  });

const small = { width: 800, height: 600 };

testPage('where a night stopped', { recording: night, viewport: small }, async (page, { folder }) => {
  const [{ message }] = ask(folder, "SELECT value_text AS message FROM readings WHERE parameter = 'Message'");
  assert.equal(await page.locator('#alarm .event h4 span').first().textContent(), 'Error');
  assert.deepEqual(await page.locator('#alarm .evidence .event dd').allTextContents(), [
    ...[message, '4117', ...texts(folder, 'Position')],
  ]);
  const first = await page.locator('#timeline').evaluate((found) => found.getBoundingClientRect().top);
  assert.ok(first < small.height - 100, `the timeline begins at ${first}`);

  const open = ask(folder, 'SELECT node FROM execution_states WHERE status = 4 ORDER BY execution_id');
  const links = page.locator('#alarm .path a');
  assert.deepEqual(
    await links.allTextContents(),
    open.map(({ node }) => node),
  );
  const { text, author } = nightNote;
  assert.match(await page.textContent('#notes li'), new RegExp(`^cause ${text} ${author}, 20`));
  const dates = (await columnOf(page, 'Started')).filter((started) => started.startsWith('2026-'));
  assert.deepEqual(
    dates.map((started) => started.slice(0, 10)),
    ['2026-11-25', '2026-11-26'],
  );
  await page.click('#fold-all');
  await afterDrawing(page, () => links.last().click());
  assert.deepEqual(await focused(page), [open.at(-1).node, '3', null]);
  assert.equal(await page.locator('#table .event h4 span').first().textContent(), 'Error');
  assert.ok(
    (await counts(page))[0] <= 5,
    'the timeline shows the hole, what it belongs to, and at most the one before',
  );
  await page.evaluate(() => window.dispatchEvent(new window.Event('beforeprint')));
  const paper = await page.locator('#alarm dd').first().boundingBox();
  assert.ok(paper.y + paper.height < 300, 'the message is at the top of the paper');
  assert.ok((await rowsOf(page))[0][0].endsWith(` › ${open.at(-1).node}`), 'the hole is the first row there');
});

/** How many marks in each of some colours the timeline has. */
const marksOf = (page, names) =>
  page.evaluate((wanted) => {
    const { documentElement } = document;
    const shapes = echarts.getInstanceByDom(document.querySelector('#timeline .canvas')).getZr().storage;
    return wanted.map((name) => {
      const colour = window.getComputedStyle(documentElement).getPropertyValue(`--${name}`).trim();
      const marks = shapes.getDisplayList().filter(({ style }) => style.fill === colour);
      return marks.flatMap(({ shape }) => shape.rectangles).length;
    });
  }, names);

/** A night's page as it were if its hosts were in another state. */
function inState(state, why) {
  const { folder, file } = night();
  const page = readFileSync(file, 'utf8');
  const other = join(folder, `${state}.html`);
  writeFileSync(other, page.replaceAll('"state":"stopped","why":""', `"state":"${state}","why":"${why}"`));
  return { folder, file: other };
}

for (const [state, why, title, since] of [
  ['stopped', '', 'STOPPED', / before this page was made$/],
  ['running', '', 'running', / before this page was made$/],
  ['unknown', 'it is a copy', 'did not finish', /whether it still runs is not known: it is a copy$/],
]) {
  testPage(`a night whose state is ${state}`, { recording: () => inState(state, why) }, async (page) => {
    assert.equal(await page.textContent('#alarm h2'), title);
    const words = await page.textContent('#alarm .since');
    assert.match(words, /^last record 2026-11-26 04:00:00.000 \+01:00, [\d]+ /);
    assert.match(words, since);
    assert.match(await page.textContent('#brief'), new RegExp(`${title}$`));
    assert.equal((await columnOf(page, 'Status')).at(-1), title);
  });
}

testPage('the log of a night', { recording: night }, async (page, { folder }) => {
  const written = readFileSync(join(folder, 'night.log'), 'utf8').matchAll(
    /^\S+T([\d:.]+)\d{3}\S+ \[(warning|error)\] \[.*?\] (.*)/gm,
  );
  const lines = [...written].map(([, time, level, text]) => [time, level, text]).reverse();
  const shown = (list) =>
    page.$$eval(`${list} .line`, (items) =>
      items.map((item) => ['time', 'strong', '.text'].map((part) => item.querySelector(part).textContent)),
    );
  const warnings = lines.filter(([, level]) => level === 'warning');
  assert.ok(warnings.length > 5);
  assert.deepEqual(await shown('#alarm'), lines.slice(0, 4));
  // one warning is at the time of the error
  assert.deepEqual(await marksOf(page, ['error', 'warning']), [1, warnings.length - 1]);

  const filters = [
    ['0', '', lines],
    ['1', '', lines.slice(0, 1)],
    ['2', '', warnings],
    ['0', 'NITROGEN', lines.filter(([, , text]) => text.startsWith('nitrogen'))],
  ];
  for (const [level, text, expected] of filters) {
    await page.selectOption('#of-level', level);
    await page.fill('#find-line', text);
    await page.waitForTimeout(300);
    const found = (await shown('#log')).map(([time, ...rest]) => [time.slice(-12), ...rest]);
    assert.deepEqual(found, expected.slice(0, 10), level + text);
  }
  const start = warnings.at(-1)[2];
  await page.fill('#find-line', start);
  await page.waitForTimeout(300);
  const node = /at (hole \d+)/.exec(start)[1];
  await page.locator('#log .line').last().locator('a').click();
  assert.equal((await focused(page))[0], node);
  assert.ok((await shown('#table')).some(([, , text]) => text === start));
});

testPage('the tree of a night', { recording: night }, async (page) => {
  const names = () => page.locator('#table button.open').allTextContents();
  const folded = ['grid 1', 'grid 2'];
  await page.click('#fold-all');
  assert.deepEqual(await names(), folded);
  await page.focus('#table button.open');
  const steps = [
    ['ArrowRight', ['grid 1', '1', 'true']],
    ['ArrowRight', ['square 1', '2', 'false']],
    ['ArrowDown', ['square 2', '2', 'false']],
    ['ArrowUp', ['square 1', '2', 'false']],
    ['ArrowLeft', ['grid 1', '1', 'true']],
    ['ArrowLeft', ['grid 1', '1', 'false']],
    ['End', ['grid 2', '1', 'false']],
  ];
  for (const [key, expected] of steps) {
    await page.keyboard.press(key);
    assert.deepEqual(await focused(page), expected, key);
  }
  assert.deepEqual(await names(), folded);
});

testPage('digits of a night', { recording: night }, async (page, { folder }) => {
  const question = "SELECT value_number AS dose FROM readings WHERE node = 'hole 1' AND parameter = 'FocusScore'";
  const [{ dose }] = ask(folder, question);
  await page.fill('#find', 'hole-1-3.tiff');
  await page.waitForFunction(() => document.querySelectorAll('#table tbody tr').length === 1);
  const cell = page.locator(`#table td[title="${dose}"]`).first();
  assert.equal(await cell.textContent(), String(Number(dose.toPrecision(6))));
  const { names, cellsOf } = await tableIn(page, '#download');
  assert.ok(
    names.some((name) => cellsOf(name)[0] === String(dose)),
    'CSV is exact',
  );
  await page.check('#all-digits');
  assert.ok((await rowsOf(page))[0].includes(String(dose)));
});

testPage('looking for executions of a night', { recording: night }, async (page, { folder }) => {
  const choose = async (select, name) => {
    const options = await page.locator(`${select} option`).allTextContents();
    await page.selectOption(select, { index: name === '' ? 0 : options.findIndex((text) => text.startsWith(name)) });
  };
  const open = ask(folder, 'SELECT node FROM execution_states WHERE status = 4 ORDER BY execution_id');
  const unfinishedNodes = open.map(({ node }) => node).slice(1);
  const searches = [
    ['stage did not', '', '', unfinishedNodes.slice(-1)],
    ['4117', '', '', unfinishedNodes.slice(-1)],
    ['hole-26-3.tiff', '', '', ['hole 1']],
    ['', 'did not finish', '', unfinishedNodes],
    ['1', 'done', 'Grid', ['grid 1']],
  ];
  for (const [text, status, activity, expected] of searches) {
    await page.fill('#find', text);
    await choose('#of-status', status);
    await choose('#of-activity', activity);
    await page.waitForTimeout(300);
    assert.deepEqual(await page.locator('#table button.open').allTextContents(), expected, text + status + activity);
  }
});

testPage('a run of markup, script, quotes and broken UTF-8', { recording: hostile }, async (page) => {
  const { node, event, value, name, braces, formula, below, noted, logged } = hostileTexts;
  assert.equal(await page.textContent('h1'), '<img src=x onerror="window.bad = 1">.mdoc');
  const { timeline } = await charts(page);
  for (const text of [node, `${event}  1`]) {
    assert.ok(timeline.texts.includes(text), `${text} is drawn: ${timeline.texts}`);
  }
  for (const row of await page.locator('#table tr[data-execution]').all()) {
    await row.click();
  }
  await page.click('#own-history');
  const places = '#table th button.open, #table h4 span, #table dt, #table dd, #notes .text, #log .text';
  const shown = await page.$$eval(places, (elements) => elements.map((element) => element.textContent));
  const bytes = ['\\x41', 'a\\u61cb\\u202ec\\ue0041', 'a\\xff\\xc3(<u>', '\\x00\\xff'];
  for (const text of [node, below, event, value, name, braces, formula, noted, logged, ...bytes, 'NaN', 'inf']) {
    assert.ok(shown.includes(text), `${text} is shown: ${shown}`);
  }
  assert.equal(shown.filter((text) => text === 'Twice').length, 2);
  const { cellsOf } = await tableIn(page, '#download-events');
  const names = ['Formula', 'Twice', 'Twice (2)', braces, 'Bytes'];
  assert.deepEqual(
    names.map((field) => cellsOf(field).find((text) => text !== '')),
    [`'${formula}`, '1', '2', braces, 'a\ufffd\ufffd(<u>'],
  );
});

testPage('a long text', { recording: longText }, async (page) => {
  const height = () => page.evaluate(() => document.documentElement.scrollHeight);
  for (const row of await page.locator('#table tr[data-execution]').all()) {
    await row.click();
  }
  await page.click('#own-history');
  assert.ok((await height()) < 6000, `${await height()} pixels`);
  const part = page.locator('#table dd', { hasText: 'line 1 of 9000' });
  await part.locator('button').click();
  assert.match(await part.textContent(), /line 9000 of 9000/);
  await part.locator('button').click();
  assert.ok((await height()) < 6000, `${await height()} pixels when it is closed again`);
});

testPage('CSV by the rules of velora-ts', { recording: csvCases }, async (page, { folder }) => {
  const lines = ask(folder, 'SELECT event, cells FROM csv_lines').map(({ event, cells }) =>
    event === null
      ? `\ufeffEvent number,Event,Time,Execution,Status,${cells}\r\n`
      : `${event},case,2026-11-26T10:00:00.000000Z,cases,done,${cells}\r\n`,
  );
  assert.equal(await downloaded(page, '#download-events'), lines.join(''));
});

testPage('scripts that were not there when the page was made', { recording: tiltSeries }, async (page) => {
  await page.evaluate(() => {
    document.body.append(Object.assign(document.createElement('script'), { textContent: 'window.bad = 2' }));
    document.body.insertAdjacentHTML('beforeend', '<img src="data:," onerror="window.bad = 3">');
  });
  await page.waitForTimeout(100);
  assert.equal(await page.evaluate(() => window.bad), undefined);
  const held = page.complaints.splice(0).filter((text) => /Content Security Policy/.test(text));
  assert.ok(held.length >= 2, 'the policy holds scripts back');
});

testPage('3,000 levels', { recording: () => deep(3000) }, async (page) => {
  const { height } = await page.locator('#timeline .canvas').boundingBox();
  assert.ok(height < 16384, `a canvas of ${height} pixels cannot be drawn`);
  const { timeline } = await charts(page);
  assert.ok(
    timeline.texts.some((text) => text.startsWith('levels 23 to 3000  2,')),
    `the deeper levels share a lane: ${timeline.texts}`,
  );
  const rows = await page.$$eval('#table th button.open', (buttons) =>
    buttons.map((button) => [button.textContent, parseInt(button.closest('th').style.paddingLeft, 10)]),
  );
  assert.deepEqual(
    [0, 19, 20, 99].map((at) => rows[at]),
    [
      ['level 1', 10],
      ['level 20', 276],
      ['21: level 21', 276],
      ['100: level 100', 276],
    ],
  );
});

/** How often canvases are drawn on while something is done. */
async function strokesDuring(page, action) {
  await page.evaluate(() => {
    window.strokes = 0;
    for (const name of ['arc', 'fillRect', 'lineTo', 'rect']) {
      const original = window.CanvasRenderingContext2D.prototype[name];
      window.CanvasRenderingContext2D.prototype[name] = function (...places) {
        ++window.strokes;
        original.apply(this, places);
      };
    }
  });
  await action();
  return page.evaluate(() => window.strokes);
}

/** The lowest and the highest of the points [x, y] in each column of two pixels. */
function endsOfColumns(points, { ends: [from, to], pixels }) {
  const columns = Math.ceil((pixels[1] - pixels[0]) / 2);
  const found = new Map();
  for (const [x, y] of points) {
    const column = Math.floor(((x - from) / (to - from)) * columns);
    const [low, high] = found.get(column) ?? [y, y];
    found.set(column, [Math.min(low, y), Math.max(high, y)]);
  }
  return [...found].sort(([a], [b]) => a - b);
}

const pairs = (list) => Array.from({ length: list.length / 2 }, (unused, at) => [list[2 * at], list[2 * at + 1]]);

/** What the plot says when the pointer is on a point, or the timeline when it is on a time in its lowest lane. */
async function saidAt(page, chart, point) {
  const { x, y } = await page.evaluate(
    ([id, values]) => {
      const drawing = echarts.getInstanceByDom(document.querySelector(`#${id} .canvas`));
      const [across, down] = drawing.convertToPixel('grid', values);
      return id === 'plot' ? { x: across, y: down } : { x: across + 1, y: drawing.getHeight() - 17 };
    },
    [chart, point],
  );
  const textsOf = async () => (await charts(page))[chart].texts.join(' ');
  const said = await textsOf();
  await page.hover(`#${chart} canvas`, { position: { x, y } });
  for (let tries = 0; tries < 50 && (await textsOf()) === said; ++tries) {
    await page.waitForTimeout(20);
  }
  return textsOf();
}

testPage('100,000 events', { recording: withOutlier }, async (page, { folder, bytes }) => {
  assert.ok(bytes < 10e6, `${bytes} bytes`);
  assert.match(await page.textContent('#facts'), /all 100,000 events/);
  assert.equal(await eventsShown(page), 100000);
  const recorded = numbers(folder, 'Drift').map((y, at) => [at * 360000, y]);
  const look = async () => {
    const { plot } = await charts(page);
    const isShown = ([x]) => x >= plot.ends[0] && x <= plot.ends[1];
    return { plot, drawn: pairs(plot.data).filter(isShown), within: recorded.filter(isShown) };
  };
  for (let times = 0; times < 9; ++times) {
    const { plot, drawn, within } = await look();
    assert.deepEqual(endsOfColumns(drawn, plot), endsOfColumns(within, plot), `after zooming in ${times} times`);
    const [low, high] = [Math.min, Math.max].map((end) => end(...within.map(([, y]) => y)));
    const room = (plot.range[1] - plot.range[0]) / 3;
    assert.ok(plot.range[0] > low - room && plot.range[1] < high + room, `${plot.range} for ${low} to ${high}`);
    await afterDrawing(page, () => page.click('#zoom-in'));
  }
  const { drawn, within } = await look();
  assert.deepEqual(
    drawn.sort(([a], [b]) => a - b),
    within,
  );
  assert.deepEqual((await counts(page)).slice(1), [within.length, 0]);
  checkAxes(await charts(page));
  assert.match(await page.textContent('#plot-note'), new RegExp(`^${within.length} points in the time shown$`));
  for (const [time, drift] of within.slice(100, 103)) {
    assert.match(await saidAt(page, 'timeline', [time, 0]), new RegExp(`Drift {2}${drift} `));
  }
});

testPage('what is drawn of 100,000 events', { recording: withOutlier }, async (page) => {
  const point = [(outlier.event - 10000) * 360000, outlier.value];
  const { plot } = await charts(page);
  const strokes = await strokesDuring(page, () => afterDrawing(page, () => page.click('#zoom-in')));
  assert.ok(strokes < 16 * (plot.pixels[1] - plot.pixels[0]), `${strokes} strokes for half of them`);

  assert.match(await saidAt(page, 'plot', point), /Drift {2}9.step 32.04:08:01\.320000, done/s);

  const [onIt, below] = await page.evaluate((values) => {
    window.dispatchEvent(new window.Event('beforeprint'));
    const [x, y] = echarts.getInstanceByDom(document.querySelector('#plot .canvas')).convertToPixel('grid', values);
    const { data } = document
      .querySelector('#plot .still')
      .getContext('2d')
      .getImageData(3 * x, 3 * y, 1, 37);
    return [data[3], data[4 * 36 + 3]];
  }, point);
  assert.deepEqual([onIt > 128, below], [true, 0], `the outlier on paper: ${onIt}`);
});

/**
 * Holds bars of the plot, so many slices in one, against the recorded values of a kind, which are as far apart. Gives
 * the middle, lowest and highest of one of them.
 */
async function checkBars(page, folder, { name, events, slices, together }) {
  const { data, ends, pixels } = (await charts(page)).plot;
  const bars = new Map(); // by where they begin: executions of another status have bars of their own
  for (const [x, low, high] of Array.from({ length: data.length / 3 }, (unused, at) =>
    data.slice(3 * at, 3 * at + 3),
  )) {
    const [lowest, highest] = bars.get(x) ?? [low, high];
    bars.set(x, [Math.min(lowest, low), Math.max(highest, high)]);
  }
  const begins = [...bars.keys()].filter((x) => x >= ends[0] && x <= ends[1]).sort((a, b) => a - b);
  assert.ok(begins.length > 300 && begins.length <= pixels[1] - pixels[0] + 1, `${begins.length} bars`);
  for (let at = 1; at < begins.length - 1; at += 67) {
    const [begin, end] = [begins[at], begins[at + 1]];
    const width = (36e9 * (events - 1)) / events / slices;
    assert.ok(Math.abs((end - begin) / width - together) < 1e-3, `${(end - begin) / width} slices in one bar`);
    const [first, behind] = [begin, end].map((time) => 10000 + Math.ceil((time - 1e-3) / (36e9 / events)));
    const [{ low, high }] = ask(
      folder,
      `SELECT MIN(value_number) AS low, MAX(value_number) AS high FROM events v JOIN parameters USING (event_id)
        WHERE v.name = '${name}' AND position = 1 AND event_id >= ${first} AND event_id < ${behind}
          AND ABS(value_number) < 9e999`,
    );
    assert.deepEqual(bars.get(begin), [low, high], `bar ${at}`);
  }
  const [begin, end] = begins.slice(40);
  return [(begin + end) / 2, ...bars.get(begin)];
}

testPage('more events of a kind than a page has', { recording: binned }, async (page, { folder }) => {
  const [, kept] = /binned: ([\d,]+) of 250,000 events/.exec(await page.textContent('#facts'));
  assert.ok(Number(kept.replaceAll(',', '')) < 50000, kept);
  assert.equal(await eventsShown(page), 250000);
  await afterDrawing(page, () => page.selectOption('#plot-y', { label: 'Drift' }));
  const slices = { name: 'Sample', events: 250000, slices: 2048 };
  await checkBars(page, folder, { ...slices, together: 3 });
  await afterDrawing(page, () => page.click('#zoom-in'));
  await afterDrawing(page, () => page.click('#zoom-in'));
  const [middle, low, high] = await checkBars(page, folder, { ...slices, together: 1 });
  const said = await saidAt(page, 'plot', [middle, (low + high) / 2]);
  assert.ok(said.includes(`Drift  ${low} to ${high}`), `${low} to ${high}: ${said}`);
  assert.match(await page.textContent('#download-events'), /the kept events/);
  const drift = (await tableIn(page, '#download-events')).cellsOf('Drift');
  for (const infinity of ['inf', '-inf']) {
    const found = drift.filter((cell) => cell === infinity).length;
    assert.ok(found >= slices.slices, `${infinity} is in the page ${found} times`);
  }
});

testPage('more events of many kinds than a page has', { recording: manyKinds }, async (page, { folder }) => {
  const [, kept, names] =
    /binned: ([\d,]+) of 450,000 events, 101 executions. Of (.*), and 20 more kinds only .* of 1,024 slices/.exec(
      await page.textContent('#facts'),
    );
  assert.ok(Number(kept.replaceAll(',', '')) < 310000, kept);
  assert.equal(names.split(', ').length, 5);
  assert.equal(await eventsShown(page), 450000);
  const drift = (name) => page.$eval(`#plot-y optgroup[label="${name}"] option`, (option) => option.value);
  await afterDrawing(page, async () => page.selectOption('#plot-y', await drift('Sample 0')));
  assert.match(await page.textContent('#plot-note'), /^10,000 points/);
  await afterDrawing(page, async () => page.selectOption('#plot-y', await drift('Sample 9')));
  await checkBars(page, folder, { name: 'Sample 9', events: 450000, slices: 1024, together: 2 });
  await page.evaluate(() => window.dispatchEvent(new window.Event('beforeprint'))); // more kinds share the last lane
  assert.equal(await eventsShown(page), 450000);
});

testPage(
  'a comparison says where two nights part, and marks what differs',
  { recording: twoNights },
  async (page, run) => {
    const head = await page.textContent('#against');
    assert.match(head, /alone in this run: 1, in the other: 26\./); // a square with its 25 holes
    assert.match(head, /They first part at .*: specimen 12 › grid 1 › square 2 › hole 5: only in this run/);
    const marks = await page.evaluate(() =>
      [...document.querySelectorAll('.chart .canvas')].map((canvas) => {
        const { series } = echarts.getInstanceByDom(canvas).getOption();
        const lines = series.flatMap(({ markLine }) => markLine?.data ?? []);
        return [lines.length, series.filter(({ name, data }) => name === 'the other run' && data.length > 0).length];
      }),
    );
    assert.deepEqual(marks, [
      [1, 0],
      [0, 1],
    ]);

    await afterDrawing(page, () => page.click('#against .parting a >> nth=-1'));
    const only = page.locator('#table tr.alone');
    assert.equal(await only.locator('.open').textContent(), 'hole 5 only in this run');
    assert.equal(await page.evaluate(() => document.activeElement.closest('tr').className), 'alone');

    const dose = page.locator('#column-choice label', { hasText: /^Dose$/ }).locator('input');
    await page.locator('#columns').evaluate((found) => (found.open = true));
    await dose.check();
    await page.check('#only-differing');
    const [{ differing }] = ask(
      run.folder,
      `SELECT COUNT(DISTINCT r.execution_id) AS differing FROM readings r JOIN executions x USING (execution_id)
      WHERE r.root_id > 1 AND parameter = 'Dose' AND value_number = 41.5`,
    );
    assert.match(
      await page.textContent('#more'),
      new RegExp(`of ${differing + 1} rows found of 171; ${differing + 1} of them differ`),
    );
    const doses = await columnOf(page, 'Dose');
    assert.deepEqual([...new Set(doses)].sort(), ['40', '41.5 ≠ 40']);
  },
);
