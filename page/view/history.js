// The history of one execution: its statuses, and its parameters grouped by event.

import { statusVariable } from './colours.js';
import { make, show } from './element.js';
import { statusName } from './statuses.js';
import { count } from './text.js';
import { valueText } from './values.js';

const eventsAtOnce = 50;

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
    `execution ${recorded.number[at]} of the store; `,
    show(make('span'), recorded.description[at] ?? ''),
  );
  const block = make(
    'div',
    'history',
    facts,
    make('h3', '', 'Statuses'),
    statuses,
    make('h3', '', count(recorded.eventsOf[at].length, 'event')),
  );
  if (recorded.raw.slices) {
    block.append(make('p', 'hint', 'Only events that were kept when binning are listed.'));
  }
  addEvents(block, recorded, recorded.eventsOf[at], 0);
  return block;
}

function addEvents(block, recorded, events, from) {
  for (const event of events.slice(from, from + eventsAtOnce)) {
    block.append(eventBlock(recorded, event));
  }
  const left = events.length - from - eventsAtOnce;
  if (left > 0) {
    const more = make('button', '', `Show more: ${left.toLocaleString('en')} further events`);
    more.type = 'button';
    more.addEventListener('click', () => {
      more.remove();
      addEvents(block, recorded, events, from + eventsAtOnce);
    });
    block.append(more);
  }
}

function eventBlock(recorded, event) {
  const { shape, values: columns } = event.batch;
  const title = make(
    'h4',
    '',
    show(make('span'), shape.name),
    make('time', 'hint', ` ${recorded.clock.local(event.at)}`),
  );
  const list = make('dl', 'parameters');
  shape.parameters.forEach(([name, kind], place) => {
    const term = show(make('dt'), name);
    term.title = kind;
    list.append(
      make(
        'div',
        '',
        term,
        show(make('dd', kind === 'text' ? 'text' : ''), valueText(columns[place][event.row], kind)),
      ),
    );
  });
  return make('section', 'event', title, list);
}
