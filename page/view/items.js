// What the lanes of the timeline show of a time: executions, events and signs, and in place of those that are closer
// than two pixels bars, the higher the more there are. The look of an item is the name of its colour.

import { louder, statusVariable } from './colours.js';
import { placesIn } from './points.js';
import { lowerBound } from './search.js';

export const closest = 2;
const mostTogether = 32; // a browser fills larger shapes slowly

/** Items for marks of a lane in the order of time, which are drawn alike: several of one look become one shape. */
function marks(list) {
  const open = new Map();
  const items = [];
  for (const mark of list) {
    const { look, from, top } = mark;
    if (!(open.get(look)?.length < mostTogether)) {
      open.set(look, []);
      items.push({ type: 'marks', marks: open.get(look), look, from, top });
    }
    open.get(look).push(mark);
  }
  return items;
}

/** The items of lanes in a time on so many pixels. */
export class Items {
  constructor(recorded, { from, to }, width) {
    Object.assign(this, { recorded, from, to, perPixel: (to - from) / width });
  }

  of(lane) {
    const place = { top: lane.top, height: lane.height };
    if (lane.subLanes) {
      return lane.subLanes.flatMap((subLane, index) =>
        this.executions(subLane, { top: lane.top + index * lane.subHeight, height: lane.subHeight - 2 }),
      );
    }
    if (lane.signs) {
      return this.signs(lane.signs, place);
    }
    return lane.kind.slices ? this.slices(lane.kind.slices, place) : this.events(lane.kind.events, place);
  }

  pixel(at) {
    return (at - this.from) / this.perPixel;
  }

  bin(at) {
    return Math.floor(this.pixel(at) / closest);
  }

  startOf(bin) {
    return this.from + bin * closest * this.perPixel;
  }

  executions({ executions, reach }, place) {
    const { recorded } = this;
    const items = [];
    const narrow = [];
    const covered = new Set(); // by one that looks the same
    for (let index = lowerBound(reach, this.from); index < executions.length; ++index) {
      const at = executions[index];
      const [from, to] = [recorded.started[at], recorded.endOf(at)];
      if (from > this.to) {
        break;
      }
      const same = [Math.round(this.pixel(from)), Math.round(this.pixel(to)), recorded.status[at]].join();
      if (this.pixel(to) - this.pixel(from) < closest) {
        narrow.push(at);
      } else if (to >= this.from && !covered.has(same)) {
        covered.add(same);
        items.push(this.execution(at, place));
      }
    }
    const things = {
      timeOf: (at) => recorded.started[at],
      lookOf: (at) => statusVariable(recorded.status[at]),
      itemOf: (at) => this.execution(at, place),
    };
    const { alone, bars } = this.joined(narrow, things, place);
    return [...items, ...alone, ...marks(bars)];
  }

  execution(at, place) {
    const { recorded } = this;
    const look = statusVariable(recorded.status[at]);
    return { ...place, type: 'execution', look, execution: at, from: recorded.started[at], to: recorded.endOf(at) };
  }

  events(events, place) {
    return this.moments(
      events,
      place,
      () => 'event',
      (event) => ({ type: 'event', event }),
    );
  }

  signs(signs, place) {
    return this.moments(
      signs,
      place,
      ({ look }) => look,
      (sign) => ({ type: 'sign', sign }),
    );
  }

  /** Items for what has a time but no length, in the order of time. */
  moments(list, place, lookOf, itemOf) {
    const things = {
      timeOf: ({ at }) => at,
      lookOf,
      itemOf: (one) => {
        const { at, execution } = one;
        return { ...place, ...itemOf(one), look: lookOf(one), execution, from: at, to: at };
      },
    };
    const { alone, bars } = this.joined(list, things, place, placesIn(this, list));
    return marks([...alone, ...bars].sort((one, other) => one.from - other.from));
  }

  /** Items for what is alone in a list in the order of time, and bars for what is closer to another. */
  joined(list, { timeOf, lookOf, itemOf }, place, [first, behind] = [0, list.length]) {
    const alone = [];
    const bars = [];
    const isFar = (one, other) =>
      one < first || other === behind || this.pixel(timeOf(list[other])) - this.pixel(timeOf(list[one])) >= closest;
    for (let at = first, next; at < behind; at = next) {
      const bin = this.bin(timeOf(list[at]));
      next = Math.min(behind, Math.max(at + 1, lowerBound(list, this.startOf(bin + 1), timeOf, at)));
      if (next - at === 1 && isFar(at - 1, at) && isFar(at, next)) {
        alone.push(itemOf(list[at]));
      } else {
        let look = lookOf(list[at]);
        for (let one = at + 1; one < next; ++one) {
          look = louder(look, lookOf(list[one]));
        }
        bars.push([this.startOf(bin), this.startOf(bin + 1), next - at, look]);
      }
    }
    return { alone, bars: this.bars(bars, place) };
  }

  slices({ counts }, place) {
    const { from, to } = this.recorded.raw.slices;
    const edge = (at) => from + ((to - from) * at) / counts.length;
    const placeOf = (time) =>
      Math.min(Math.max(Math.floor(((time - from) / (to - from)) * counts.length), 0), counts.length);
    const isWide = this.pixel(edge(1)) - this.pixel(edge(0)) >= closest;
    const bars = [];
    let last = null;
    for (let at = placeOf(this.from); at < placeOf(this.to) + 1; ++at) {
      const bin = isWide ? at : this.bin(edge(at));
      if (counts[at] > 0 && bin === last) {
        bars[bars.length - 1][1] = edge(at + 1);
        bars[bars.length - 1][2] += counts[at];
      } else if (counts[at] > 0) {
        bars.push([edge(at), edge(at + 1), counts[at], 'event']);
        last = bin;
      }
    }
    return marks(this.bars(bars, place));
  }

  bars(list, place) {
    const highest = list.reduce((high, [, , total]) => Math.max(high, total), 1);
    return list.map(([from, to, total, look]) => {
      const height = place.height * (0.25 + 0.75 * Math.sqrt(total / highest));
      return { type: 'bar', look, top: place.top + place.height - height, height, from, to, total };
    });
  }
}
