// picture.mjs SERIES NIGHT: the pages of a tilt series and of a night that stopped as pictures.
import { rmSync } from 'node:fs';

import { launch, openReport } from './browser.mjs';
import { night, scratch, tiltSeries } from './recordings.mjs';

const [series, stopped] = process.argv.slice(2);
const browser = await launch();

/** Whose computer the picture was made on, and when, is of no interest. */
async function picture(file, recording, height, change) {
  const page = await openReport(browser, recording.file, { viewport: { width: 1160, height } });
  await page.evaluate(change);
  await page.screenshot({ path: file });
}

await picture(series, tiltSeries(), 1120, () => {
  document.getElementById('subtitle').textContent = '/data/sample.mdoc';
  document.querySelector('#brief span').textContent = 'Veldmar 3';
  const terms = [...document.querySelectorAll('#facts dt')];
  terms.find((term) => term.textContent === 'Instrument').nextSibling.textContent =
    'Veldmar 3, recorded by veldmar-control';
});
await picture(stopped, night(), 860, () => {
  const since = document.querySelector('#alarm .since');
  since.textContent = since.textContent.replace(/, [^,]* before/, ', 3 h 12 min before');
  document.querySelector('#notes .hint').textContent = ' Ines, 2026-11-26 07:20:08.000 +01:00';
});
await browser.close();
rmSync(scratch, { recursive: true });
