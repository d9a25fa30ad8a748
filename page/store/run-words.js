// Runs in words, as all views say them.

import { make, showName } from '../view/element.js';
import { firstOf, readable } from '../view/text.js';
import { briefText } from '../view/values.js';
import { addressOf } from './api.js';
import { moment } from './moment.js';

const mostInLine = 60; // characters of a value

const names = {
  running: 'running',
  stopped: 'STOPPED',
  unknown: 'did not finish',
  unfinished: 'did not finish',
  finished: 'finished',
  idle: 'idle',
};

/** A state of a run or an instrument in words. */
export const stateName = (state) => names[state] ?? readable(String(state));

/** A state as a badge. */
export const stateBadge = (state, words = stateName(state)) =>
  make('strong', `state ${state in names ? state : 'unknown'}`, words);

/** A recorded text as one line, which is cut where it is long. */
export const name = (stored, without = '–') => showName(make('span'), stored || without);
export const plainName = (stored) => readable(firstOf(stored, { characters: mostInLine, lines: 1 }));

/** A link to the page of a run. */
export function linkToRun(store, guid, ...children) {
  const link = make('a', '', ...children);
  link.href = addressOf('run', { store, run: guid });
  return link;
}

/** Where in a run something happens: its node, and what is open below it; of many steps the first and the last. */
export function pathOf({ node, path }) {
  const steps = path.length > 0 ? path : [{ node }];
  const some = steps.length > 5 ? [steps[0], null, ...steps.slice(-3)] : steps;
  return some.flatMap((step, at) => [...(at > 0 ? [' › '] : []), step ? name(step.node || step.activity) : '…']);
}

/** The last event of a run: its name, its time, and the first values. */
export function lastEvent({ last_event: event }, mostValues = 4) {
  if (!event) {
    return [make('span', 'hint', 'no event yet')];
  }
  const values = event.parameters.slice(0, mostValues).flatMap((one) => {
    const value = typeof one.value === 'string' ? one.value : briefText(one.value, one.kind);
    return [' ', make('span', 'value', name(one.name), '=', name(value, '""'))];
  });
  const more = event.parameters.length > mostValues ? [' …'] : [];
  return [make('strong', '', name(event.name, '(no name)')), ' ', moment(event.at), ...values, ...more];
}
