// What was run, when, on what, and how it ended.

import { lengthOf } from './clock.js';
import { colour, statusColour } from './colours.js';
import { make, show, showName } from './element.js';
import { showLong } from './long-text.js';
import { renew } from './renew.js';
import { statusOf } from './states.js';
import { running, statusName } from './statuses.js';
import { count, noName, readable } from './text.js';

const mostNamed = 5;

export const titleOf = ({ node, root, clock }) => `${readable(node[root])} · ${clock.date(0)}`;

/** What stays as it is while a run is recorded. */
export function showHead(recorded) {
  const { root, unfinished } = recorded;
  document.title = titleOf(recorded);
  showName(document.getElementById('title'), recorded.node[root]);
  showLong(document.getElementById('subtitle'), recorded.description[root] ?? '');
  document.getElementById('all-facts').open =
    unfinished.length === 0 && window.matchMedia('(min-width: 1000px) and (min-height: 800px)').matches;
}

/** What is known so far. */
export function showFacts(recorded) {
  const { raw, clock, root } = recorded;
  const version = recorded.versions.get(recorded.version[root]);
  const session = recorded.sessions.get(recorded.session[root]);
  const facts = [];
  const fact = (name, ...children) => facts.push(make('div', '', make('dt', '', name), make('dd', '', ...children)));
  const stored = (text) => show(make('span'), text);
  fact(
    'Activity',
    version ? stored(version.name) : 'none',
    ...(version ? [' version ', stored(version.version), ' of ', stored(version.activity)] : []),
  );
  fact('Instrument', ...(session ? [stored(session.instrument), ', recorded by ', stored(session.host)] : ['unknown']));
  fact('Started', clock.local(0));
  const open = recorded.ended[root] === Infinity;
  const end = open ? recorded.last : recorded.ended[root];
  fact(open ? 'Last record' : 'Ended', clock.local(end));
  fact(open ? 'Duration so far' : 'Duration', lengthOf(end));
  fact('State', stateOf(recorded));
  fact('Sealed', ...sealOf(recorded));
  fact('Shown', ...shownOf(recorded));
  fact('Run', make('code', '', raw.run));
  renew(document.getElementById('facts'), facts);
  showNotes(recorded);
  showBrief(recorded, session, open, end);
  showConfigurations(recorded);
  document.getElementById('made').textContent =
    `Made by velora-ts ${raw.tool} at ${clock.local(raw.made)} from the store as it was then. ` +
    "Times are those of this computer's time zone.";
}

/** What was noted about the run. The list only grows. */
function showNotes({ raw, clock }) {
  const list = document.getElementById('notes');
  list.append(
    ...raw.notes.slice(list.children.length).map(({ kind, text, author, at }) => {
      const words = showLong(make('span', 'text'), text);
      const by = make('span', 'hint', ' ', show(make('span'), author), `, ${clock.local(at ?? NaN)}`);
      return make('li', '', make('strong', '', kind), ' ', words, by);
    }),
  );
}

/** The facts in one line, which opens all of them. */
function showBrief(recorded, session, open, end) {
  const { unfinished, clock, root } = recorded;
  const parts = [
    ...(session ? [show(make('span'), session.instrument)] : []),
    `${clock.date(0)} ${clock.day(0, 0)}`,
    lengthOf(end),
    unfinished.length > 0 && !open ? `${unfinished.length} did not finish` : statusOf(recorded, root),
  ];
  renew(
    document.getElementById('brief'),
    parts.flatMap((part, at) => (at > 0 ? [' · ', part] : [part])),
  );
}

function shownOf(recorded) {
  const { raw, events, count: executions } = recorded;
  const ofExecutions = `, ${count(executions, 'execution')}`;
  if (!raw.slices) {
    return [`all ${count(raw.recorded, 'event')}${ofExecutions}`];
  }
  const { kinds } = raw.slices;
  const names = kinds.slice(0, mostNamed).flatMap(({ name }) => [show(make('strong'), name || noName), ', ']);
  return [
    `binned: ${events.length.toLocaleString('en')} of ${count(raw.recorded, 'event')}${ofExecutions}. Of `,
    ...names.slice(0, kinds.length > mostNamed ? undefined : -1),
    ...(kinds.length > mostNamed ? [`and ${(kinds.length - mostNamed).toLocaleString('en')} more kinds`] : []),
    ` only the lowest and highest values in each of ${count(kinds[0].counts.length, 'slice')} of time, and the newest` +
      ' of each execution',
  ];
}

function stateOf(recorded) {
  const { unfinished, root } = recorded;
  const others = unfinished.length > 0 ? `; ${count(unfinished.length, 'execution')} did not finish` : '';
  return statusOf(recorded, root) + others;
}

function sealOf({ raw, clock }) {
  if (!raw.seal) {
    return ['not sealed'];
  }
  const { number, sealed_at: at, hash, complete } = raw.seal;
  return [
    `seal ${number} of ${clock.local(clock.read(at))}`,
    complete ? ', covers all: ' : '; more was recorded since: ',
    make('code', '', hash.slice(0, 16)),
    '…',
  ];
}

/** The list only grows. */
function showConfigurations(recorded) {
  const { configurations } = recorded.raw;
  const names = [
    ['Vendor', 'vendor_name'],
    ['Model', 'model_name'],
    ['Class', 'instrument_class'],
    ['Host', 'host_name'],
    ['Options', 'option_text'],
  ];
  const block = document.getElementById('configurations');
  block.append(
    ...configurations.slice(block.children.length).map((configuration) => {
      const saved = ` saved ${recorded.clock.local(recorded.clock.read(configuration.saved_at))}`;
      const list = make(
        'dl',
        'parameters',
        ...names
          .filter(([, field]) => configuration[field])
          .map(([name, field]) => make('div', '', make('dt', '', name), show(make('dd'), configuration[field]))),
      );
      const text = showLong(make('pre'), configuration.configuration_text, { characters: 100000, lines: 2000 });
      return make(
        'details',
        '',
        make('summary', '', 'Instrument configuration ', show(make('span'), configuration.model_name), saved),
        list,
        text,
      );
    }),
  );
}

export function showLegend(recorded) {
  const levels = ['error', 'warning'].filter((level) => recorded.log?.grave.some((line) => line.level === level));
  const codes = [...new Set(recorded.status)].sort((a, b) => b - a);
  const entry = (name, background) => {
    const item = make('li', '', make('span', 'swatch'), name);
    item.firstChild.style.background = background;
    return item;
  };
  renew(document.getElementById('legend'), [
    ...codes.map((code) => entry(code === running ? 'did not finish' : statusName(code), statusColour(code))),
    entry('event', colour('event')),
    ...(recorded.against ? [entry('the other run', colour('against'))] : []),
    ...levels.map((level) => entry(level, colour(level))),
  ]);
}
