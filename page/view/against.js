// The run with which this one is compared: which steps and events belong together, and where they differ. The page has
// what velora-ts found: page/FORM.md, "Against".

import { columnsOf } from './columns.js';
import { wholeColumn, wholes } from './form.js';
import { keyOf, Recorded } from './recorded.js';
import { statusOf } from './states.js';
import { briefly, numberOf, valueText } from './values.js';

const rounding = 2 ** -50;
const nearlyAll = 0.9; // names of files and times differ in each step: that says nothing about any of them

/** A value as a number, NaN for what was recorded as one; null if it does not read as a number. */
function readAsNumber(value) {
  if (typeof value === 'number') {
    return value;
  }
  const number = numberOf(value);
  return !Number.isNaN(number) || /^NaN:[0-9a-f]{16}$/.test(value) ? number : null;
}

/** Whether two numbers are the same within a tolerance. */
function isClose(one, other, { absolute, relative }) {
  if (one === other || (Number.isNaN(one) && Number.isNaN(other))) {
    return true;
  }
  const amount = Math.max(Math.abs(one), Math.abs(other));
  const room = Math.max(absolute, relative * amount);
  return Number.isFinite(amount) && Math.abs(one - other) <= (room > 0 ? room + rounding * amount : 0);
}

/** The activity of an execution with its version, as stored. */
function activityOf(run, at) {
  const version = run.versions.get(run.version[at]);
  return version ? `${version.name} ${version.version}` : '';
}

const mapOf = (own, other) => new Map(own.map((key, place) => [key, other[place]]));

export class Against {
  constructor(own) {
    const raw = own.raw.against;
    const other = new Recorded({ form: own.raw.form, made: own.raw.made, ...raw });
    Object.assign(this, { own, other, raw, differing: new Map() });
    const pairs = (list, side) => wholeColumn(list, side, wholes);
    const indexes = (run, numbers) => numbers.map((number) => run.indexOf.get(number));
    this.counterparts = mapOf(indexes(own, pairs(raw.pairs, 'own')), indexes(other, pairs(raw.pairs, 'other')));
    this.owns = mapOf([...this.counterparts.values()], [...this.counterparts.keys()]);
    this.eventPairs = mapOf(pairs(raw.event_pairs, 'own'), pairs(raw.event_pairs, 'other'));
    this.otherEvents = mapOf(
      other.events.map(({ number }) => number),
      other.events,
    );
    this.otherQuantities = new Map(other.quantities.map((quantity) => [keyOf(quantity), quantity]));
    const columns = columnsOf(other).filter(({ quantity }) => quantity);
    this.otherColumns = new Map(columns.map((column) => [keyOf(column.quantity), column]));
    this.ignored = new Set(raw.rules.ignored);
    this.tolerances = new Map(raw.rules.tolerances.map((tolerance) => [tolerance.parameter, tolerance]));
  }

  isAlone(at) {
    return !this.counterparts.has(at);
  }

  /** Executions of the other run alone. */
  get othersAlone() {
    return this.other.number.flatMap((unused, there) => (this.owns.has(there) ? [] : [there]));
  }

  /** Whether the values that both runs have of a parameter are the same; undefined is none. */
  isSame(quantity, one, other) {
    if (this.isIgnored(quantity) || JSON.stringify(one) === JSON.stringify(other)) {
      return true;
    }
    const [a, b] = [readAsNumber(one), readAsNumber(other)];
    return a !== null && b !== null && isClose(a, b, this.tolerances.get(quantity.name) ?? this.raw.rules.otherwise);
  }

  /** What the other run has of the parameters of a plot; null if it has no such values. */
  chosenThere({ x, y }) {
    const [thereX, thereY] = [x && this.otherQuantities.get(keyOf(x)), this.otherQuantities.get(keyOf(y))];
    return thereY?.columns.length > 0 && thereX !== undefined ? { x: thereX, y: thereY } : null;
  }

  isIgnored({ event, name }) {
    return this.ignored.has(event) || this.ignored.has(name);
  }

  /** The columns beside parameters that are compared: by what, and what they show. Whether a host lives is no part. */
  static fixed = {
    Status: { key: ({ status }, at) => status[at], text: statusOf },
    Activity: { key: activityOf, text: activityOf },
  };

  /** What an execution and its counterpart have in a column of a parameter: the values with their kinds. */
  values({ quantity, stored }, at, there) {
    return [stored(at), this.otherColumns.get(keyOf(quantity))?.stored(there) ?? [undefined]];
  }

  /** Whether a cell of the table differs from that of the counterpart. */
  differs(column, at, there) {
    if (column.quantity) {
      const [[one], [other]] = this.values(column, at, there);
      return !this.isSame(column.quantity, one, other);
    }
    const fixed = Against.fixed[column.name];
    return fixed !== undefined && fixed.key(this.own, at) !== fixed.key(this.other, there);
  }

  /** Of a cell that differs, the texts of both runs; null for others. */
  cell(column, at, allDigits) {
    if (!this.differingIn(column).has(at)) {
      return null;
    }
    const there = this.counterparts.get(at);
    if (!column.quantity) {
      const { text } = Against.fixed[column.name];
      return [text(this.own, at), text(this.other, there)];
    }
    const values = this.values(column, at, there);
    return allDigits ? values.map((value) => valueText(...value)) : briefly(...values);
  }

  /** The executions whose cells in a column differ; `everywhere` says that nearly all that have values do. */
  differingIn(column) {
    if (!this.differing.has(column)) {
      const hasValue = ([at, there]) =>
        !column.quantity || this.values(column, at, there).some(([one]) => one !== undefined);
      const pairs = [...this.counterparts].filter(hasValue);
      const differing = new Set(pairs.filter(([at, there]) => this.differs(column, at, there)).map(([at]) => at));
      differing.everywhere = differing.size >= 3 && differing.size >= nearlyAll * pairs.length;
      this.differing.set(column, differing);
    }
    return this.differing.get(column);
  }

  /** Of these columns, those that tell executions that differ from others. */
  telling(columns) {
    return columns.filter((column) => !this.differingIn(column).everywhere);
  }

  /** Whether an execution is in this run alone, or differs in any of these columns but those that differ everywhere. */
  isDifferent(at, columns) {
    return this.isAlone(at) || this.telling(columns).some((column) => this.differingIn(column).has(at));
  }

  /** The event of the other run that belongs to an event; undefined if there is none, or the page does not have it. */
  counterpartOf(event) {
    return this.otherEvents.get(this.eventPairs.get(event.number));
  }

  isEventAlone({ number, batch }) {
    return !this.eventPairs.has(number) && !this.ignored.has(batch.shape.name);
  }

  /** Of a parameter of an event, the value of the other run and its kind where it differs, else null. */
  otherValue(event, place) {
    const counterpart = this.counterpartOf(event);
    const quantity = event.batch.shape.quantities[place];
    const there = this.otherQuantities.get(keyOf(quantity));
    const value = counterpart && there ? this.other.valueOf(counterpart, there) : undefined;
    if (!counterpart || this.isSame(quantity, event.batch.values[place][event.row], value)) {
      return null;
    }
    return value === undefined ? [undefined] : [value, this.other.kindOf(counterpart, there)];
  }
}
