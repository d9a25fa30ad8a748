// Stores that velora-ts serves, and hosts that record into them.
import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import { mkdirSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';

import { emptyPage } from '../page/browser.mjs';
import { sample, scratch } from '../page/recordings.mjs';

const bin = process.env.VELORA_BIN;

/** An empty store of an instrument. */
export function storeOf(name, instrument) {
  const folder = join(scratch, name);
  mkdirSync(folder);
  const quoted = instrument.replace(/[&<"]/g, (character) => `&#${character.charCodeAt(0)};`);
  const settings = `<TSAL Instrument="${quoted}"><Database Backend="sqlite3" Connection="ts.db"/></TSAL>`;
  writeFileSync(join(folder, 'TSAL.config'), settings);
  return folder;
}

/** A host that records a series slowly, until it is ended. `file` is the name of the series. */
export function recordSlowly(folder, file = 'night.mdoc', pace = 1000) {
  writeFileSync(join(folder, file), sample());
  const options = ['--data', folder, '--pace', String(pace), file];
  return spawn(`${bin}/record-tilt-series`, options, { cwd: folder, stdio: 'ignore' });
}

/** Ends a process and waits until it is gone. */
export async function end(child, signal = 'SIGKILL') {
  if (child.exitCode === null && child.signalCode === null) {
    child.kill(signal);
    await once(child, 'exit');
  }
}

/** Serves stores; answers once it listens. */
export async function serve(folders, port = 0) {
  const stores = folders.flatMap((folder) => ['--config', folder]);
  const child = spawn(`${bin}/velora-ts`, ['serve', ...stores, '--listen', `127.0.0.1:${port}`]);
  let said = '';
  child.stderr.on('data', (data) => (said += data));
  for await (const data of child.stdout) {
    said += data;
    const [, address, itsPort] = /(http:\/\/[^/\s]*:(\d+))/.exec(said) ?? [];
    if (address) {
      child.stdout.resume();
      return { child, port: Number(itsPort), address: `${address}/`, stop: () => end(child, 'SIGTERM') };
    }
  }
  throw new Error(`velora-ts serve ended: ${said}`);
}

/**
 * Opens a view of what is served. The page may ask nobody else.
 * @param prepare what is done with the page before
 */
export async function openView(browser, { address }, view = '', { prepare, ...options } = {}) {
  const page = await emptyPage(browser, new RegExp(`^(${address}|data:|blob:)`), options);
  await prepare?.(page);
  await page.goto(address + view);
  return page;
}

/**
 * Checks what a screen reader is told.
 * @param expected [role, pattern of the name] of elements that must be there
 */
export async function isTold(page, expected) {
  const session = await page.context().newCDPSession(page);
  const { nodes } = await session.send('Accessibility.getFullAXTree');
  const told = nodes.filter(({ ignored }) => !ignored).map(({ role, name }) => [role.value, name?.value ?? '']);
  const isThere = ([role, pattern]) => told.some(([its, name]) => its === role && pattern.test(name));
  assert.deepEqual(
    expected.filter((one) => !isThere(one)),
    [],
  );
}

/** Checks what is on paper: of selectors, some are and some are not, and nothing is cut at its right edge. */
export async function isPrinted(page, { shown, hidden }) {
  await page.emulateMedia({ media: 'print' });
  const [on, off, overflow] = await page.evaluate(
    (lists) => [
      ...lists.map((list) => list.filter((one) => document.querySelector(one)?.checkVisibility())),
      document.documentElement.scrollWidth - window.innerWidth,
    ],
    [shown, hidden],
  );
  assert.deepEqual([on, off, overflow <= 0], [shown, [], true], `${overflow}`);
  await page.emulateMedia({ media: 'screen' });
}
