// The columns of a page's data: page/FORM.md.

export const form = 1;

/** A column of whole numbers, as differences from the one before or [difference, times]; NaN for none. */
export function wholes(column) {
  let last = 0;
  return column.flatMap((entry) => {
    const [difference, times] = Array.isArray(entry) ? entry : [entry, 1];
    return difference === null ? [NaN] : Array.from({ length: times }, () => (last += difference));
  });
}

/** A column of texts, 0 for the one before. */
export function texts(column) {
  let last = null;
  return column.map((value) => (value === 0 ? last : value === null ? null : (last = value)));
}

/** A column of values; nothing but numbers may come as the Base64 of little-endian doubles. */
export function values(column, kind) {
  if (typeof column !== 'string') {
    return kind === 'text' ? texts(column) : column;
  }
  const text = atob(column);
  const bytes = new Uint8Array(text.length);
  for (let at = 0; at < text.length; ++at) {
    bytes[at] = text.charCodeAt(at);
  }
  const view = new DataView(bytes.buffer);
  return Float64Array.from({ length: bytes.length / 8 }, (unused, at) => view.getFloat64(8 * at, true));
}

/** All batches of a column. */
export const wholeColumn = (batches, name, read) => batches.flatMap((batch) => read(batch[name]));
