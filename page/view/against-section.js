// What the page says of the run with which this one is compared: how much belongs together, and where they first part.

import { lengthOf } from './clock.js';
import { addInSteps, linkTo, make, show } from './element.js';
import { renew } from './renew.js';
import { statusOf } from './states.js';
import { statusName } from './statuses.js';
import { count, firstOf, noName } from './text.js';
import { unitAfter } from './units.js';
import { briefly } from './values.js';

const atOnce = 20; // items of a list
const mostShown = { characters: 60, lines: 1 };

const stored = (text, instead = '–') => show(make('bdi'), firstOf(text || instead, mostShown));

/** What stands behind a value that differs in the other run: " ≠ −1.4". */
export const differenceOf = (text) => make('span', 'difference', ' ≠ ', stored(text, 'none'));

const joined = (elements) => elements.flatMap((element, place) => (place > 0 ? [' › ', element] : [element]));

const pathIn = (run, at) => joined(run.pathTo(at).map((step) => stored(run.node[step])));

export function showAgainst(recorded) {
  const { against } = recorded;
  const section = document.getElementById('against');
  section.hidden = !against;
  if (!against) {
    return;
  }
  const { other, counterparts, othersAlone } = against;
  const alone = recorded.count - counterparts.size;
  const title = make(
    'h2',
    '',
    'Compared with ',
    stored(other.node[other.root]),
    ` of ${other.clock.local(0)} `,
    make('code', 'hint', other.raw.run),
  );
  title.id = 'against-title';
  const wereOpen = [...section.querySelectorAll('details[open]')].map(({ className }) => className);
  renew(section, [
    title,
    make(
      'p',
      '',
      `${count(counterparts.size, 'step belongs', 'steps belong')} together, ` +
        `alone in this run: ${alone.toLocaleString('en')}, in the other: ${othersAlone.length.toLocaleString('en')}.`,
    ),
    partingOf(recorded),
    ...list('alone', `${count(othersAlone.length, 'step')} of the other run alone`, othersAlone, (there) =>
      make('li', '', ...pathIn(other, there), `, ${lengthOf(other.started[there])} after its start`),
    ),
    ...list('lines-of', `${count(against.raw.lines.length, 'line')} of the configurations`, against.raw.lines, (line) =>
      make(
        'li',
        '',
        `${line.own ? 'this run' : 'the other'}${line.line ? `, line ${line.line}` : ''}: `,
        stored(line.text),
      ),
    ),
    ...rulesOf(against),
  ]);
  section.querySelectorAll('details').forEach((one) => (one.open = wereOpen.includes(one.className)));
}

function list(kind, title, items, elementOf) {
  if (items.length === 0) {
    return [];
  }
  const block = make('ul', 'lines');
  addInSteps(block, items, atOnce, elementOf);
  return [make('details', kind, make('summary', '', title), block)];
}

function rulesOf({ raw: { rules } }) {
  const { absolute, relative } = rules.otherwise;
  const within = (one) => [
    one.absolute > 0 ? `${one.absolute}` : '',
    one.relative > 0 ? `${one.relative * 100} %` : '',
  ];
  const words = (one) =>
    within(one)
      .filter((part) => part !== '')
      .join(' or ');
  const names = (texts) => texts.flatMap((text) => [' ', stored(text)]);
  const parts = [
    ...(rules.ignored.length > 0 ? [make('span', '', 'Ignored:', ...names(rules.ignored), '. ')] : []),
    ...rules.tolerances.map((one) => make('span', '', stored(one.parameter), ` is the same within ${words(one)}. `)),
    ...(absolute > 0 || relative > 0 ? [`Numbers are the same within ${words(rules.otherwise)}.`] : []),
  ];
  return parts.length > 0 ? [make('p', 'hint', ...parts)] : [];
}

/** Where the runs first part, as a link to there. */
function partingOf(recorded) {
  const { raw } = recorded.against;
  if (!raw.parting) {
    return make('p', '', 'Both have the same events with the same values.');
  }
  const { at } = raw.parting;
  const when = at === null ? '' : ` at ${recorded.clock.local(at)}, ${lengthOf(at)} after the start`;
  return make(
    'p',
    'parting',
    make('strong', '', 'They first part'),
    `${when}: `,
    ...placeOf(recorded),
    ': ',
    ...whatParts(recorded),
  );
}

/** The execution where they part. If only the other run has it, the one above it is the nearest that can be opened. */
function placeOf(recorded) {
  const { other, owns, raw } = recorded.against;
  const own = recorded.indexOf.get(raw.parting.execution);
  if (own !== undefined) {
    return joined(recorded.pathTo(own).map((step) => linkTo(recorded, step)));
  }
  const path = other.pathTo(other.indexOf.get(raw.parting.other_execution));
  return joined(path.map((step) => (owns.has(step) ? linkTo(recorded, owns.get(step)) : stored(other.node[step]))));
}

function whatParts(recorded) {
  const { against } = recorded;
  const { other, raw } = against;
  const { kind, parameter, ...numbers } = raw.parting;
  const own = recorded.events.find(({ number }) => number === numbers.event);
  const there = other.events.find(({ number }) => number === numbers.other_event);
  const name = stored((own ?? there)?.batch.shape.name, noName);
  if (kind === 'status') {
    const states = [statusOf(recorded, recorded.indexOf.get(numbers.execution))];
    states.push(statusName(other.status[other.indexOf.get(numbers.other_execution)]));
    return [`${states[0]} ≠ ${states[1]}`];
  }
  const missing =
    kind === 'execution' ? [numbers.execution, numbers.other_execution] : [numbers.event, numbers.other_event];
  if (kind === 'parameter' && own && there) {
    const value = (run, event) => {
      const place = event.batch.shape.parameters.findIndex(([one]) => one === parameter);
      return place < 0 ? [undefined] : [event.batch.values[place][event.row], event.batch.shape.parameters[place][1]];
    };
    const [one, two] = briefly(value(recorded, own), value(other, there));
    return [name, ' ', stored(parameter), ' ', stored(one, 'none'), differenceOf(two), unitAfter(recorded, parameter)];
  }
  if (kind === 'parameter') {
    return [stored(parameter), ' differs'];
  }
  return [
    ...(kind === 'event' ? ['event ', name, ' '] : []),
    `only in ${missing[0] === null ? 'the other run' : 'this run'}`,
  ];
}

/** Below the table: how many rows differ. */
export function wordsForDifferences({ against }, rows, columns) {
  if (!against) {
    return '';
  }
  const differing = rows.filter((at) => against.isDifferent(at, columns)).length;
  const beside =
    against.telling(columns).length < columns.length ? ', beside columns that differ nearly everywhere' : '';
  return `; ${differing.toLocaleString('en')} of them ${differing === 1 ? 'differs' : 'differ'}${beside}`;
}

/** On the head of a column: in how many steps it differs. */
export function differencesIn({ against }, column) {
  const total = against?.differingIn(column).size ?? 0;
  const mark = make('span', 'difference', total > 0 ? ` ≠ ${total.toLocaleString('en')}` : '');
  mark.title = `differs in ${count(total, 'step')}`;
  return mark;
}
