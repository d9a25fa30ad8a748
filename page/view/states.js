// Whether what did not finish still ran when the page was made: its host lived, had ended, or nobody can say.

import { lengthOf } from './clock.js';
import { running, statusName } from './statuses.js';

const names = { running: 'running', stopped: 'STOPPED', unknown: 'did not finish' };

export class States {
  constructor({ hosts, made }, last) {
    const { state, why, unfinished } = hosts ?? { state: 'unknown', why: '', unfinished: [] };
    Object.assign(this, { state, why, last: hosts?.last ?? last, asked: hosts?.asked ?? made });
    this.known = new Map(unfinished.map((one) => [one.number, one]));
  }

  /** Of an execution that did not finish, by its number: `running`, `stopped` or `unknown`. */
  of(number) {
    return this.known.get(number)?.state ?? this.state;
  }

  /** How old the last record was. */
  age() {
    return lengthOf(this.asked - this.last);
  }

  /** What is known of an execution that did not finish, in words. */
  wordsFor(number, clock) {
    const state = this.of(number);
    const why = this.known.get(number)?.why || this.why;
    const doubt = state === 'unknown' ? `; whether it still runs is not known${why ? `: ${why}` : ''}` : '';
    const others = state === 'stopped' && this.state === 'running' ? '; another host of the run lives' : '';
    return `last record ${clock.local(this.last)}, ${this.age()} before this page was made${doubt}${others}`;
  }
}

/** The newest status of an execution as a reader is told it. */
export function statusOf({ status, states, number }, at) {
  return status[at] === running ? names[states.of(number[at])] : statusName(status[at]);
}

export const stateName = (state) => names[state];
