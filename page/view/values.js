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

/** A number in six digits, though never without one before the point, as velora-ts shows it. */
function sixDigits(number) {
  const size = Math.abs(number);
  return size >= 1e6 && size < 1e15 ? number.toFixed(0) : String(Number(number.toPrecision(6)));
}

/** A value of any kind as a short text. Whole numbers, and texts that are numbers, keep all their digits. */
export const briefText = (value, kind) =>
  kind === 'double' && typeof value === 'number' && Number.isFinite(value) ? sixDigits(value) : valueText(value, kind);

/** Two values, each with its kind, as short texts, unless only all digits tell them apart. */
export function briefly(one, other) {
  const brief = [briefText(...one), briefText(...other)];
  return brief[0] === brief[1] ? [valueText(...one), valueText(...other)] : brief;
}
