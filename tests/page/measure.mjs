// measure.mjs REPETITIONS: size and time to draw of the page of 100,000 events, beside an empty page with its library.
import { readFileSync, rmSync, writeFileSync } from 'node:fs';
import { cpus } from 'node:os';
import { join } from 'node:path';
import { pathToFileURL } from 'node:url';

import { launch } from './browser.mjs';
import { long, scratch } from './recordings.mjs';

const { file, bytes } = long(100000);
const [, library] = /<script>(\s*\/\*[^]*?)<\/script>/.exec(readFileSync(file, 'utf8'));
const empty = join(scratch, 'empty.html');
writeFileSync(
  empty,
  `<!DOCTYPE html><meta charset="utf-8"><div class="chart" style="width:1200px;height:300px"></div>
<script>${library}</script><script>
const element = document.querySelector('.chart');
const chart = echarts.init(element);
chart.on('finished', () => (element.dataset.drawn = 1));
chart.setOption({ xAxis: {}, yAxis: {}, series: [] });
</script>`,
);

const browser = await launch();
async function milliseconds(path) {
  const page = await browser.newPage({ viewport: { width: 1280, height: 900 } });
  await page.goto(pathToFileURL(path).href, { waitUntil: 'commit' });
  const drawn = await page.waitForFunction(() => {
    const charts = [...document.querySelectorAll('.chart')];
    return charts.length > 0 && charts.every((chart) => chart.dataset.drawn) && performance.now();
  });
  const time = await drawn.jsonValue();
  await page.close();
  return time;
}

const times = { empty: [], report: [] };
for (let round = 0; round < Number(process.argv[2]); ++round) {
  // in turn, so that both meet the same machine
  times.empty.push(await milliseconds(empty));
  times.report.push(await milliseconds(file));
}
const median = (list) => Math.round(list.sort((a, b) => a - b)[list.length >> 1]);
console.log(`${cpus()[0].model}, Chromium ${browser.version()}, medians of ${times.empty.length}`);
const line = (what, size, time) =>
  console.log(`${what}: ${(size / 1e6).toFixed(2)} MB, drawn after ${median(time)} ms`);
line('page of 100,000 events with four parameters', bytes, times.report);
line('empty page with the same library', library.length, times.empty);
console.log(`difference: ${median(times.report) - median(times.empty)} ms`);
await browser.close();
rmSync(scratch, { recursive: true });
