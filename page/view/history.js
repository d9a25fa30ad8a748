// The history of one execution: its statuses, and its events with their parameters.

import { statusVariable } from './colours.js';
import { addInSteps, button, make } from './element.js';
import { eventBlock } from './event-block.js';
import { graveLines } from './log-lines.js';
import { lineOf } from './log-section.js';
import { showLong } from './long-text.js';
import { running, statusName } from './statuses.js';
import { count } from './text.js';

const entriesAtOnce = 20;

export function historyOf(recorded, at) {
  const { clock } = recorded;
  const statuses = make(
    'ol',
    'statuses',
    ...recorded.history[at].map(({ code, at: time }) => {
      const item = make('li', '', make('span', 'swatch'), `${statusName(code)} (${code}) since ${clock.local(time)}`);
      item.firstChild.style.background = `var(--${statusVariable(code)})`;
      return item;
    }),
  );
  const facts = make(
    'p',
    'hint',
    `execution ${recorded.number[at]} of the store`,
    ...(recorded.description[at] ? ['; ', showLong(make('span', 'text'), recorded.description[at])] : []),
  );
  const block = make('div', 'history', facts, make('h3', '', 'Statuses'), statuses, ...eventsOf(recorded, at));
  return block;
}

/** The events, and warnings and errors of the log in the time of the execution, in the order of time. */
function entriesOf(recorded, at) {
  const events = recorded.eventsOf[at];
  const lines = graveLines(recorded, recorded.started[at], recorded.endOf(at));
  const entries = [];
  let line = 0;
  for (const event of events) {
    for (; line < lines.length && lines[line].at < event.at; ++line) {
      entries.push({ line: lines[line] });
    }
    entries.push({ event });
  }
  return [...entries, ...lines.slice(line).map((rest) => ({ line: rest }))];
}

function elementOf(recorded, { event, line }) {
  return event ? eventBlock(recorded, event) : make('ol', 'lines', lineOf(recorded, line));
}

/** The events, of what did not finish the newest first: there it stopped. */
function eventsOf(recorded, at) {
  const entries = entriesOf(recorded, at);
  const { length } = recorded.eventsOf[at];
  const lines = entries.length - length;
  const list = make('div', 'events');
  const order = button('order', '', () => put(!newestFirst));
  let newestFirst;
  function put(newest) {
    newestFirst = newest;
    order.textContent = newest ? 'Newest first' : 'Oldest first';
    order.title = `Show the ${newest ? 'oldest' : 'newest'} first`;
    list.replaceChildren();
    addInSteps(list, newest ? [...entries].reverse() : entries, entriesAtOnce, (one) => elementOf(recorded, one));
  }
  put(recorded.status[at] === running);
  return [
    make(
      'h3',
      '',
      count(length, 'event') + (lines > 0 ? ` and ${count(lines, 'line')} of the log` : ''),
      ...(entries.length > 1 ? [' ', order] : []),
    ),
    ...(recorded.raw.slices ? [make('p', 'hint', 'Only events that were kept when binning are listed.')] : []),
    list,
  ];
}
