// What the page of velora-ts stats --plot shows, against what --json says.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { rmSync } from 'node:fs';
import { join } from 'node:path';
import { after, before, test } from 'node:test';

import { launch, openReport } from './browser.mjs';
import { scratch, tiltSeries } from './recordings.mjs';

let browser;
before(async () => {
  browser = await launch();
});
after(async () => {
  await browser.close();
  rmSync(scratch, { recursive: true });
});

const ask = (folder, ...options) =>
  execFileSync(`${process.env.VELORA_BIN}/velora-ts`, ['stats', 'TiltAngle', ...options], { cwd: folder });

for (const by of ['run', 'activity']) {
  test(`the page of statistics by ${by} has the numbers of its groups`, async () => {
    const { folder } = tiltSeries();
    const file = join(folder, 'drift.html');
    ask(folder, '--by', by, '--plot', file);
    const told = JSON.parse(ask(folder, '--by', by, '--json'));
    const page = await openReport(browser, file);
    const rows = await page.$$eval('#table tbody tr', (all) =>
      all.map((row) => [...row.cells].slice(1).map((cell) => cell.title)),
    );
    const names = ['count', 'min', 'q05', 'q25', 'median', 'q75', 'q95', 'max', 'mean', 'deviation', 'drift'];
    assert.deepEqual(
      rows,
      [...told.groups, told.all].map((group) => names.map((name) => String(group[name] ?? ''))),
    );
    const drawn = await page.evaluate(() =>
      echarts
        .getInstanceByDom(document.querySelector('.canvas'))
        .getOption()
        .series.map(({ data }) => data),
    );
    const count = drawn[0].reduce((sum, bin) => sum + bin.at(-1), 0);
    assert.deepEqual([count, drawn[1].length], [told.groups[0].count, told.groups[0].count]);
    assert.equal(drawn[0].length === 1, by === 'run'); // one box of a run
    const [lowest, highest] = [Math.min, Math.max].map((of) => of(...drawn[1].map(([, number]) => number)));
    assert.deepEqual([lowest, highest], [told.all.min, told.all.max]);
    assert.deepEqual(page.complaints, []);
    await page.context().close();
  });
}
