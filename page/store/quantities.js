// The parameters of which a plot can show the numbers of two runs.

import { eventName, readable } from '../view/text.js';
import { groupsOf, isAlwaysDifferent } from './differences.js';

/** What tells a quantity from others, as parameters of api/run/numbers. */
export const partsOf = ({ event, parameter, parameter_n: n }) => ({ event, parameter, parameter_n: n > 1 ? n : '' });
export const keyOf = (quantity) => JSON.stringify(Object.values(partsOf(quantity)).map(String));

export const titleOf = ({ event, parameter, parameter_n: n }) =>
  `${eventName(event)} ${readable(parameter)}${n > 1 ? ` (${n})` : ''}`;

const readsAsNumber = (value) =>
  ['number', 'boolean'].includes(typeof value) ||
  (typeof value === 'string' && /^\s*[-+.\d]+(e[-+]?\d+)?\s*$/i.test(value));
const isNumber = ({ first }) => first.some(({ value, against }) => [value, against].some(readsAsNumber));

/** Those that differ: first what says most of where the runs differ, last what differs nearly everywhere. */
export function differing(found) {
  return groupsOf(found)
    .filter((group) => group.kind === 'parameter' && isNumber(group))
    .sort((one, other) => isAlwaysDifferent(one) - isAlwaysDifferent(other) || other.differ - one.differ);
}

/**
 * Those that are offered.
 * @param found as api/compare answers it
 * @param parameters those of the first run, as api/parameters answers them
 */
export function quantitiesOf(found, parameters) {
  const others = parameters
    .filter(({ kinds }) => kinds.some((kind) => kind !== 'text'))
    .flatMap(({ name, events }) => events.map((event) => ({ event, parameter: name, parameter_n: 1 })));
  const first = differing(found);
  const known = new Set(first.map(keyOf));
  return [...first, ...others.filter((one) => !known.has(keyOf(one)))];
}
