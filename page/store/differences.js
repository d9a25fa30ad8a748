// What differs between two runs, as api/compare tells it, in words.

import { Clock, lengthOf } from '../view/clock.js';
import { addInSteps, make, show } from '../view/element.js';
import { statusName } from '../view/statuses.js';
import { firstOf } from '../view/text.js';
import { briefText } from '../view/values.js';
import { momentText } from './moment.js';

const groupsAtOnce = 40;
const linesAtOnce = 20;
export const mostOfEach = 3; // differences of one kind and name
const mostShown = { characters: 60, lines: 1 };

const text = (stored, without = '–') => show(make('bdi'), firstOf(stored || without, mostShown));
const joined = (parts) => parts.flatMap((part, at) => (at > 0 ? [' › ', part] : [part]));
const numbered = (stored, n) => [text(stored), ...(n > 1 ? [` (${n})`] : [])];

/** What tells the differences of a group from others. */
const keyOf = ({ kind, only_in: side, event, parameter, parameter_n: n }, name) =>
  JSON.stringify([kind, side, name ?? event, parameter, n]);

const activityOf = ({ path, against_path: other }) => (path ?? other)[(path ?? other).length - 1].activity;

function groupKeyOf(difference) {
  const { kind, value, against } = difference;
  if (kind === 'version') {
    return JSON.stringify([kind, value, against]);
  }
  return keyOf(difference, kind === 'duration' ? activityOf(difference) : undefined);
}

/** The groups of a comparison, each with the first of its differences. */
export function groupsOf({ summary, differences }) {
  const known = new Map();
  for (const difference of differences) {
    const key = groupKeyOf(difference);
    const list = known.get(key) ?? known.set(key, []).get(key);
    if (list.length < mostOfEach) {
      list.push(difference);
    }
  }
  return summary
    .filter(({ differ }) => differ > 0)
    .map((group) => ({
      ...group,
      first: known.get(group.kind === 'version' ? groupKeyOf(group) : keyOf(group)) ?? [],
    }));
}

/** Where something is: the nodes that lead there, without the run itself, and the event. */
function placeOf({ path, against_path: other, event, n, against_n: otherN }) {
  const steps = path ?? other;
  const below = steps.length > 1 ? steps.slice(1) : steps;
  const nodes = below.map((step) => make('span', '', ...numbered(step.node, step.n)));
  const isEvent = event !== undefined && (n ?? otherN) !== undefined;
  return joined([...nodes, ...(isEvent ? [make('span', '', text(event, '(no name)'), ` ${n ?? otherN}`)] : [])]);
}

const statusWords = (code) => (code === 4 ? 'did not finish' : statusName(code));

/** A value of one side in words. */
function valueOf({ kind }, value) {
  if (value === undefined || value === null) {
    return '–';
  }
  if (kind === 'duration') {
    return lengthOf(value * 1e6);
  }
  if (kind === 'status' && typeof value === 'number') {
    return statusWords(value);
  }
  return text(typeof value === 'string' ? value : briefText(value, typeof value === 'number' ? 'double' : ''), '""');
}

function byHow({ difference, factor }) {
  if (typeof factor === 'number') {
    return `× ${briefText(factor, 'double')}`;
  }
  return typeof difference === 'number' ? (difference > 0 ? '+' : '') + briefText(difference, 'double') : '';
}

const what = {
  execution: ({ only_in: side }) => ['steps only in ', sideName(side)],
  event: ({ only_in: side, event }) => ['events ', text(event, '(no name)'), ' only in ', sideName(side)],
  order: () => ['steps in another order'],
  'event order': ({ event }) => ['events ', text(event, '(no name)'), ' in another order'],
  status: () => ['state'],
  version: () => ['version of the activity'],
  duration: ({ event }) => ['duration of ', text(event)],
  parameter: ({ event, parameter, parameter_n: n }) => [text(event, '(no name)'), ' ', ...numbered(parameter, n)],
};
const sideName = (side) => (side === 'run' ? 'this run' : 'the other');
const hasSides = ({ kind }) => !['execution', 'event', 'order', 'event order'].includes(kind);

/** Whether nearly all differ, by other values each time, as times and names of files do: the first stands for all. */
export const isAlwaysDifferent = ({ kind, compared, differ, constant }) =>
  kind === 'parameter' && compared >= 3 && differ >= 0.9 * compared && !constant;

const countOf = ({ differ, compared }) =>
  differ === compared
    ? `all ${differ.toLocaleString('en')}`
    : `${differ.toLocaleString('en')} of ${compared.toLocaleString('en')}`;

function rowsOf(group) {
  const { constant, first, differ } = group;
  const shown = constant || group.kind === 'version' || isAlwaysDifferent(group) ? first.slice(0, 1) : first;
  const rows = (shown.length > 0 ? shown : [null]).map((difference, at) => {
    const sides = difference && hasSides(group) ? [difference.value, difference.against] : [undefined, undefined];
    const title = at === 0 ? what[group.kind](group) : [];
    const head = make('th', 'text', ...title);
    head.scope = 'row';
    return make(
      'tr',
      at === 0 ? 'group' : '',
      head,
      make('td', 'word', at === 0 ? countOf(group) : ''),
      make('td', 'text', ...(difference ? placeOf(difference) : [])),
      ...sides.map((side) => make('td', 'text', hasSides(group) ? valueOf(group, side) : '')),
      make('td', 'number', difference ? byHow(difference) : ''),
    );
  });
  if (shown.length === first.length && differ > shown.length && !constant) {
    const rest = make('td', 'hint', `and ${(differ - shown.length).toLocaleString('en')} more`);
    rest.colSpan = 6;
    rows.push(make('tr', '', rest));
  }
  return rows;
}

const moreOf = (rest) =>
  rest > 0 ? [make('p', 'hint', `and ${rest.toLocaleString('en')} more, which velora-ts diff lists`)] : [];

/** What is different where two runs part. */
function partingWords(parting) {
  const { kind, only_in: side, parameter, parameter_n: n, value, against } = parting;
  if (side) {
    return [`only in ${sideName(side)}`];
  }
  if (!hasSides(parting)) {
    return ['in another order'];
  }
  const name = kind === 'parameter' ? numbered(parameter, n) : what[kind](parting);
  return [...name, ' ', valueOf(parting, value), make('span', 'difference', ' ≠ ', valueOf(parting, against))];
}

/**
 * Where two runs first part.
 * @param address of the page of both, which shows a step
 */
export function partingOf({ parting, run }, address) {
  if (!parting) {
    return [];
  }
  const { at, execution } = parting;
  const after = at ? lengthOf(new Clock(run.started_at).read(at)) : '';
  const when = at ? ` at ${momentText(at)}, ${after} after the start` : '';
  const place = make(execution === undefined ? 'span' : 'a', '', ...placeOf(parting));
  if (execution !== undefined) {
    place.href = `${address}#execution-${execution}`;
  }
  return [
    make('p', 'parting', make('strong', '', 'They first part'), `${when}: `, place, ': ', ...partingWords(parting)),
  ];
}

/** The table of what differs. */
export function differencesOf(found) {
  const groups = groupsOf(found);
  if (groups.length === 0) {
    return [make('p', '', found.same ? 'Nothing differs.' : 'Both have the same events and values.')];
  }
  const titles = ['What', 'Differs', 'Where', 'This run', 'The other', 'By'];
  const heads = titles.map((title) => {
    const head = make('th', title === 'By' ? 'number' : '', title);
    head.scope = 'col';
    return head;
  });
  const body = make('tbody');
  const table = make('table', 'differences', make('thead', '', make('tr', '', ...heads)), body);
  body.append(...groups.slice(0, groupsAtOnce).flatMap(rowsOf));
  const rest = Math.max(0, groups.length - groupsAtOnce) + found.left_out.summary;
  return [make('div', 'scroll', table), ...moreOf(rest)];
}

/** The lines of the configurations of the instrument that differ. */
export function configurationOf({ configuration: lines, left_out: { configuration: rest } }) {
  if (lines.length === 0) {
    return [];
  }
  const list = make('ul', 'lines');
  addInSteps(list, lines, linesAtOnce, ({ only_in: side, line, text: words }) =>
    make('li', '', `${sideName(side)}${line > 0 ? `, line ${line}` : ''}: `, text(words)),
  );
  return [make('h3', '', 'Configuration of the instrument'), list, ...moreOf(rest)];
}
