// The history of one execution: its statuses, and its events with their parameters.

import { statusVariable } from './colours.js';
import { button, make } from './element.js';
import { eventBlock } from './event-block.js';
import { graveLines } from './log-lines.js';
import { lineOf } from './log-section.js';
import { showLong } from './long-text.js';
import { renew } from './renew.js';
import { running, statusName } from './statuses.js';
import { count } from './text.js';

const entriesAtOnce = 20;

export class History {
  constructor(recorded, at) {
    Object.assign(this, { at, entries: [], shown: entriesAtOnce, blocks: new Map() });
    this.newestFirst = recorded.status[at] === running; // there it stopped
    const facts = make(
      'p',
      'hint',
      `execution ${recorded.number[at]} of the store`,
      ...(recorded.description[at] ? ['; ', showLong(make('span', 'text'), recorded.description[at])] : []),
    );
    this.statuses = make('ol', 'statuses');
    this.title = make('h3');
    this.order = button('order', '', () => {
      this.newestFirst = !this.newestFirst;
      this.shown = entriesAtOnce;
      this.put();
    });
    this.kept = make('p', 'hint', 'Only events that were kept when binning are listed.');
    this.list = make('div', 'events');
    const parts = [facts, make('h3', '', 'Statuses'), this.statuses, this.title, this.kept, this.list];
    this.element = make('div', 'history', ...parts);
    this.take(recorded);
  }

  /** Shows what was recorded since, and leaves what is open. */
  take(recorded) {
    const { at } = this;
    const before = this.entries.length;
    this.recorded = recorded;
    this.entries = entriesOf(recorded, at);
    renew(
      this.statuses,
      recorded.history[at].map((status) => this.itemOf(status)),
    );
    const { length } = recorded.eventsOf[at];
    const lines = this.entries.length - length;
    renew(this.title, [
      count(length, 'event') + (lines > 0 ? ` and ${count(lines, 'line')} of the log` : ''),
      ...(this.entries.length > 1 ? [' ', this.order] : []),
    ]);
    this.kept.hidden = recorded.raw.slices === null;
    this.shown += this.newestFirst && before > 0 ? this.entries.length - before : 0;
    this.put();
  }

  itemOf({ code, at }) {
    const words = `${statusName(code)} (${code}) since ${this.recorded.clock.local(at)}`;
    const item = make('li', '', make('span', 'swatch'), words);
    item.firstChild.style.background = `var(--${statusVariable(code)})`;
    return item;
  }

  put() {
    const { newestFirst, order } = this;
    order.textContent = newestFirst ? 'Newest first' : 'Oldest first';
    order.title = `Show the ${newestFirst ? 'oldest' : 'newest'} first`;
    const entries = newestFirst ? [...this.entries].reverse() : this.entries;
    const left = entries.length - this.shown;
    const more = button('more', `Show more: ${left.toLocaleString('en')} further`, () => {
      this.shown += entriesAtOnce;
      this.put();
    });
    const blocks = entries.slice(0, this.shown).map((entry) => this.blockOf(entry));
    renew(this.list, [...blocks, ...(left > 0 ? [more] : [])]);
  }

  /** An event never changes, unlike the event of another run with which it is compared. */
  blockOf(entry) {
    const { recorded } = this;
    if (!entry.event || recorded.against) {
      return elementOf(recorded, entry);
    }
    const { number } = entry.event;
    return this.blocks.get(number) ?? this.blocks.set(number, elementOf(recorded, entry)).get(number);
  }
}

/** The events, and warnings and errors of the log in the time of the execution, in the order of time. */
function entriesOf(recorded, at) {
  const events = recorded.eventsOf[at];
  const lines = graveLines(recorded, recorded.started[at], recorded.endOf(at));
  const entries = [];
  let line = 0;
  for (const event of events) {
    for (; line < lines.length && lines[line].at < event.at; ++line) {
      entries.push({ line: lines[line] });
    }
    entries.push({ event });
  }
  return [...entries, ...lines.slice(line).map((rest) => ({ line: rest }))];
}

function elementOf(recorded, { event, line }) {
  return event ? eventBlock(recorded, event) : make('ol', 'lines', lineOf(recorded, line));
}
