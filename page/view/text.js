'use strict';

// How recorded texts, numbers and times are shown. Whatever was recorded only ever becomes text.

const noText = /^\\x((?:[0-9a-f]{2})*)$/;

/** The parts of a stored text: [text, isByte] for each; bytes are those that are no part of a character. */
function partsOf(stored) {
  const hex = noText.exec(stored);
  if (!hex) {
    return splitAtControls(stored);
  }
  const bytes = bytesOf(hex);
  const parts = [];
  for (let at = 0; at < bytes.length;) {
    const length = sequenceLength(bytes, at);
    if (length === 0) {
      parts.push([`\\x${bytes[at].toString(16).padStart(2, '0')}`, true]);
    } else {
      parts.push(...splitAtControls(new TextDecoder().decode(bytes.subarray(at, at + length))));
    }
    at += Math.max(1, length);
  }
  return joinParts(parts);
}

const bytesOf = (hex) => Uint8Array.from(hex[1].match(/../g) ?? [], (pair) => parseInt(pair, 16));

/** Length of the UTF-8 sequence at a place; 0 where there is none. */
function sequenceLength(bytes, at) {
  for (let length = 1; length <= 4 && at + length <= bytes.length; ++length) {
    try {
      new TextDecoder('utf-8', { fatal: true, ignoreBOM: true }).decode(bytes.subarray(at, at + length));
      return length;
    } catch {
      // not complete, or no character at all
    }
  }
  return 0;
}

// Control characters have no shape of their own, those of direction would turn what stands beside them, and a lone
// surrogate is a byte that another program stored.
function splitAtControls(text) {
  const parts = [];
  for (const piece of text.split(
    /([\u0000-\u001f\u007f-\u009f\u061c\u200b-\u200f\u2028-\u202e\u2060-\u206f\ufeff\u{e0000}-\u{e007f}]|\p{Cs})/u,
  )) {
    const code = piece.codePointAt(0);
    const special = /^[\p{Cc}\p{Cf}\p{Zl}\p{Zp}\p{Cs}]$/u.test(piece);
    if (!special) {
      parts.push([piece, false]);
    } else if (code >= 0xdc80 && code <= 0xdcff) {
      parts.push([`\\x${(code & 0xff).toString(16)}`, true]);
    } else if (code <= 0xff) {
      parts.push([`\\x${code.toString(16).padStart(2, '0')}`, true]);
    } else {
      parts.push([`\\u${code.toString(16)}`, true]);
    }
  }
  return joinParts(parts);
}

function joinParts(parts) {
  const joined = [];
  for (const [text, isByte] of parts) {
    if (text !== '' && joined.length > 0 && joined[joined.length - 1][1] === isByte) {
      joined[joined.length - 1][0] += text;
    } else if (text !== '') {
      joined.push([text, isByte]);
    }
  }
  return joined;
}

/** A stored text as one that can be read, for drawings. */
const readable = (stored) =>
  partsOf(stored)
    .map(([text]) => text)
    .join('');

/** Puts a stored text into an element; bytes that are no text stand out. */
function show(element, stored) {
  element.replaceChildren(
    ...partsOf(stored).map(([text, isByte]) => {
      const part = document.createElement(isByte ? 'code' : 'bdi');
      part.textContent = text;
      return part;
    }),
  );
  return element;
}

/** The name of an event, which may be empty. */
const noName = '(no name)';
const eventName = (stored) => readable(stored) || noName;

/** An element with a class and with children or a text. */
function make(tag, className, ...children) {
  const element = document.createElement(tag);
  if (className) {
    element.className = className;
  }
  element.append(...children);
  return element;
}

/** A text for a file: a byte that is no part of a character, and a zero, becomes the sign for that. */
function wellFormed(stored) {
  const hex = noText.exec(stored);
  const text = hex ? new TextDecoder('utf-8', { ignoreBOM: true }).decode(bytesOf(hex)) : stored;
  return text.replace(/\p{Cs}|\0/gu, '\ufffd');
}

/** A value of any kind as a stored text. */
function valueText(value, kind) {
  if (value === null) {
    return '';
  }
  if (value === Infinity || value === -Infinity) {
    return value > 0 ? 'inf' : '-inf';
  }
  if (kind === 'double' && String(value).startsWith('NaN:')) {
    return 'NaN';
  }
  if (kind === 'bool' && (value === 0 || value === 1)) {
    return value === 1 ? 'true' : 'false';
  }
  return typeof value === 'object' ? `blob ${value.blob}` : String(value);
}

/** A value as a number that can be drawn; NaN for none. Texts that read as a number count: 3.10 is kept as one. */
function numberOf(value) {
  if (typeof value === 'string') {
    return /^[+-]?(\d+\.?\d*|\.\d+)(e[+-]?\d+)?$/i.test(value) ? numberOf(Number(value)) : NaN;
  }
  return typeof value === 'number' && Number.isFinite(value) ? value : NaN;
}

const count = (number, one, many) => `${number.toLocaleString('en')} ${number === 1 ? one : (many ?? `${one}s`)}`;

const statusNames = { 4: 'running', 14: 'done' };
const statusName = (code) => (code === null ? 'no status' : (statusNames[code] ?? `status ${code}`));

// Times are microseconds from the start of the run; the start is a stored text.

const pad = (number, digits = 2) => String(number).padStart(digits, '0');

class Clock {
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

  /** The local midnight before the start. */
  get midnight() {
    const start = new Date(this.milliseconds);
    return start.setHours(0, 0, 0, 0) * 1000 - this.milliseconds * 1000 - this.rest;
  }

  /** The local date of a time, and the microseconds that it does not hold. */
  at(time) {
    const whole = Math.floor((time + this.rest) / 1000);
    return [new Date(this.milliseconds + whole), Math.round(time + this.rest - 1000 * whole)];
  }

  /** The time of day, with as many digits of a second as told. */
  day(time, digits = 3) {
    const [date, micro] = this.at(time);
    const fraction = pad(date.getMilliseconds(), 3) + pad(micro, 3);
    return (
      `${pad(date.getHours())}:${pad(date.getMinutes())}:${pad(date.getSeconds())}` +
      (digits > 0 ? `.${fraction.slice(0, digits)}` : '')
    );
  }

  /** The time of day, behind the date where the run goes on over midnight. */
  moment(time, digits) {
    return (this.spansDays ? `${this.date(time)} ` : '') + this.day(time, digits);
  }

  date(time) {
    const [date] = this.at(time);
    return `${date.getFullYear()}-${pad(date.getMonth() + 1)}-${pad(date.getDate())}`;
  }

  offset(time) {
    const minutes = -this.at(time)[0].getTimezoneOffset();
    return `${minutes < 0 ? '-' : '+'}${pad(Math.floor(Math.abs(minutes) / 60))}:${pad(Math.abs(minutes) % 60)}`;
  }

  local(time) {
    return Number.isNaN(time) ? 'unknown' : `${this.date(time)} ${this.day(time)} ${this.offset(time)}`;
  }

  stored(time) {
    if (Number.isNaN(time)) {
      return '';
    }
    const [date, micro] = this.at(time);
    return `${date.toISOString().slice(0, 23)}${pad(micro, 3)}Z`;
  }
}

/** A length of time in words. */
function lengthOf(time) {
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
