// The points of a plot, and what is drawn of them: as much as a reader can tell apart, chosen anew from all of them for
// each time shown.

import { lowerBound } from './search.js';

/** So many points are all drawn. */
export const fewPoints = 2000;

/** Of more, one is drawn in each square of so many pixels, and in each column of squares the lowest and the highest. */
export const side = 2;

/** Places of the lowest and the highest of the numbers from one place to another. */
function endsOf(numbers, [begin, end]) {
  let [low, high] = [begin, begin];
  for (let at = begin; at < end; ++at) {
    low = numbers[at] < numbers[low] ? at : low;
    high = numbers[at] > numbers[high] ? at : high;
  }
  return begin < end ? [low, high] : [];
}

/** Points of a run that look alike, in the order of their time. */
export class Points {
  constructor(run, look) {
    Object.assign(this, { run, look, events: [], x: [], y: [] });
  }

  add(event, x, y) {
    this.events.push(event);
    this.x.push(x);
    this.y.push(y);
  }
}

/** Places of the first of the events in a time, and of the first behind it. */
export function placesIn({ from, to }, events) {
  const first = (time) => lowerBound(events, time, (event) => event.at);
  return [first(from), first(Math.floor(to) + 1)];
}

/** From the lowest to the highest of a coordinate of groups of points, each from one place to another. */
export function rangeOf(groups, axis, spans) {
  const ends = groups.flatMap((group, at) => endsOf(group[axis], spans[at]).map((place) => group[axis][place]));
  return [Math.min(...ends), Math.max(...ends)];
}

/** Places of the points that are drawn of those from one place to another, in a frame of numbers and pixels. */
export function drawnOf(points, [begin, end], frame) {
  const isDrawn = new Uint8Array(end - begin);
  if (isDrawn.length <= fewPoints) {
    isDrawn.fill(1);
  } else {
    for (const at of thinned(points, [begin, end], frame)) {
      isDrawn[at - begin] = 1;
    }
  }
  const places = [];
  for (let at = begin; at < end; ++at) {
    if (isDrawn[at - begin]) {
      places.push(at);
    }
  }
  return places;
}

function thinned({ x, y }, [begin, end], frame) {
  const columns = Math.ceil(frame.width / side);
  const rows = Math.ceil(frame.height / side);
  const [lowest, highest, squares] = [0, columns, 2 * columns]; // where they begin
  const chosen = new Int32Array(columns * (2 + rows)).fill(-1);
  const placeOf = (number, [low, high], count) =>
    high > low ? Math.min(Math.floor(((number - low) / (high - low)) * count), count - 1) : 0;
  for (let at = begin; at < end; ++at) {
    const column = placeOf(x[at], frame.x, columns);
    const square = squares + column * rows + placeOf(y[at], frame.y, rows);
    chosen[square] = at;
    if (!(y[chosen[lowest + column]] <= y[at])) {
      chosen[lowest + column] = at;
    }
    if (!(y[chosen[highest + column]] >= y[at])) {
      chosen[highest + column] = at;
    }
  }
  return chosen.filter((at) => at >= 0);
}
