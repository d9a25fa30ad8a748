// What is wrong with the stores themselves: one that cannot be read, or whose records do not reach the facility.

import { make, show } from '../view/element.js';
import { count } from '../view/text.js';
import { millisecondsOf, moment } from './moment.js';

const grace = 5 * 60 * 1000; // milliseconds that a row may wait without a word

const stored = (text) => show(make('span'), text);

/**
 * @param time of now, in milliseconds
 * @returns [{key, words, draw}]: words change with what is said, draw makes its elements
 */
export const troublesOf = ({ stores, instruments }, time) => [
  ...stores.flatMap((store) => [...readingOf(store), ...instrumentsLeftOut(store), ...forwardingOf(store, time)]),
  ...instruments.flatMap(forwarderOf),
];

const trouble = (key, ...draw) => {
  const elements = () => draw.map((part) => (typeof part === 'function' ? part() : part));
  return { key, words: elements().map((part) => part.textContent ?? part), draw: elements };
};

function readingOf({ store, name, error }) {
  const title = () => make('strong', '', 'Store ', stored(name), ' cannot be read: ');
  return error ? [trouble(`read ${store}`, title, () => stored(error))] : [];
}

const instrumentsLeftOut = ({ store, name, more_instruments: more }) =>
  more > 0 ? [trouble(`more ${store}`, () => stored(name), ` has ${count(more, 'more instrument')}, not shown.`)] : [];

function forwardingOf({ store, name, forwarding }, time) {
  const { to, waiting, since, state, error } = forwarding ?? {};
  const isLate = Boolean(since) && time - millisecondsOf(since) > grace;
  if (!forwarding || !(state === 'failing' || isLate)) {
    return [];
  }
  const title =
    state === 'failing' ? 'Forwarding fails' : state === 'working' ? 'Forwarding is behind' : 'Nobody forwards';
  const rows = waiting === null ? 'what is new' : count(waiting, 'row');
  return [
    trouble(
      `forwarding ${store}`,
      () => make('strong', '', `${title}: `),
      `${rows} of `,
      () => stored(name),
      waiting === 1 ? ' waits for ' : ' wait for ',
      () => stored(to),
      ...(since ? [' since ', () => moment(since)] : []),
      ...(error ? [': ', () => stored(error)] : []),
    ),
  ];
}

/** What a facility knows of the forwarder of an instrument. */
function forwarderOf({ store, name, forwarder }) {
  if (!forwarder?.silent) {
    return [];
  }
  return [
    trouble(
      JSON.stringify(['forwarder', store, name]),
      () => make('strong', '', 'The forwarder of ', stored(name), ' is silent'),
      ' since ',
      () => moment(forwarder.heard_at),
      forwarder.waiting > 0 ? `; ${count(forwarder.waiting, 'row')} waited then.` : '.',
    ),
  ];
}
