// The runs whose pages are tested, each recorded or written into a store of its own. VELORA_BIN has the programs.
import { execFileSync, spawnSync } from 'node:child_process';
import { mkdirSync, mkdtempSync, readFileSync, statSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';

const bin = process.env.VELORA_BIN;
export const scratch = mkdtempSync(join(tmpdir(), 'velora-page-'));

/** Asks a store; a list of rows. */
export function ask(folder, question) {
  const answer = execFileSync('sqlite3', ['-readonly', '-json', join(folder, 'ts.db'), question], { maxBuffer: 1e9 });
  return answer.length === 0 ? [] : JSON.parse(answer);
}

/** The page of the newest run of a store. */
export function report(folder, ...options) {
  const file = join(folder, 'run.html');
  execFileSync(`${bin}/velora-ts`, ['report', 'last', '-o', file, ...options], { cwd: folder });
  return { folder, file, bytes: statSync(file).size };
}

/** Records a file into a store of its own. */
export function record(name, file, content, times = asOnAnInstrument) {
  const folder = join(scratch, name);
  mkdirSync(folder);
  writeFileSync(join(folder, file), content);
  try {
    execFileSync(`${bin}/record-tilt-series`, ['--data', folder, file], { cwd: folder, stdio: 'ignore' });
  } catch {
    // what is wrong in the file ends the recording
  }
  write(folder, times);
  return folder;
}

/** Changes a store as no host can. */
export const write = (folder, statements) => execFileSync('sqlite3', [join(folder, 'ts.db')], { input: statements });

const at = (seconds) => `strftime('%Y-%m-%dT%H:%M:%S', '2026-11-25', (${seconds}) || ' seconds')`;

// The example records a series within milliseconds; here each section takes half a minute.
const asOnAnInstrument = `
  DROP TRIGGER executions_no_update; DROP TRIGGER statuses_no_update; DROP TRIGGER events_no_update;
  DROP TRIGGER configurations_no_update; UPDATE configurations SET saved_at = ${at('-31')} || '.000000Z';
  UPDATE executions SET started_at = ${at('30 * execution_id - 60')} || '.000000Z';
  UPDATE events SET at = ${at('30 * execution_id - 40')} || '.000000Z';
  UPDATE statuses SET at = CASE WHEN code = 4 THEN (SELECT started_at FROM executions x
      WHERE x.execution_id = statuses.execution_id)
    WHEN execution_id = 1 THEN (SELECT ${at('30 * MAX(execution_id) - 30')} || '.000000Z' FROM executions)
    ELSE ${at('30 * execution_id - 32')} || '.000000Z' END;`;

export const sample = () => execFileSync(join(process.env.SOURCE, 'examples/record-tilt-series/make-sample-series'));

/** A recording that several tests use. */
function once(make) {
  let made;
  return () => (made ??= make());
}

export const tiltSeries = once(() => report(record('tilt', 'sample.mdoc', sample())));

/** One with the times at which its file was read. */
export const imported = () => report(record('imported', 'sample.mdoc', sample(), ''));

export const stepOfDecember = '01-Dec-26  00:10:00';

export function unfinished() {
  const content = String(sample().subarray(0, 4000)).replace(/24-Nov-26 {2}22:10:00/, stepOfDecember);
  const folder = record('unfinished', 'stopped.mdoc', `${content}\nno value\n`);
  const settings = join(folder, 'TSAL.config');
  const [own, markup] = ['"TiltAngle" Text="', '"TiltAngle" Text="&lt;b&gt;'];
  writeFileSync(settings, readFileSync(settings, 'utf8').replace(own, markup));
  return report(folder);
}

export const nightNote = { text: 'The cryo stage ran dry at four.', author: 'Ines' };

function folderOfNights(name) {
  const folder = join(scratch, name);
  mkdirSync(folder);
  const settings = '<TSAL Instrument="Veldmar 3"><Database Backend="sqlite3" Connection="ts.db"/></TSAL>';
  writeFileSync(join(folder, 'TSAL.config'), settings);
  return folder;
}

function runNight(folder, expected, start, ...options) {
  const env = { ...process.env, TZ: 'Europe/Vienna' };
  const { signal } = spawnSync(`${bin}/night-run`, ['.', '--start', start, ...options], { cwd: folder, env });
  if (signal !== expected) {
    throw new Error(`night-run ended with ${signal}`);
  }
}

/** A night that was killed at its last event, an Error. */
export const night = once(() => {
  const folder = folderOfNights('night');
  runNight(folder, 'SIGKILL', '2026-11-25T21:00:00.000000Z', '--events', 8000);
  const note = ['note', 'last', nightNote.text, '--kind', 'cause', '--author', nightNote.author];
  execFileSync(`${bin}/velora-ts`, note, { cwd: folder, stdio: 'ignore' });
  return report(folder, '--log', 'night.log');
});

/** A night beside one before it: a hole more, a square less, other doses behind that, and another version of Hole. */
export function twoNights() {
  const folder = folderOfNights('nights');
  runNight(folder, null, '2026-11-24T20:00:00.000000Z', '--finish', '--events', 3000);
  const changes = ['--changes', 'hole,square,dose,version'];
  runNight(folder, null, '2026-11-25T21:00:00.000000Z', '--finish', '--events', 3000, ...changes);
  const [{ guid }] = ask(folder, 'SELECT guid FROM executions WHERE execution_id = 1');
  const ignored = ['File', 'DateTime', 'Defocus', 'FocusScore'].flatMap((name) => ['--ignore', name]);
  return report(folder, '--against', guid, ...ignored);
}

/** A run with a text of many lines in each place that takes one. */
export function longText() {
  const folder = record('long-text', 'sample.mdoc', '[ZValue = 0]\nTiltAngle = 1\n');
  const text = Array.from({ length: 9000 }, (unused, line) => `line ${line + 1} of 9000`).join('\n');
  write(
    folder,
    `DROP TRIGGER parameters_no_update; UPDATE executions SET description = '${text}', node = '${text}';
    UPDATE parameters SET kind = 'text', value_number = NULL, value_text = '${text}' WHERE position = 1;`,
  );
  return report(folder);
}

export const hostileTexts = {
  node: 'ZValue <script>window.bad = 1</script>',
  event: `<i>'it'</i>"`,
  value: `<b>"a" &amp; 'b'</b>`,
  name: '</script><!--',
  braces: '{a|b}{c}',
  formula: '=HYPERLINK("x")',
  below: '</textarea><svg onload=window.bad=1>{a|b}',
  noted: '<img src=y onerror="window.bad = 5">',
  logged: '</script><img src=z onerror="window.bad = 6">',
};

export function hostile() {
  const { name, braces, value, formula, event, below, noted, logged } = hostileTexts;
  const lines = [
    `[ZValue = <script>window.bad = 1</script>]`,
    `${name} = ${value}`,
    `${braces} = ${braces}`,
    `Formula = ${formula}`,
    'Escaped = \\x41',
    'Marks = a\u061cb\u202ec\u{e0041}',
    'Twice = 1',
    'Twice = 2',
    'Bytes = a',
  ];
  const content = Buffer.concat([Buffer.from(lines.join('\n')), Buffer.from([0xff, 0xc3, 0x28]), Buffer.from('<u>\n')]);
  const folder = record('hostile', '<img src=x onerror="window.bad = 1">.mdoc', content);
  const quoted = (text) => `'${text.replaceAll("'", "''")}'`;
  write(
    folder,
    `
    INSERT INTO executions SELECT 900, 'ffffffff-0000-4000-8000-000000000000', 1, 1, session_id, version_id,
      ${quoted(below)}, '', 0, started_at FROM executions WHERE execution_id = 1;
    INSERT INTO statuses SELECT 900, 900, 1, 14, started_at FROM executions WHERE execution_id = 1;
    INSERT INTO events SELECT 900, 1, 900, NULL, ${quoted(event)}, started_at FROM executions WHERE execution_id = 1;
    INSERT INTO parameters VALUES (900, 1, '\\x00ff', 'double', NULL, 1.5),
      (900, 2, 'none', 'double', 'NaN:7ff8000000000000', NULL), (900, 3, 'much', 'double', NULL, 9e999);`,
  );
  execFileSync(`${bin}/velora-ts`, ['note', 'last', noted], { cwd: folder, stdio: 'ignore' });
  writeFileSync(join(folder, 'host.log'), `2026-11-25T00:00:05.000000+00:00 [error] [<b>] ${logged}\n`);
  return report(folder, '--log', 'host.log');
}

/** A run of the cases that CSV is held against. */
export const csvCases = once(() => {
  const folder = record('csv', 'sample.mdoc', sample());
  write(folder, readFileSync(join(process.env.SOURCE, 'tests/csv-cases.sql')));
  execFileSync(`${bin}/velora-ts`, ['note', 'last', 'cryo ran dry', '--kind', 'cause'], { cwd: folder });
  execFileSync(`${bin}/velora-ts`, ['seal'], { cwd: folder });
  return report(folder);
});

/** A run in which each execution but the last has one below it. */
export function deep(levels) {
  const folder = record('deep', 'sample.mdoc', sample());
  write(
    folder,
    `
    WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < ${levels})
      INSERT INTO executions SELECT 1000 + i, printf('ffffffff-0000-4000-8000-%012d', i),
        CASE WHEN i > 0 THEN 999 + i END, 1000, 1, 1, 'level ' || i, '', 5, ${at('i / 100')} || '.000000Z' FROM n;
    INSERT INTO statuses SELECT execution_id, execution_id, 1, 14, ${at(levels)} || '.000000Z' FROM executions
      WHERE root_id = 1000;`,
  );
  return report(folder);
}

/** An event of a long run, and what its first parameter has in place of its value there. */
export const outlier = { event: 41337, value: 9 };

/**
 * A run of ten hours with many events of some kinds, four parameters each, in a hundred executions of which one did not
 * finish. `drift` is what the first parameter has in some events in place of its value there.
 */
export function long(events, { kinds = 1, parameters = 4, drift = 'NULL' } = {}) {
  const folder = record(`long-${events}-${kinds}-${parameters}`, 'sample.mdoc', sample());
  const name = kinds > 1 ? `'Sample ' || (i % ${kinds})` : `'Sample'`;
  write(
    folder,
    `
    INSERT INTO executions SELECT 1000, 'ffffffff-0000-4000-8000-000000000000', NULL, 1000, 1, 1, 'ten hours', '', 5,
      '2026-11-25T00:00:00.000000Z';
    INSERT INTO statuses VALUES (1000, 1000, 1, 14, '2026-11-25T10:00:00.000000Z');
    WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 100)
      INSERT INTO executions SELECT 1000 + i, printf('ffffffff-0000-4000-8000-%012d', i), 1000, 1000, 1, 2,
        'step ' || i, '', 0, ${at('i * 360 - 360')} || '.000000Z' FROM n;
    INSERT INTO statuses SELECT execution_id, execution_id, 1, CASE execution_id WHEN 1050 THEN 4 ELSE 14 END,
      ${at('(execution_id - 1000) * 360 - 10')} || '.000000Z' FROM executions WHERE parent_id = 1000;
    WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < ${events - 1})
      INSERT INTO events SELECT 10000 + i, 1, 1001 + i * 100 / ${events}, NULL, ${name},
        ${at(`i * 36000 / ${events}`)} || printf('.%06dZ', i * 36000000000 / ${events} % 1000000) FROM n;
    INSERT INTO parameters SELECT event_id, column1, column2, column3, NULL,
        CASE column1
        WHEN 1 THEN COALESCE(${drift}, sin(event_id / 3000.0) + event_id % 17 / 50.0) WHEN 2 THEN event_id / 7.0
        WHEN 3 THEN round(20 + cos(event_id / 900.0), 2) ELSE event_id % 3 = 0 END
      FROM events, (VALUES (1, 'Drift', 'double'), (2, 'Dose', 'double'), (3, 'Temperature', 'double'),
        (4, 'Beam', 'bool'))
      WHERE event_id >= 10000 AND column1 <= ${parameters};`,
  );
  return report(folder);
}

/** One in which one value is far from all others. */
export const withOutlier = once(() =>
  long(100000, { drift: `CASE event_id WHEN ${outlier.event} THEN ${outlier.value} END` }),
);

/** One with more events of a kind than a page has, and both infinities in each slice of them. */
export const binned = once(() =>
  long(250000, { drift: 'CASE event_id % 100 WHEN 0 THEN 9e999 WHEN 50 THEN -9e999 END' }),
);

/** One with more events of all kinds together than a page has, and more slices of them. */
export const manyKinds = once(() => long(450000, { kinds: 45, parameters: 1 }));
