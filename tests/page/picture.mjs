// picture.mjs FILE: the page of a tilt series as a picture.
import { rmSync } from 'node:fs';

import { launch, openReport } from './browser.mjs';
import { scratch, tiltSeries } from './recordings.mjs';

const browser = await launch();
const page = await openReport(browser, tiltSeries().file, { viewport: { width: 1160, height: 1120 } });
// Whose computer the picture was made on is of no interest.
await page.evaluate(() => {
  document.getElementById('subtitle').textContent = '/data/sample.mdoc';
  const terms = [...document.querySelectorAll('#facts dt')];
  terms.find((term) => term.textContent === 'Instrument').nextSibling.textContent =
    'Veldmar 3, recorded by veldmar-control';
});
await page.screenshot({ path: process.argv[2] });
await browser.close();
rmSync(scratch, { recursive: true });
