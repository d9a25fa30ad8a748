// Texts that state times, as velora-ts reads them too.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { test } from 'node:test';

import { statedTime } from '../../page/view/stated-time.js';

process.env.TZ = 'Europe/Vienna';
const lines = readFileSync(new URL('../stated-times.txt', import.meta.url), 'utf8')
  .trimEnd()
  .split('\n')
  .slice(1);

test('times that texts state', () => {
  for (const [, text, stored] of lines.map((line) => /^(.*\S) +(\S+)$/.exec(line))) {
    const expected = stored === '-' ? NaN : Date.parse(`${stored.slice(0, 23)}Z`) * 1000 + Number(stored.slice(23, 26));
    assert.equal(statedTime(text), expected, text);
  }
});
