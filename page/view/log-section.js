// The log of the host as a list that can be searched.

import { addInSteps, button, linkTo, make, show } from './element.js';
import { patternOf, isIn } from './filter.js';
import { showLong } from './long-text.js';
import { executionAt } from './log-lines.js';
import { count } from './text.js';

const linesAtOnce = 10;
const typing = 200; // milliseconds without a key after which the text is looked for
const around = 30e6; // microseconds to each side of a line that the timeline shows
const levels = [
  ['errors and warnings', ['error', 'warning']],
  ['errors', ['error']],
  ['warnings', ['warning']],
  ['information', ['info']],
  ['all levels', ['error', 'warning', 'info']],
];

/** A line as an item of a list: its time, level, source and text. */
export function lineOf({ clock }, { at, level, source, text }, timeOf = (time) => clock.day(time)) {
  return make(
    'li',
    `line ${level}`,
    make('time', 'hint', timeOf(at)),
    ' ',
    make('strong', '', level),
    ' ',
    ...(source === '' ? [] : [show(make('span', 'hint'), source), ' ']),
    showLong(make('span', 'text'), text),
  );
}

export class LogSection {
  constructor(recorded, time) {
    Object.assign(this, { recorded, time });
    document.getElementById('log-section').hidden = !recorded.log;
    if (!recorded.log) {
      return;
    }
    [this.list, this.text, this.level, this.inTime, this.note] = [
      'log',
      'find-line',
      'of-level',
      'in-time',
      'log-note',
    ].map((id) => document.getElementById(id));
    const counts = (which) => recorded.log.lines.filter(({ level }) => which.includes(level)).length;
    this.level.append(
      ...levels.map(([name, which], place) => new Option(`${name} (${counts(which).toLocaleString('en')})`, place)),
    );
    this.level.addEventListener('change', () => this.draw());
    this.inTime.addEventListener('change', () => this.draw());
    this.text.addEventListener('input', () => {
      clearTimeout(this.waiting);
      this.waiting = setTimeout(() => this.draw(), typing);
    });
    time.onChange(() => this.inTime.checked && this.draw());
    this.draw();
  }

  draw() {
    const { recorded, time } = this;
    const [, which] = levels[this.level.value];
    const wanted = patternOf(this.text.value);
    const found = recorded.log.lines.filter(
      ({ at, level, source, text }) =>
        which.includes(level) &&
        (!this.inTime.checked || (at >= time.from && at <= time.to)) &&
        (isIn(wanted, text) || isIn(wanted, source)),
    );
    this.list.replaceChildren();
    addInSteps(this.list, found.reverse(), linesAtOnce, (line) => this.itemOf(line));
    this.note.textContent = this.wordsFor(found.length, which);
  }

  /** A line, with links to its time and to what ran then. */
  itemOf(line) {
    const { recorded, time } = this;
    const item = lineOf(recorded, line, (at) => recorded.clock.moment(at));
    const see = button('link', 'timeline', () => {
      time.show(line.at - around, line.at + around);
      document.getElementById('timeline').scrollIntoView({ block: 'center' });
    });
    see.title = 'Show this time in the timeline';
    item.append(' ', make('span', 'hint', 'in ', linkTo(recorded, executionAt(recorded, line.at)), ', ', see));
    return item;
  }

  wordsFor(found, which) {
    const left = which.reduce((sum, level) => sum + this.recorded.log.leftOut[level], 0);
    const rest = left > 0 ? `; ${left.toLocaleString('en')} more are not in this page` : '';
    return `${count(found, 'line')}, the newest first${rest}`;
  }
}
