// The bars of a kind of event of which the page has only the lowest and the highest values in each slice of time.

/** What each slice that has any of the points has of them, in the order of time. */
export function slicesOf({ x, y }, { from, to, kinds: [{ counts }] }) {
  const width = (to - from) / counts.length;
  const list = [];
  x.forEach((at, place) => {
    const slice = Math.min(Math.floor((at - from) / width), counts.length - 1);
    addTo(list, slice, { low: y[place], high: y[place] });
  });
  return { from, width, list };
}

/** Adds to the last of a list, or behind it. */
function addTo(list, slice, { low, high }) {
  const last = list[list.length - 1];
  if (last?.slice === slice) {
    last.low = Math.min(last.low, low);
    last.high = Math.max(last.high, high);
  } else {
    list.push({ slice, low, high });
  }
}

/** What slices there are in a time. */
export const slicesIn = ({ from, width, list }, time) =>
  list.filter(({ slice }) => from + slice * width <= time.to && from + (slice + 1) * width >= time.from);

/** The bars that are drawn in a time of so many microseconds for each pixel: slices narrower than a pixel share one. */
export function barsIn(slices, time, perPixel) {
  const { from, width } = slices;
  const together = Math.max(1, Math.ceil(perPixel / width));
  const bars = [];
  for (const item of slicesIn(slices, time)) {
    addTo(bars, Math.floor(item.slice / together), item);
  }
  return bars.map((bar) => barOf(bar, from, together * width));
}

const barOf = ({ slice, low, high }, from, width) => ({
  from: from + slice * width,
  to: from + (slice + 1) * width,
  low,
  high,
});
