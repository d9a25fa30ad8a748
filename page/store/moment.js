// Times as a reader reads them: in the time zone of the browser, with the day; UTC when it is pointed at.

import { Clock, pad } from '../view/clock.js';
import { make } from '../view/element.js';

export const millisecondsOf = (stored) => Date.parse(`${stored.slice(0, 23)}Z`);

/** A stored time in words. */
export function momentText(stored) {
  const clock = new Clock(stored);
  return Number.isNaN(clock.milliseconds) ? 'unknown' : `${clock.date(0)} ${clock.day(0, 0)}`;
}

/** A stored time as an element. */
export function moment(stored) {
  const element = make('time', '', momentText(stored));
  element.dateTime = stored;
  element.title = `${stored.replace('T', ' ').replace('Z', '')} UTC`;
  return element;
}

/** A length of time in words that change each second at most. */
export function spanText(milliseconds) {
  const seconds = Math.max(0, Math.floor(milliseconds / 1000));
  const [minutes, hours, days] = [60, 3600, 86400].map((unit) => Math.floor(seconds / unit));
  if (seconds < 60) {
    return `${seconds} s`;
  }
  if (minutes < 60) {
    return `${minutes} min ${pad(seconds % 60)} s`;
  }
  return days < 2 ? `${hours} h ${pad(minutes % 60)} min` : `${days} days`;
}
