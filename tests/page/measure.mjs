// measure.mjs REPETITIONS: pages of many events beside an empty page with their library: size, memory, time to draw,
// and time of a zoom step from the key to the frame that shows it, with what the page's thread computes meanwhile.
import { readFileSync, rmSync, writeFileSync } from 'node:fs';
import { cpus } from 'node:os';
import { join } from 'node:path';
import { pathToFileURL } from 'node:url';

import { launch } from './browser.mjs';
import { long, scratch } from './recordings.mjs';

const stepsOfRound = 8;

function emptyPage({ file }) {
  const [, library] = /<script>(\s*\/\*[^]*?)<\/script>/.exec(readFileSync(file, 'utf8'));
  const empty = join(scratch, 'empty.html');
  writeFileSync(
    empty,
    `<!DOCTYPE html><meta charset="utf-8"><div class="chart" tabindex="0" style="width:1200px;height:300px"></div>
<script>${library}</script><script>
const element = document.querySelector('.chart');
const chart = echarts.init(element);
chart.on('finished', () => (element.dataset.drawn = 1));
chart.setOption({ animation: false, xAxis: { type: 'value', max: 9 }, yAxis: { type: 'value' }, series: [] });
let steps = 0;
element.addEventListener('keydown', () =>
  requestAnimationFrame(() => chart.setOption({ xAxis: { max: 9 + (++steps % 2) } })));
</script>`,
  );
  return { file: empty, bytes: library.length };
}

/** Milliseconds until all charts are drawn. */
async function drawnAfter(page) {
  const drawn = await page.waitForFunction(() => {
    const charts = [...document.querySelectorAll('.chart')];
    return charts.length > 0 && charts.every((chart) => chart.dataset.drawn) && performance.now();
  });
  return drawn.jsonValue();
}

/** Bytes of live objects and of the numbers that they keep outside the heap. */
async function memoryOf(page) {
  const session = await page.context().newCDPSession(page);
  await session.send('HeapProfiler.collectGarbage');
  const { usedSize, backingStorageSize } = await session.send('Runtime.getHeapUsage');
  return usedSize + backingStorageSize;
}

/** Milliseconds that the page's thread has computed. */
async function computed(session) {
  const { metrics } = await session.send('Performance.getMetrics');
  return 1000 * metrics.find(({ name }) => name === 'TaskDuration').value;
}

/** Milliseconds of zoom steps, in turn into the whole run and out of it again, and of what is computed for one. */
async function zoomSteps(page) {
  const session = await page.context().newCDPSession(page);
  await session.send('Performance.enable', { timeDomain: 'threadTicks' });
  await page.evaluate(() => {
    window.steps = [];
    const afterFrame = (work) => requestAnimationFrame(() => requestAnimationFrame(work));
    const note = ({ timeStamp }) => afterFrame(() => window.steps.push(performance.now() - timeStamp));
    window.addEventListener('keydown', note, { capture: true });
  });
  await page.focus('.chart');
  const before = await computed(session);
  for (let step = 0; step < stepsOfRound; ++step) {
    await page.keyboard.press(step % 2 === 0 ? '+' : '-');
    await page.waitForFunction((count) => window.steps.length > count, step);
  }
  const each = ((await computed(session)) - before) / stepsOfRound;
  return { times: await page.evaluate(() => window.steps), each };
}

const measured = [
  ['100,000 events', long(100000)],
  ['1,000,000 events', long(1000000)],
  ['1,000,000 events of six kinds', long(1000000, { kinds: 6 })],
].map(([name, page]) => ({ name, ...page }));
measured.push({ name: 'empty, same library', ...emptyPage(measured[0]) });
measured.forEach((page) => Object.assign(page, { drawn: [], steps: [], stepComputed: [], memory: [] }));

const browser = await launch();
for (let round = 0; round < Number(process.argv[2]); ++round) {
  // in turn, so that all meet the same machine
  for (const { file, drawn, steps, stepComputed, memory } of measured) {
    const page = await browser.newPage({ viewport: { width: 1280, height: 900 } });
    await page.goto(pathToFileURL(file).href, { waitUntil: 'commit' });
    drawn.push(await drawnAfter(page));
    memory.push(await memoryOf(page));
    const { times, each } = await zoomSteps(page);
    steps.push(...times);
    stepComputed.push(each);
    await page.close();
  }
}
const median = (list) => list.sort((a, b) => a - b)[list.length >> 1];
const empty = measured.at(-1);
console.log(`${cpus()[0].model}, Chromium ${browser.version()}, medians of ${empty.drawn.length} pages`);
console.log(
  'page                           MB    memory  drawn after  later than empty  zoom step  to empty  computed',
);
for (const { name, bytes, drawn, steps, stepComputed, memory } of measured) {
  const later = median(drawn) - median(empty.drawn);
  const cells = [
    (bytes / 1e6).toFixed(2).padStart(6),
    `${(median(memory) / 1e6).toFixed(1)} MB`.padStart(9),
    `${Math.round(median(drawn))} ms`.padStart(11),
    `${Math.round(later)} ms`.padStart(16),
    `${Math.round(median(steps))} ms`.padStart(9),
    (median(steps) / median(empty.steps)).toFixed(1).padStart(8),
    `${Math.round(median(stepComputed))} ms`.padStart(8),
  ];
  console.log(name.padEnd(29) + cells.join('  '));
}
await browser.close();
rmSync(scratch, { recursive: true });
