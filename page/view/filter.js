// Which executions the table shows: those of a status, of an activity, and with a text.

import { renew } from './renew.js';
import { running, statusName } from './statuses.js';
import { readable } from './text.js';

const typing = 200; // milliseconds without a key after which the text is looked for

/** A pattern that finds a text. */
export const patternOf = (text) => new RegExp(text.replace(/[\\^$.*+?()[\]{}|]/g, '\\$&'), 'iu');

/** Whether a stored text has a text in it. */
export const isIn = (found, stored) => found.test(stored?.startsWith('\\x') ? readable(stored) : (stored ?? ''));

/** The executions with a text in their names, or in the names and values of their events. */
function executionsWith(recorded, text) {
  const found = patternOf(text);
  const number = text.trim() === '' ? NaN : Number(text);
  const activities = new Set([...recorded.versions].filter(([, { name }]) => isIn(found, name)).map(([key]) => key));
  const executions = new Set();
  for (let at = 0; at < recorded.count; ++at) {
    if (
      activities.has(recorded.version[at]) ||
      isIn(found, recorded.node[at]) ||
      isIn(found, recorded.description[at])
    ) {
      executions.add(at);
    }
  }
  const isThere = (value) => value === number || (typeof value === 'string' && isIn(found, value));
  for (const { shape, execution, values } of recorded.batches) {
    const isNamed = isIn(found, shape.name) || shape.parameters.some(([name]) => isIn(found, name));
    execution.forEach((at, row) => {
      if (isNamed || values.some((column) => isThere(column[row]))) {
        executions.add(at);
      }
    });
  }
  return executions;
}

export class Filter {
  /**
   * @param changed is called after the reader chose something else.
   * @param differs tells whether an execution differs from the run with which this one is compared.
   */
  constructor(recorded, changed, differs) {
    Object.assign(this, { changed, differs });
    this.onlyDiffering = document.getElementById('only-differing');
    this.onlyDiffering.addEventListener('change', () => changed());
    this.text = document.getElementById('find');
    this.status = document.getElementById('of-status');
    this.activity = document.getElementById('of-activity');
    this.take(recorded);
    this.status.addEventListener('change', () => changed());
    this.activity.addEventListener('change', () => changed());
    this.text.addEventListener('input', () => {
      clearTimeout(this.waiting);
      this.waiting = setTimeout(() => {
        this.find();
        changed();
      }, typing);
    });
  }

  /** Offers what was recorded, and leaves what is chosen. */
  take(recorded) {
    this.recorded = recorded;
    this.onlyDiffering.parentElement.hidden = !recorded.against;
    this.offer(this.status, 'any status', recorded.status, (code) =>
      code === running ? 'did not finish' : statusName(code),
    );
    this.activities = recorded.version.map((version) => recorded.versions.get(version)?.name ?? null);
    this.offer(this.activity, 'any activity', this.activities, (name) =>
      name === null ? 'no activity' : readable(name),
    );
    this.find();
  }

  /** Offers what executions below the run have, and how many of them. */
  offer(select, any, values, nameOf) {
    const chosen = select.choices ? this.chosen(select) : undefined;
    const counts = new Map();
    values.forEach((value, at) => at !== this.recorded.root && counts.set(value, (counts.get(value) ?? 0) + 1));
    if (chosen !== undefined && !counts.has(chosen)) {
      counts.set(chosen, 0);
    }
    const choices = [...counts].map(([value, total]) => [`${nameOf(value)} (${total.toLocaleString('en')})`, value]);
    select.choices = [[any, undefined], ...choices];
    renew(
      select,
      select.choices.map(([name], place) => new Option(name, place)),
    );
    select.value = String(select.choices.findIndex(([, value]) => value === chosen));
    select.hidden = choices.length < 2;
  }

  chosen(select) {
    return select.choices[select.value][1];
  }

  get isSet() {
    return (
      this.found !== null || this.status.value !== '0' || this.activity.value !== '0' || this.onlyDiffering.checked
    );
  }

  find() {
    this.found = this.text.value === '' ? null : executionsWith(this.recorded, this.text.value);
  }

  clear() {
    [this.text.value, this.status.value, this.activity.value] = ['', '0', '0'];
    this.onlyDiffering.checked = false;
    this.find();
  }

  showUnfinished() {
    this.clear();
    this.status.value = String(this.status.choices.findIndex(([, code]) => code === running));
    this.changed();
  }

  /** The rows of a list that pass. */
  passing(rows) {
    const [status, activity] = [this.chosen(this.status), this.chosen(this.activity)];
    return rows.filter(
      (at) =>
        (status === undefined || this.recorded.status[at] === status) &&
        (activity === undefined || this.activities[at] === activity) &&
        (this.found?.has(at) ?? true) &&
        (!this.onlyDiffering.checked || this.differs(at)),
    );
  }
}
