// What the plot shows first: of the parameters with the most points, within a tenth, the one that is spread most. Truth
// values come last.

import { lastOf } from './lists.js';
import { numberOf } from './values.js';

const mostSampled = 1000;

/** From 0 for what never changes to 1: the span of the middle nine tenths, beside the median. */
function spreadOf(numbers) {
  const step = Math.ceil(numbers.length / mostSampled);
  const sorted = numbers.filter((unused, at) => at % step === 0).sort((a, b) => a - b);
  const quantile = (share) => sorted[Math.round(share * (sorted.length - 1))];
  const span = quantile(0.95) - quantile(0.05);
  return span === 0 ? 0 : span / (Math.abs(quantile(0.5)) + span);
}

export function firstQuantity({ kinds }, quantities) {
  const candidates = quantities
    .filter(({ boolean }) => !boolean || quantities.every((one) => one.boolean))
    .map((quantity) => {
      const numbers = quantity.columns.flatMap((column) =>
        Array.from(column, numberOf).filter((one) => !Number.isNaN(one)),
      );
      const { recorded, events } = kinds.find(({ name }) => name === quantity.event); // of a binned one few are here
      return { quantity, points: (numbers.length * recorded) / events.length, spread: spreadOf(numbers) };
    });
  const most = candidates.reduce((sum, { points }) => Math.max(sum, points), 0);
  return candidates
    .filter(({ points }) => points >= 0.9 * most)
    .reduce((one, other) => (other.spread > one.spread ? other : one)).quantity;
}

/** Over what: time, or the times that a parameter states where the events were recorded much faster, from a file. */
export function firstOver(recorded, { event }) {
  const { events } = recorded.kinds.find(({ name }) => name === event);
  const [first, last] = [events[0], lastOf(events)];
  const stated = (quantity) => recorded.coordinateOf(last, quantity) - recorded.coordinateOf(first, quantity);
  const isLonger = (quantity) =>
    quantity.timely && quantity.event === event && stated(quantity) > 10 * (last.at - first.at);
  return recorded.quantities.find(isLonger) ?? null;
}
