// The span of time that timeline and plot show, in microseconds; the same for both.

export class TimeWindow {
  constructor(first, last) {
    this.measure(first, last);
    [this.from, this.to] = this.whole;
    this.listeners = [];
  }

  measure(first, last) {
    const margin = Math.max(1, last - first) * 0.01;
    this.whole = [first - margin, last + margin];
  }

  /** There is more to show. What showed all of it shows all, what showed the end goes on to the new end. */
  take(first, last) {
    const { isWhole, whole, from, to } = this;
    this.measure(first, last);
    if (isWhole) {
      [this.from, this.to] = this.whole;
    } else if (to > whole[1] - (to - from) * 1e-9) {
      [this.from, this.to] = [from + this.whole[1] - to, this.whole[1]];
    }
  }

  onChange(listener) {
    this.listeners.push(listener);
  }

  show(from, to) {
    const length = Math.min(Math.max(to - from, 10), this.whole[1] - this.whole[0]);
    const start = Math.min(Math.max(from, this.whole[0]), this.whole[1] - length);
    if (Math.abs(start - this.from) + Math.abs(start + length - this.to) < length * 1e-9) {
      return;
    }
    [this.from, this.to] = [start, start + length];
    this.listeners.forEach((listener) => listener());
  }

  showAll() {
    this.show(...this.whole);
  }

  /** Zooms around a time; a factor below one shows less. */
  zoom(factor, around = (this.from + this.to) / 2) {
    this.show(around - (around - this.from) * factor, around + (this.to - around) * factor);
  }

  pan(share) {
    const step = (this.to - this.from) * share;
    this.show(this.from + step, this.to + step);
  }

  get isWhole() {
    return this.to - this.from > (this.whole[1] - this.whole[0]) * 0.999;
  }
}

const steps = [
  1, 2, 5, 10, 20, 50, 100, 200, 500, 1e3, 2e3, 5e3, 1e4, 2e4, 5e4, 1e5, 2e5, 5e5, 1e6, 2e6, 5e6, 1e7, 1.5e7, 3e7, 6e7,
  12e7, 3e8, 6e8, 9e8, 18e8, 36e8, 72e8, 108e8, 216e8, 432e8, 864e8,
];

/** Places for ticks of time: about as many as wanted, at round distances from an origin. */
export function ticksOf(from, to, wanted, origin = 0) {
  const step =
    steps.find((candidate) => (to - from) / candidate <= wanted) ?? 864e8 * Math.ceil((to - from) / wanted / 864e8);
  const ticks = [];
  for (let at = Math.ceil((from - origin) / step) * step + origin; at <= to; at += step) {
    ticks.push(at);
  }
  return { ticks, step };
}

/** Digits of a second that tell ticks of a distance apart. */
export const digitsFor = (step) => (step >= 1e6 ? 0 : step >= 1e3 ? 3 : 6);
