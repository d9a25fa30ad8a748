// Where a reader with the keyboard is in the timeline: on a bar, with a frame around it and its text read out.

import { make } from './element.js';
import { lastIndexWhere } from './lists.js';
import { eventName } from './text.js';

export class Cursor {
  constructor(timeline, said, open) {
    Object.assign(this, { timeline, said, open, lane: 0, item: null, left: 0 });
    this.frame = timeline.element.appendChild(make('div', 'cursor'));
    this.frame.hidden = true;
    Object.assign(timeline.chart.keys, {
      ArrowLeft: () => this.step(-1),
      ArrowRight: () => this.step(1),
      ArrowUp: () => this.change(-1),
      ArrowDown: () => this.change(1),
      Enter: () => this.item && this.enter(),
      Escape: () => this.leave(),
    });
  }

  /** Goes to an execution, if it is not too close to others. */
  goTo(execution) {
    this.timeline.lanes.forEach((unused, lane) => {
      const items = this.itemsOf(lane);
      const item = items.find((one) => one.type === 'execution' && one.execution === execution);
      if (item) {
        this.lane = lane;
        this.put(item, items);
      }
    });
  }

  /** What is shown of a lane, in the order of time. */
  itemsOf(lane) {
    const { view, lanes } = this.timeline;
    const items = view.of(lanes[lane]).flatMap((item) => item.marks ?? [item]);
    return items
      .filter(({ from, to }) => to >= view.from && from <= view.to)
      .sort((one, other) => one.from - other.from || one.top - other.top);
  }

  /** The place of the same item as before, or of the last that begins before it ended. */
  placeIn(items) {
    const { execution, event, sign, from } = this.item;
    const isSame = (one) => one.execution === execution && one.event?.number === event?.number && one.sign === sign;
    const same = this.item.type === 'bar' ? -1 : items.findIndex((one) => one.type !== 'bar' && isSame(one));
    return same >= 0 ? same : lastIndexWhere(items, (one) => one.from <= from);
  }

  step(distance) {
    const items = this.itemsOf(this.lane);
    const next = this.item ? items[this.placeIn(items) + distance] : items[0];
    if (next) {
      this.put(next, items);
    } else if (this.item) {
      const { time } = this.timeline;
      const { from } = time;
      time.pan(0.5 * distance);
      this.left = time.from === from ? 0 : distance; // to be done when it is drawn
      this.say(`no more of ${this.laneName()} in the time shown`);
    }
  }

  /** The place of what begins in the time of the item, or else of the last that begins before it. */
  placeBeside(items) {
    const { from, to } = this.item ?? { from: -Infinity, to: Infinity };
    const within = items.findIndex((one) => one.from >= from && one.from <= to);
    return within >= 0
      ? within
      : Math.max(
          0,
          lastIndexWhere(items, (one) => one.from <= from),
        );
  }

  /** Goes to another lane, to what is there at the same time. */
  change(distance) {
    for (let lane = this.lane + (this.item ? distance : 0); this.timeline.lanes[lane]; lane += distance) {
      const items = this.itemsOf(lane);
      if (items.length > 0) {
        this.lane = lane;
        this.put(items[this.placeBeside(items)], items);
        return;
      }
    }
  }

  /** Opens an execution; what is too close to be told apart is zoomed in on. */
  enter() {
    const { type, from, to, execution } = this.item;
    if (type === 'bar') {
      this.timeline.time.show(from - (to - from), to + (to - from));
    } else if (execution !== undefined) {
      this.open(execution);
    }
  }

  leave() {
    this.item = null;
    this.frame.hidden = true;
    this.say('');
  }

  /** More was recorded: what it is on can be longer now, and its lane at another place. */
  take(lanesBefore) {
    const { view, lanes } = this.timeline;
    const { label, subLanes } = lanesBefore[this.lane];
    if (!subLanes) {
      this.lane = lanes.findIndex((one) => !one.subLanes && one.label === label); // levels come before it
    }
    if (this.lane < 0) {
      this.lane = 0;
      this.item = null;
    } else if (this.item && this.item.to >= view.from && this.item.from <= view.to) {
      const items = this.itemsOf(this.lane);
      this.item = items[this.placeIn(items)] ?? null;
    }
    this.show();
  }

  /** Another time is drawn. */
  follow() {
    const distance = this.left;
    this.left = 0;
    if (this.item && distance) {
      const items = this.itemsOf(this.lane);
      const place = this.placeIn(items) + distance;
      if (items[place]) {
        this.put(items[place], items);
        return;
      }
    }
    this.show();
  }

  put(item, items) {
    this.item = item;
    this.show();
    const words = this.timeline.wordsFor(item, Infinity).replaceAll('\u2060', '').split('\n');
    this.say(`${this.laneName()}, ${items.indexOf(item) + 1} of ${items.length}: ${words.join('; ')}`);
  }

  laneName() {
    return eventName(this.timeline.lanes[this.lane].label);
  }

  show() {
    const { view } = this.timeline;
    const isShown = this.item && this.item.to >= view.from && this.item.from <= view.to;
    this.frame.hidden = !isShown;
    if (isShown) {
      const { x, y, width, height } = this.timeline.placeOf(this.item);
      Object.assign(this.frame.style, { left: `${x}px`, top: `${y}px`, width: `${width}px`, height: `${height}px` });
    }
  }

  say(text) {
    this.said.textContent = text;
  }
}
