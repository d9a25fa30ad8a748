// Times are microseconds from the start of the run; the start is a stored text.

export const pad = (number, digits = 2) => String(number).padStart(digits, '0');

export class Clock {
  constructor(start) {
    this.milliseconds = Date.parse(`${start.slice(0, 23)}Z`);
    this.rest = Number(start.slice(23, 26)) || 0;
  }

  /** A stored time as microseconds from the start. */
  read(stored) {
    return (
      (Date.parse(`${stored.slice(0, 23)}Z`) - this.milliseconds) * 1000 +
      (Number(stored.slice(23, 26)) || 0) -
      this.rest
    );
  }

  /** Microseconds from 1970 as those from the start. */
  since(microseconds) {
    return microseconds - this.milliseconds * 1000 - this.rest;
  }

  /** The local midnight before the start. */
  get midnight() {
    const start = new Date(this.milliseconds);
    return start.setHours(0, 0, 0, 0) * 1000 - this.milliseconds * 1000 - this.rest;
  }

  /** The local date of a time, and the microseconds that it does not hold. */
  dateAt(time) {
    const whole = Math.floor((time + this.rest) / 1000);
    return [new Date(this.milliseconds + whole), Math.round(time + this.rest - 1000 * whole)];
  }

  /** The time of day, with as many digits of a second as told. */
  day(time, digits = 3) {
    const [date, micro] = this.dateAt(time);
    const fraction = pad(date.getMilliseconds(), 3) + pad(micro, 3);
    const seconds = `${pad(date.getHours())}:${pad(date.getMinutes())}:${pad(date.getSeconds())}`;
    return digits > 0 ? `${seconds}.${fraction.slice(0, digits)}` : seconds;
  }

  /** The time of day, behind the date where the run goes on over midnight. */
  moment(time, digits) {
    return (this.spansDays ? `${this.date(time)} ` : '') + this.day(time, digits);
  }

  date(time) {
    const [date] = this.dateAt(time);
    return `${date.getFullYear()}-${pad(date.getMonth() + 1)}-${pad(date.getDate())}`;
  }

  offset(time) {
    const minutes = -this.dateAt(time)[0].getTimezoneOffset();
    return `${minutes < 0 ? '-' : '+'}${pad(Math.floor(Math.abs(minutes) / 60))}:${pad(Math.abs(minutes) % 60)}`;
  }

  local(time) {
    return Number.isNaN(time) ? 'unknown' : `${this.date(time)} ${this.day(time)} ${this.offset(time)}`;
  }

  stored(time) {
    if (Number.isNaN(time)) {
      return '';
    }
    const [date, micro] = this.dateAt(time);
    return `${date.toISOString().slice(0, 23)}${pad(micro, 3)}Z`;
  }
}

/** A length of time in words. */
export function lengthOf(time) {
  if (Number.isNaN(time)) {
    return '';
  }
  const seconds = Math.abs(time) / 1e6;
  const sign = time < 0 ? '−' : '';
  if (seconds < 1) {
    const milli = seconds * 1000;
    return `${sign}${milli >= 10 ? milli.toFixed(1) : milli.toFixed(3)} ms`;
  }
  if (seconds < 60) {
    return `${sign}${seconds.toFixed(seconds < 10 ? 2 : 1)} s`;
  }
  const whole = Math.round(seconds);
  const minutes = Math.floor(whole / 60);
  return whole < 3600
    ? `${sign}${minutes} min ${pad(whole % 60)} s`
    : `${sign}${Math.floor(minutes / 60)} h ${pad(minutes % 60)} min`;
}
