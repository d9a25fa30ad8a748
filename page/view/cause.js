// Where a run stopped that did not finish, and the last that happened there.

import { button, linkTo, make } from './element.js';
import { eventBlock } from './event-block.js';
import { graveLines } from './log-lines.js';
import { lineOf } from './log-section.js';
import { renew } from './renew.js';
import { stateName } from './states.js';
import { count } from './text.js';

const mostEvents = 3;
const mostLines = 6;
const before = 600e6; // microseconds before the last sign from which lines of the log are shown
const mostOthers = 8;

/**
 * Of what did not finish and has nothing unfinished below it, that which gave the last sign; the deepest of these.
 * Where one host of several has stopped, it is there.
 */
export function whereItStopped(recorded) {
  const { unfinished, depth } = recorded;
  const hasOpen = new Set(unfinished.map((at) => recorded.parent[at]));
  const isStopped = (at) => recorded.states.of(recorded.number[at]) === 'stopped';
  const open = unfinished.filter((at) => !hasOpen.has(at));
  const innermost = open.some(isStopped) ? open.filter(isStopped) : open;
  const signs = new Map(innermost.map((at) => [at, recorded.lastSignOf(at)]));
  return innermost.reduce(
    (last, at) =>
      last === null || (signs.get(at) - signs.get(last) || depth[at] - depth[last] || at - last) > 0 ? at : last,
    null,
  );
}

/** The last events there, below it, and of what it belongs to; the newest first. */
function lastEventsAt(recorded, at) {
  const places = new Set([...recorded.pathTo(at), ...recorded.allBelow(at)]);
  const events = [...places].flatMap((place) => recorded.eventsOf[place].slice(-mostEvents));
  return events.sort((a, b) => b.number - a.number).slice(0, mostEvents);
}

/** Shows it before everything else; `filterUnfinished` shows all that did not finish. */
export function showCause(recorded, filterUnfinished) {
  const alarm = document.getElementById('alarm');
  alarm.hidden = recorded.unfinished.length === 0;
  alarm.setAttribute('role', 'region');
  if (alarm.hidden) {
    alarm.replaceChildren();
    return;
  }
  const at = whereItStopped(recorded);
  const path = recorded.pathTo(at);
  const number = recorded.number[at];
  const state = recorded.states.of(number);
  alarm.classList.toggle('calm', state === 'running');
  const title = make('h2', '', make('strong', '', stateName(state)));
  title.id = 'alarm-title';
  alarm.setAttribute('aria-labelledby', title.id);
  const events = lastEventsAt(recorded, at);
  const [newest, ...earlier] = events.map((event) => causeEvent(recorded, event, at));
  renew(alarm, [
    title,
    make('p', 'since', recorded.states.wordsFor(number, recorded.clock)),
    make('p', 'path', ...path.flatMap((step, level) => [...(level > 0 ? [' › '] : []), linkTo(recorded, step)])),
    make(
      'div',
      'evidence',
      make('div', '', make('h3', '', newest ? 'The last event' : 'No event'), ...(newest ? [newest] : [])),
      ...linesAround(recorded, recorded.lastSignOf(at)),
    ),
    ...(earlier.length > 0 ? [make('h3', '', 'Before it')] : []),
    ...earlier,
    ...othersBeside(recorded, path, filterUnfinished),
  ]);
}

function causeEvent(recorded, event, at) {
  const block = eventBlock(recorded, event, true);
  if (event.execution !== at) {
    block.firstChild.append(' in ', linkTo(recorded, event.execution));
  }
  return block;
}

/** Warnings and errors of the log around a time. */
function linesAround(recorded, time) {
  if (!recorded.log) {
    return [];
  }
  const lines = graveLines(recorded, time - before, Infinity)
    .slice(-mostLines)
    .reverse();
  const list = make('ol', 'lines', ...lines.map((line) => lineOf(recorded, line)));
  const title = lines.length > 0 ? 'The log around that time' : 'The log has no warning or error around that time';
  return [make('div', '', make('h3', '', title), list)];
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
