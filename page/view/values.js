// Values of parameters.

/** A value of any kind as a stored text. */
export function valueText(value, kind) {
  if (value === null || value === undefined) {
    return '';
  }
  if (typeof value === 'object') {
    return `blob ${value.blob}`;
  }
  if (kind === 'bool' && (value === 0 || value === 1)) {
    return String(value === 1);
  }
  if (kind === 'double' && String(value).startsWith('NaN:')) {
    return 'NaN';
  }
  return typeof value === 'number' && !Number.isFinite(value) ? (value > 0 ? 'inf' : '-inf') : String(value);
}

/** A value as a number that can be drawn; NaN for none. Texts that read as a number count: 3.10 is kept as one. */
export function numberOf(value) {
  if (typeof value === 'string') {
    return /^[+-]?(\d+\.?\d*|\.\d+)(e[+-]?\d+)?$/i.test(value) ? numberOf(Number(value)) : NaN;
  }
  return typeof value === 'number' && Number.isFinite(value) ? value : NaN;
}

/** A number as a text with at most six digits behind its leading zeros. A whole number, and what is none, stays. */
export function sixDigits(text) {
  const digits = /^[+-]?0*\.?0*([\d.]*)(e|$)/i.exec(text)?.[1].replace('.', '') ?? '';
  const isWhole = !/[.e]/i.test(text);
  if (isWhole || digits.length <= 6) {
    return text;
  }
  return Number(text)
    .toPrecision(6)
    .replace(/(\.\d*?)0+(e|$)/, '$1$2')
    .replace(/\.(e|$)/, '$1');
}
