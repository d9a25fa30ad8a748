// The view of now, in a real browser, while hosts record, are killed, and the server itself ends and comes back.
import assert from 'node:assert/strict';
import { rmSync } from 'node:fs';
import { after, before, test } from 'node:test';

import { launch, wholeBrowser } from '../page/browser.mjs';
import { scratch, write } from '../page/recordings.mjs';
import { end, isTold, openView, recordSlowly, serve, storeOf } from './served.mjs';

let browser;
const begun = [];
before(async () => {
  browser = await launch(wholeBrowser);
});
after(async () => {
  await Promise.all(begun.map((child) => end(child)));
  await browser.close();
  rmSync(scratch, { recursive: true });
});

/** A store with a host that records, and its server. */
async function running(name, instrument) {
  const folder = storeOf(name, instrument);
  const host = recordSlowly(folder);
  const server = await serve([folder]);
  begun.push(host, server.child);
  return { folder, host, server };
}

const stateOf = (page) => page.locator('.instrument .state');
const isState = (page, words, timeout = 30000) =>
  page.waitForFunction((text) => document.querySelector('.instrument .state')?.textContent === text, words, {
    timeout,
  });

test('a host that is killed turns to STOPPED within two seconds, and is so until it is seen', async () => {
  const { host, server } = await running('killed', 'Scope 7');
  const page = await openView(browser, server);
  await isState(page, 'running');
  await page.waitForFunction(() => /night\.mdoc.*, step \d+, since/.test(document.querySelector('.what').textContent));
  assert.match(await page.textContent('.instrument .last'), /TiltAngle=/);
  assert.match(await page.textContent('.instrument .silence'), /^silent for \d+ s$/);
  assert.equal(await page.title(), 'Now – Velora TS');
  const [icon, element] = [await page.getAttribute('#icon', 'href'), await page.$('.instrument')];
  await end(host);
  await isState(page, 'STOPPED', 2000);
  assert.equal(await page.title(), 'STOPPED: Scope 7 – Now – Velora TS');
  assert.notEqual(await page.getAttribute('#icon', 'href'), icon);
  assert.ok(await element.evaluate((one) => one.isConnected), 'its line was made anew');
  const alarm = page.getByRole('alert').filter({ hasText: 'STOPPED' });
  assert.match(await alarm.textContent(), /STOPPED Scope 7.*night\.mdoc.*last record \d{4}-\d\d-\d\d \d\d:\d\d:\d\d/);
  await page.getByRole('link', { name: 'Runs' }).click();
  assert.ok(await alarm.isVisible(), 'another view hides it');
  await page.reload();
  await alarm.getByRole('button', { name: 'Seen' }).press('Enter');
  assert.equal(await alarm.count(), 0);
  assert.equal(await page.title(), 'Runs – Velora TS');
  await page.getByRole('link', { name: 'Now' }).click();
  await isState(page, 'STOPPED');
  await page.reload();
  await isState(page, 'STOPPED');
  assert.deepEqual([await alarm.count(), await page.title()], [0, 'Now – Velora TS']);
  assert.deepEqual(page.complaints, []);
  const other = await openView(browser, server);
  await other.getByRole('alert').filter({ hasText: 'STOPPED' }).waitFor(); // another reader has not seen it
});

test('a run that two stores have stops once, and again when it goes on', async () => {
  const folder = storeOf('twice', 'Scope 7');
  const host = recordSlowly(folder);
  const server = await serve([folder, folder]);
  begun.push(host, server.child);
  const page = await openView(browser, server);
  await isState(page, 'running');
  await end(host);
  const stops = page.locator('.stop');
  const once = () => page.waitForFunction(() => document.querySelectorAll('.stop').length === 1);
  await isState(page, 'STOPPED');
  await once();
  await stops.getByRole('button').press('Enter');
  await stops.waitFor({ state: 'detached' });
  write(
    folder,
    `INSERT INTO events (session_id, execution_id, name, at)
    SELECT session_id, execution_id, name, '2099-01-01T00:00:00.000000Z' FROM events ORDER BY event_id DESC LIMIT 1`,
  );
  await once();
  assert.match(await stops.textContent(), /The last event: ZValue (2099-01-01|2098-12-31)/);
});

test('a run that begins after a stop ends the alarm', async () => {
  const { folder, host, server } = await running('again', 'Scope 7');
  const page = await openView(browser, server);
  await isState(page, 'running');
  await end(host);
  await isState(page, 'STOPPED');
  begun.push(recordSlowly(folder, 'second.mdoc'));
  await isState(page, 'running');
  assert.deepEqual([await page.locator('.stop').count(), await page.title()], [0, 'Now – Velora TS']);
  assert.match(await page.textContent('.instrument .others'), /^Before it: night\.mdoc \(STOPPED\)$/);
});

test('a server that ends and comes back', async () => {
  const { folder, host, server } = await running('restarted', 'Scope 7');
  const page = await openView(browser, server);
  await isState(page, 'running');
  await page.waitForFunction(() => document.getElementById('connection').textContent === 'connected');
  await server.stop();
  const lost = /^not connected since \d{4}-\d\d-\d\d \d\d:\d\d:\d\d; what is shown is from then$/;
  await page.getByText(lost).waitFor({ timeout: 5000 });
  assert.match(await page.title(), /^not connected – /);
  await end(host);
  await page.waitForTimeout(3000); // several attempts fail
  assert.equal(await stateOf(page).textContent(), 'running');
  begun.push((await serve([folder], server.port)).child);
  await isState(page, 'STOPPED');
  assert.equal(await page.textContent('#connection'), 'connected');
  assert.equal(await page.title(), 'STOPPED: Scope 7 – Now – Velora TS');
});

test('a stream that dies without a sign is opened again', async () => {
  const { host, server } = await running('silent', 'Scope 7');
  const page = await openView(browser, server, '', { prepare: ({ clock }) => clock.install() });
  await isState(page, 'running');
  server.child.kill('SIGSTOP'); // connections stay, and say nothing
  await page.clock.runFor(60000);
  await page.getByText(/^not connected since/).waitFor();
  server.child.kill('SIGCONT');
  await end(host);
  await page.clock.runFor(20000);
  await isState(page, 'STOPPED');
  assert.equal(await page.textContent('#connection'), 'connected');
});

test('a notification of a stop, for a reader who asked for it', async () => {
  const { host, server } = await running('told', 'Scope 7');
  const page = await openView(browser, server, '', { permissions: ['notifications'] });
  await page.evaluate(() => {
    // What the desktop would show.
    const { permission, requestPermission } = window.Notification;
    window.told = [];
    window.Notification = class {
      static permission = permission;
      static requestPermission = requestPermission;
      constructor(...what) {
        window.told.push(what);
      }
      addEventListener(type, work) {
        window.told.click = work;
      }
      close() {}
    };
  });
  await isState(page, 'running');
  await page.getByRole('button', { name: 'Notify me of stops' }).click();
  await page.getByRole('button', { name: 'Do not notify me of stops' }).waitFor();
  await end(host);
  await isState(page, 'STOPPED');
  const [[title, { body }], ...others] = await page.evaluate(() => window.told);
  assert.deepEqual([title, body, others], ['STOPPED: Scope 7', 'night.mdoc', []]);
  await page.evaluate(() => window.told.click());
  await page.waitForURL(/\/run\?store=1&run=[0-9a-f-]{36}$/);
});

const hostile = `<img src=x onerror="window.bad=1">\u202egnp.${'\u05d0'.repeat(30)}${'W'.repeat(3000)}`;

/** A store in which everything is hostile, beside an ordinary one. */
async function hostileStore(name) {
  const folder = storeOf(name, 'Veldmar 3');
  const host = recordSlowly(folder);
  const server = await serve([folder]);
  begun.push(host, server.child);
  const page = await openView(browser, server);
  await isState(page, 'running');
  await page.waitForFunction(() => document.querySelector('.last').textContent.includes('TiltAngle'));
  await page.context().close();
  await Promise.all([end(host), server.stop()]);
  const text = `'${hostile.replaceAll("'", "''")}'`;
  write(
    folder,
    `.timeout 5000
    DROP TRIGGER executions_no_update; DROP TRIGGER events_no_update; DROP TRIGGER parameters_no_update;
    UPDATE executions SET node = ${text}, description = ${text}; UPDATE events SET name = ${text};
    UPDATE parameters SET name = ${text}, kind = 'text', value_number = NULL, value_text = ${text};
    DROP TRIGGER sessions_no_update; UPDATE sessions SET instrument = ${text};`,
  );
  const again = await serve([folder]);
  begun.push(again.child);
  return again;
}

test('names that are markup, turn the line, and are thousands of characters long', async () => {
  const server = await hostileStore('hostile');
  for (const [name, options] of Object.entries({
    wide: {},
    small: { viewport: { width: 800, height: 600 } },
    dark: { colorScheme: 'dark', viewport: { width: 800, height: 600 } },
  })) {
    const page = await openView(browser, server, '', options);
    await isState(page, 'STOPPED');
    const [bad, overflow, text, back] = await page.evaluate(() => [
      window.bad,
      document.documentElement.scrollWidth - window.innerWidth,
      document.querySelector('.instrument .name').textContent,
      getComputedStyle(document.body).backgroundColor,
    ]);
    assert.deepEqual([bad, overflow <= 0], [undefined, true], `${name}: ${overflow}`);
    assert.ok(text.startsWith('<img src=x onerror="window.bad=1">\\u202egnp.') && text.length < 200, text);
    assert.equal(back === 'rgb(20, 24, 31)', name === 'dark');
    const visible = await page.$$eval(
      '.stop button',
      ([seen]) => seen.getBoundingClientRect().bottom < window.innerHeight,
    );
    assert.ok(visible, `${name}: the button is out of sight`);
    await page.emulateMedia({ media: 'print' });
    assert.ok(await page.isVisible('.instrument .state'));
    assert.ok(await page.isHidden('nav'));
    assert.deepEqual(page.complaints, []);
    await page.context().close();
  }
});

test('a store that cannot be read is said, and is read when it is there again', async () => {
  const folder = storeOf('absent', 'Scope 7');
  const server = await serve([folder]);
  begun.push(server.child);
  const page = await openView(browser, server);
  await page.getByText(/^Store .* cannot be read: /).waitFor();
  begun.push(recordSlowly(folder));
  await isState(page, 'running');
  assert.equal(await page.getByText(/cannot be read/).count(), 0);
});

test('what a screen reader is told', async () => {
  const { host, server } = await running('heard', 'Scope 7');
  const page = await openView(browser, server);
  await isState(page, 'running');
  await page.evaluate(() => {
    window.said = [];
    const note = () => window.said.push(document.getElementById('said').textContent);
    new window.MutationObserver(note).observe(document.getElementById('said'), { childList: true, subtree: true });
  });
  await page.waitForTimeout(2500); // several events
  assert.deepEqual(await page.evaluate(() => window.said), []);
  await end(host);
  await isState(page, 'STOPPED');
  await isTold(page, [
    ['navigation', /^Views$/],
    ['main', /.*/],
    ['heading', /^STOPPED Scope 7$/],
    ['alert', /.*/],
    ['button', /^Seen: that Scope 7 stopped$/],
    ['list', /^Instruments$/],
    ['heading', /^Scope 7$/],
    ['link', /^Skip to the content$/],
  ]);
  await page.keyboard.press('Tab');
  assert.equal(await page.evaluate(() => document.activeElement.id), 'skip');
});
