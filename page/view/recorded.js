// What was recorded, from the data of the page: page/FORM.md.

import { Clock } from './clock.js';
import { form, texts, values, wholeColumn, wholes } from './form.js';
import { lastOf } from './lists.js';
import { lanesOfLog, readLog } from './log-lines.js';
import { States } from './states.js';
import { running } from './statuses.js';
import { statedTime } from './stated-time.js';
import { readable } from './text.js';
import { numberOf } from './values.js';

/** What tells a quantity from others, in every run that has it. */
export const keyOf = ({ event, name, occurrence }) => JSON.stringify([event, name, occurrence]);

const enoughTexts = 100; // to see whether all are times

/** A parameter of a kind of event: the occurrence-th of its name there. */
class Quantity {
  constructor(event, name, occurrence) {
    Object.assign(this, { event, name, occurrence, places: new Map(), columns: [] });
    Object.assign(this, { numeric: false, boolean: true, timely: null });
  }

  /** It stands at this place of a shape. */
  add(shape, place, kind) {
    this.places.set(shape, place);
    this.boolean &&= kind === 'bool';
    shape.quantities[place] = this;
  }

  /** It has these values in a batch. */
  take(column, kind) {
    this.columns.push(column);
    this.numeric ||= column.some((value) => !Number.isNaN(numberOf(value)));
    const some = kind === 'text' ? column.slice(0, enoughTexts).filter((text) => text !== null) : [];
    if (some.length > 0) {
      this.timely = this.timely !== false && some.every((text) => !Number.isNaN(statedTime(text)));
    }
  }

  get label() {
    return readable(this.name) + (this.occurrence > 1 ? ` (${this.occurrence})` : '');
  }
}

export class Recorded {
  constructor(raw) {
    if (raw.form !== form) {
      throw new Error(`the data of the page has form ${raw.form}; expected ${form}`);
    }
    this.raw = raw;
    this.clock = new Clock(raw.start);
    this.readExecutions();
    this.readStatuses();
    this.readEvents();
    this.readQuantities();
    this.measure();
    // What else the timeline has lanes for: { label, signs }. A sign is { at, look, words, execution }: its time, the
    // name of its colour, a list of stored texts, and the execution that it opens, if any; in the order of time.
    this.states = new States(raw, this.last);
    this.log = readLog(raw);
    this.signs = lanesOfLog(this);
    this.against = null; // the comparison with another run, which main.js adds
  }

  readExecutions() {
    const batches = this.raw.executions;
    const named = (list) => new Map(list.map((item) => [item.number, item]));
    this.sessions = named(this.raw.sessions);
    this.versions = named(this.raw.versions);
    this.number = wholeColumn(batches, 'number', wholes);
    this.count = this.number.length;
    this.indexOf = new Map(this.number.map((number, index) => [number, index]));
    this.parent = wholeColumn(batches, 'parent', wholes).map((number) => this.indexOf.get(number) ?? -1);
    this.session = wholeColumn(batches, 'session', wholes);
    this.version = wholeColumn(batches, 'version', wholes);
    this.started = wholeColumn(batches, 'started', wholes);
    this.node = wholeColumn(batches, 'node', texts);
    this.description = wholeColumn(batches, 'description', texts);
    this.depth = new Array(this.count).fill(0);
    this.children = Array.from({ length: this.count }, () => []);
    for (let at = 0; at < this.count; ++at) {
      // a parent is recorded before what belongs to it
      if (this.parent[at] >= 0) {
        this.children[this.parent[at]].push(at);
        this.depth[at] = this.depth[this.parent[at]] + 1;
      }
    }
    this.root = this.parent.indexOf(-1);
  }

  readStatuses() {
    this.history = this.raw.executions.flatMap((batch) => {
      const times = batch.status_at.values();
      return texts(batch.statuses).map((codes) =>
        (codes === '' ? [] : codes.split(',')).map((code) => {
          const after = times.next().value;
          return { code: Number(code), at: after === null ? NaN : after };
        }),
      );
    });
    this.history.forEach((history, at) => history.forEach((status) => (status.at += this.started[at])));
    this.status = this.history.map((history) => lastOf(history)?.code ?? null);
    this.ended = this.history.map((history) =>
      lastOf(history)?.code === running ? Infinity : (lastOf(history)?.at ?? NaN),
    );
    this.unfinished = this.status.flatMap((code, at) => (code === running ? [at] : []));
  }

  readEvents() {
    this.shapes = this.raw.shapes.map(([name, ...fields]) => ({
      name,
      events: [],
      quantities: [],
      parameters: Array.from({ length: fields.length / 2 }, (unused, at) => [fields[2 * at], fields[2 * at + 1]]),
    }));
    this.batches = this.raw.events.map((batch) => ({
      shape: this.shapes[batch.shape],
      number: wholes(batch.number),
      execution: wholes(batch.execution).map((number) => this.indexOf.get(number)),
      at: wholes(batch.at),
      values: batch.values.map((column, at) => values(column, this.shapes[batch.shape].parameters[at][1])),
    }));
    const events = this.batches.flatMap((batch) =>
      batch.number.map((number, row) => ({ number, batch, row, execution: batch.execution[row], at: batch.at[row] })),
    );
    this.events = events.sort((a, b) => a.number - b.number);
    this.eventsOf = Array.from({ length: this.count }, () => []);
    const kinds = new Map();
    for (const event of this.events) {
      this.eventsOf[event.execution].push(event);
      event.batch.shape.events.push(event);
      const { name } = event.batch.shape;
      if (!kinds.has(name)) {
        kinds.set(name, []);
      }
      kinds.get(name).push(event);
    }
    const slices = new Map((this.raw.slices?.kinds ?? []).map((kind) => [kind.name, kind]));
    this.kinds = [...kinds].map(([name, list]) => ({
      name,
      slices: slices.get(name) ?? null,
      recorded: slices.get(name)?.recorded ?? list.length,
      events: list.filter((event) => !Number.isNaN(event.at)).sort((a, b) => a.at - b.at || a.number - b.number),
    }));
  }

  /** Parameters of one name in one event are told apart by which one of that name it is. */
  readQuantities() {
    const found = new Map();
    for (const shape of this.shapes) {
      const seen = new Map();
      shape.parameters.forEach(([name, kind], place) => {
        const occurrence = (seen.get(name) ?? 0) + 1;
        seen.set(name, occurrence);
        const key = keyOf({ event: shape.name, name, occurrence });
        if (!found.has(key)) {
          found.set(key, new Quantity(shape.name, name, occurrence));
        }
        found.get(key).add(shape, place, kind);
      });
    }
    this.quantities = [...found.values()];
    for (const { shape, values: columns } of this.batches) {
      columns.forEach((column, place) => {
        shape.quantities[place].take(column, shape.parameters[place][1]);
      });
    }
  }

  /** The value that an event has of a quantity; undefined where it has none. */
  valueOf(event, quantity) {
    const place = quantity.places.get(event.batch.shape);
    return place === undefined ? undefined : event.batch.values[place][event.row];
  }

  /** Where that value lies on an axis: the number, or the time that a text states; NaN for none. */
  coordinateOf(event, quantity) {
    const value = this.valueOf(event, quantity);
    return quantity.timely ? this.clock.since(statedTime(value)) : numberOf(value);
  }

  kindOf(event, quantity) {
    return event.batch.shape.parameters[quantity.places.get(event.batch.shape)][1];
  }

  /** An execution and what it belongs to, the run first. */
  pathTo(at) {
    const path = [];
    for (let above = at; above >= 0; above = this.parent[above]) {
      path.unshift(above);
    }
    return path;
  }

  /** An execution and all that is below it. */
  allBelow(at) {
    const all = [at];
    for (let place = 0; place < all.length; ++place) {
      all.push(...this.children[all[place]]);
    }
    return all;
  }

  /** The time of the newest record of an execution itself. */
  lastSignOf(at) {
    const statuses = this.history[at].map((status) => status.at);
    const times = [this.started[at], ...statuses, lastOf(this.eventsOf[at])?.at ?? NaN];
    return Math.max(...times.filter((time) => !Number.isNaN(time)));
  }

  /** Where its bar ends: nowhere yet where it did not finish, at its start where it has no status. */
  endOf(at) {
    return Number.isNaN(this.ended[at]) ? this.started[at] : this.ended[at];
  }

  measure() {
    let [first, last] = [0, 0];
    for (const time of [
      ...this.started,
      ...this.history.flat().map((status) => status.at),
      ...this.events.map((event) => event.at),
    ]) {
      if (time < first) {
        first = time;
      }
      if (time > last) {
        last = time;
      }
    }
    this.first = first;
    this.last = Math.max(last, this.raw.slices?.to ?? last);
    this.clock.spansDays = this.clock.date(this.first) !== this.clock.date(this.last);
  }
}
