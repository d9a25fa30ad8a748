// Where a run stopped that did not finish, and the last that happened there.

import { button, linkTo, make } from './element.js';
import { eventBlock } from './event-block.js';
import { count } from './text.js';

const mostEvents = 3;
const mostOthers = 8;

/** Of what did not finish and has nothing unfinished below it, that which gave the last sign; the deepest of these. */
export function whereItStopped(recorded) {
  const { unfinished, depth } = recorded;
  const hasOpen = new Set(unfinished.map((at) => recorded.parent[at]));
  const innermost = unfinished.filter((at) => !hasOpen.has(at));
  const signs = new Map(innermost.map((at) => [at, recorded.lastSignOf(at)]));
  return innermost.reduce(
    (last, at) =>
      last === null || (signs.get(at) - signs.get(last) || depth[at] - depth[last] || at - last) > 0 ? at : last,
    null,
  );
}

/** The last events at a place or below it; where there are none, those of what it belongs to. The newest first. */
export function lastEventsAt(recorded, at) {
  for (const place of recorded.pathTo(at).reverse()) {
    const events = recorded.allBelow(place).flatMap((below) => recorded.eventsOf[below].slice(-mostEvents));
    if (events.length > 0) {
      return events.sort((a, b) => b.number - a.number).slice(0, mostEvents);
    }
  }
  return [];
}

/** Shows it before everything else; `filterUnfinished` shows all that did not finish. */
export function showCause(recorded, filterUnfinished) {
  const alarm = document.getElementById('alarm');
  alarm.hidden = recorded.unfinished.length === 0;
  alarm.replaceChildren();
  alarm.setAttribute('role', 'region');
  if (alarm.hidden) {
    return;
  }
  const at = whereItStopped(recorded);
  const path = recorded.pathTo(at);
  const title = make('h2', '', make('strong', '', 'Did not finish'));
  title.id = 'alarm-title';
  alarm.setAttribute('aria-labelledby', title.id);
  alarm.append(
    title,
    make('p', 'path', ...path.flatMap((step, level) => [...(level > 0 ? [' › '] : []), linkTo(recorded, step)])),
    ...eventsAt(recorded, at),
    ...othersBeside(recorded, path, filterUnfinished),
  );
}

function eventsAt(recorded, at) {
  const events = lastEventsAt(recorded, at);
  const blocks = events.map((event) => {
    const block = eventBlock(recorded, event, (time) => recorded.clock.day(time));
    if (event.execution !== at) {
      block.firstChild.append(' of ', linkTo(recorded, event.execution));
    }
    return block;
  });
  return [make('div', 'evidence', make('h3', '', 'Last events, the newest first'), ...blocks)];
}

/** What else did not finish. */
function othersBeside(recorded, path, filterUnfinished) {
  const others = recorded.unfinished.filter((at) => !path.includes(at)).reverse();
  if (others.length === 0) {
    return [];
  }
  const links = others.slice(0, mostOthers).flatMap((at) => [linkTo(recorded, at), ', ']);
  const rest =
    others.length > mostOthers ? [' and ', button('link', `${others.length - mostOthers} more`, filterUnfinished)] : [];
  return [make('p', 'others', `${count(others.length, 'other')} did not finish: `, ...links.slice(0, -1), ...rest)];
}
