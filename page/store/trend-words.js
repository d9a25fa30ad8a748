// What is said of a trend, beside its plot.

import { count } from '../view/text.js';
import { momentText } from './moment.js';
import { plainName } from './run-words.js';

const units = [
  ['day', 864e8],
  ['hour', 36e8],
  ['minute', 6e7],
  ['second', 1e6],
];

/** A length of time in words. */
export function lengthInWords(microseconds) {
  const [name, unit] = units.find(([, one]) => microseconds % one === 0) ?? ['millisecond', 1000];
  return count(microseconds / unit, name);
}

/** All groups that are drawn, with their titles. */
export function groupsOf({ groups, others, by, parameter }) {
  const titleOf = ({ name }) => (by ? plainName(name) || '–' : plainName(parameter));
  const titled = groups.map((group) => ({ ...group, title: titleOf(group) }));
  return others ? [...titled, { ...others.group, title: `others (${others.groups})` }] : titled;
}

/** Sentences about a trend. */
export function wordsOf(trend) {
  const bins = groupsOf(trend).flatMap((group) => group.bins);
  if (trend.count === 0) {
    const nothing = trend.not_counted > 0 ? 'There are no finite numbers' : 'There are no numbers';
    return [`${nothing} of this parameter like that.`, ...notCounted(trend), ...leftOut(trend)];
  }
  const froms = bins.map(({ from }) => from).sort();
  const last = bins.map(({ to }) => to).sort()[bins.length - 1];
  const percent = Math.ceil(trend.quantile_error * 1000) / 10;
  return [
    `${count(trend.count, 'number')} from ${momentText(froms[0])} to ${momentText(last)}, ` +
      `in parts of ${lengthInWords(trend.bin_microseconds)}.`,
    percent > 0
      ? `Minimum, maximum and count are exact; a quantile is off by ${percent} % of the numbers at most.`
      : 'All numbers are exact.',
    ...notCounted(trend),
    ...(trend.others ? [`The ${trend.others.groups} smallest groups are drawn together as others.`] : []),
    ...leftOut(trend),
  ];
}

const notCounted = ({ not_counted: others }) =>
  others > 0 ? [`Not counted: ${count(others, 'value')} that ${others === 1 ? 'is' : 'are'} no finite number.`] : [];

const leftOut = ({ left_out: stores }) =>
  stores.map(({ store, why }) => `Store ${store} is left out: ${plainName(why)}.`);
