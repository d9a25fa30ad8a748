// What the lanes of the timeline show of a time: executions and events, and in place of those that are closer than two
// pixels bars, the higher the more there are.

import { placesIn } from './points.js';
import { lowerBound } from './search.js';

export const closest = 2;
const mostTogether = 32; // a browser fills larger shapes slowly

/** Items for marks of a lane, which are drawn alike, in the order of time: several become one shape. */
const marks = (list) =>
  Array.from({ length: Math.ceil(list.length / mostTogether) }, (unused, at) => {
    const together = list.slice(at * mostTogether, (at + 1) * mostTogether);
    return { type: 'marks', marks: together, from: together[0].from, top: together[0].top };
  });

/** The items of lanes in a time on so many pixels. */
export class Items {
  constructor(recorded, { from, to }, width) {
    Object.assign(this, { recorded, from, to, perPixel: (to - from) / width });
  }

  of(lane) {
    if (!lane.kind) {
      return lane.subLanes.flatMap((subLane, index) =>
        this.executions(subLane, { top: lane.top + index * lane.subHeight, height: lane.subHeight - 2 }),
      );
    }
    const place = { top: lane.top, height: lane.height };
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
      const look = [Math.round(this.pixel(from)), Math.round(this.pixel(to)), recorded.status[at]].join();
      if (this.pixel(to) - this.pixel(from) < closest) {
        narrow.push(at);
      } else if (to >= this.from && !covered.has(look)) {
        covered.add(look);
        items.push({ ...place, type: 'execution', execution: at, from, to });
      }
    }
    const startOf = (at) => recorded.started[at];
    const itemOf = (at) => ({ ...place, type: 'execution', execution: at, from: startOf(at), to: recorded.endOf(at) });
    const { alone, bars } = this.joined(narrow, startOf, place, itemOf);
    return [...items, ...alone, ...marks(bars)];
  }

  events(events, place) {
    const itemOf = (event) => ({
      ...place,
      type: 'event',
      event,
      execution: event.execution,
      from: event.at,
      to: event.at,
    });
    const { alone, bars } = this.joined(events, (event) => event.at, place, itemOf, placesIn(this, events));
    return marks([...alone, ...bars].sort((one, other) => one.from - other.from));
  }

  /** Items for what is alone in a list in the order of time, and bars for what is closer to another. */
  joined(list, timeOf, place, itemOf, [first, behind] = [0, list.length]) {
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
        bars.push([this.startOf(bin), this.startOf(bin + 1), next - at]);
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
        bars.push([edge(at), edge(at + 1), counts[at]]);
        last = bin;
      }
    }
    return marks(this.bars(bars, place));
  }

  bars(list, place) {
    const highest = list.reduce((high, [, , total]) => Math.max(high, total), 1);
    return list.map(([from, to, total]) => {
      const height = place.height * (0.25 + 0.75 * Math.sqrt(total / highest));
      return { type: 'bar', top: place.top + place.height - height, height, from, to, total };
    });
  }
}
