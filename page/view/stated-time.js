// Times that hosts state as texts: "24-Nov-26  21:55:03", "24/Nov/2026:21:55:03 +0100", and those of the store and the
// tool. Without an offset a time is local.

const day = /(\d{1,4})[-/ ](\d\d?|[A-Z][a-z][a-z])[-/ ](\d{4}|\d\d?)/;
const clock = /(\d\d?):(\d\d?)(?::(\d\d?)(?:[.,](\d+))?)?/;
const form = new RegExp(`^${day.source}[T: ] *${clock.source} *(Z|[+-]\\d\\d(?::?\\d\\d)?)?$`);
const months = 'Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec'.split(' ');

/** Year, month from 0, and day; the year is first, or last behind a month in letters. */
function dayOf(first, middle, last) {
  const named = months.indexOf(middle);
  const month = named < 0 ? Number(middle) - 1 : named;
  if (first.length === 4) {
    return last.length < 3 ? [Number(first), month, Number(last)] : null;
  }
  const year = Number(last) + (last.length === 4 ? 0 : Number(last) < 70 ? 2000 : 1900);
  return first.length < 3 && last.length !== 1 && named >= 0 ? [year, month, Number(first)] : null;
}

/** Minutes that a clock is before UTC; null for one of this computer. */
function offsetOf(text) {
  if (!text) {
    return null;
  }
  const [hours, minutes] = [text.slice(1, 3), text.slice(3).replace(':', '')].map(Number);
  return text === 'Z' ? 0 : (text[0] === '-' ? -1 : 1) * (60 * hours + minutes);
}

/** Microseconds from 1970 to a time; NaN for another text. */
export function statedTime(text) {
  const [, first, middle, last, hour, minute, second = '0', fraction = '', zone] = form.exec(text) ?? [];
  const date = first && dayOf(first, middle, last);
  const [hours, minutes, seconds] = [hour, minute, second].map(Number);
  if (!date || hours > 23 || minutes > 59 || seconds > 59) {
    return NaN;
  }
  const isDay = new Date(Date.UTC(...date)).getUTCMonth() === date[1];
  const offset = offsetOf(zone);
  const milliseconds =
    offset === null
      ? new Date(...date, hours, minutes, seconds).getTime()
      : Date.UTC(...date, hours, minutes - offset, seconds);
  return isDay ? milliseconds * 1000 + Number(fraction.padEnd(6, '0').slice(0, 6)) : NaN;
}
