// The plot: a parameter over time or over another parameter of the same event.

import { Chart, isPrinting, left, plain, right, shortened, timeAxis } from './chart.js';
import { colour } from './colours.js';
import { make } from './element.js';
import { firstOver, firstQuantity } from './first-plot.js';
import { keyOf } from './recorded.js';
import { pointsOf } from './plotted.js';
import { renew } from './renew.js';
import { drawnOf, fewPoints, placesIn, rangeOf, side } from './points.js';
import { barsIn, slicesIn } from './slices.js';
import { statusName } from './statuses.js';
import { count, eventName } from './text.js';
import { unitAfter, unitBehind } from './units.js';

const plotHeight = () => (isPrinting() ? 170 : 300);
const [top, bottom] = [12, 44]; // around the drawing
// Pixels of each of many points: below 4, ECharts fills squares, which takes much less time than other shapes, but only
// on the screen.
const manySize = () => (isPrinting() ? 4 : 3.9);

export class Plot {
  constructor(element, recorded, time, open) {
    Object.assign(this, { element, recorded, time });
    this.choiceY = document.getElementById('plot-y');
    this.choiceX = document.getElementById('plot-x');
    this.note = document.getElementById('plot-note');
    this.chart = new Chart(element, time, () => this.x === null);
    this.chart.onItem(({ seriesIndex, dataIndex }) => {
      const group = this.groups[seriesIndex];
      const event = group?.points[dataIndex]?.event;
      const isOwn = group?.run === this.recorded;
      const at = isOwn ? event?.execution : this.recorded.against?.owns.get(event?.execution);
      if (at !== undefined) {
        open(at);
      }
    });
    this.choose();
    this.offerY();
    this.choiceY.addEventListener('change', () => {
      this.y = this.quantities[this.choiceY.value];
      this.offerX();
      this.draw();
    });
    this.choiceX.addEventListener('change', () => {
      this.x = this.choiceX.value === '' ? null : this.quantities[this.choiceX.value];
      this.draw();
    });
    [this.choiceY, this.choiceX].forEach((choice) =>
      choice.addEventListener('focus', () => this.note.setAttribute('aria-live', 'polite')),
    );
  }

  /** Draws what was recorded since, of what is chosen. */
  take(recorded) {
    const [y, x] = [this.y, this.x].map(
      (one) => one && recorded.quantities.find((other) => keyOf(other) === keyOf(one)),
    );
    Object.assign(this, { recorded, read: null, y, x: x ?? null });
    if (!y?.numeric) {
      this.choose();
    }
    this.note.setAttribute('aria-live', 'off'); // it says something else each time
    this.offerY();
    this.chart.fit(plotHeight());
    this.chart.change(this.whole());
  }

  get quantities() {
    return this.recorded.quantities;
  }

  choose() {
    this.y = firstQuantity(
      this.recorded,
      this.quantities.filter(({ numeric }) => numeric),
    );
    this.x = firstOver(this.recorded, this.y);
  }

  offerY() {
    const groups = this.recorded.kinds.map(({ name }) => {
      const group = make('optgroup');
      group.label = eventName(name);
      group.append(...this.options((quantity) => quantity.numeric && quantity.event === name));
      return group;
    });
    renew(
      this.choiceY,
      groups.filter((group) => group.children.length > 0),
    );
    this.choiceY.value = this.quantities.indexOf(this.y);
    this.offerX();
  }

  /** Offers the parameters of the same event, and keeps what is chosen where it is one. */
  offerX() {
    const isOther = (quantity) => quantity.event === this.y.event && quantity !== this.y;
    renew(this.choiceX, [
      new Option('time', ''),
      ...this.options((quantity) => isOther(quantity) && (quantity.numeric || quantity.timely)),
    ]);
    if (this.x !== null && !isOther(this.x)) {
      this.x = null;
    }
    this.choiceX.value = this.x ? this.quantities.indexOf(this.x) : '';
  }

  options(isOffered) {
    return this.quantities.flatMap((quantity, at) => (isOffered(quantity) ? [new Option(quantity.label, at)] : []));
  }

  draw() {
    this.chart.fit(plotHeight());
    this.chart.draw(this.whole());
  }

  whole() {
    if (this.read?.y !== this.y || this.read.x !== this.x) {
      this.read = pointsOf(this.recorded, { x: this.x, y: this.y });
    }
    return {
      grid: { left, right, top, bottom, outerBoundsMode: 'none' },
      yAxis: this.axis(this.y, { nameGap: 62, nameLocation: 'middle', nameRotate: 90 }),
      ...this.inTheTimeShown(),
    };
  }

  /** The time shown has changed. */
  drawWindow() {
    this.chart.change(this.inTheTimeShown());
  }

  inTheTimeShown() {
    const groups = this.allGroups;
    this.spans = groups.map(({ events }) => placesIn(this.time, events));
    const frame = this.frame();
    this.groups = groups.map((group, at) => ({
      ...group.look,
      run: group.run,
      isBars: group.slices !== null,
      ...(group.slices ? this.bars(group.slices) : this.points(group, this.spans[at], frame)),
    }));
    this.tell();
    return {
      xAxis: this.axisX(),
      series: this.groups.map((group) => (group.isBars ? this.barSeries(group) : this.pointSeries(group))),
    };
  }

  get allGroups() {
    return [...this.read.groups, ...this.read.others];
  }

  /** Where points lie: numbers at the ends of both axes, and their lengths in pixels. */
  frame() {
    const groups = this.allGroups;
    return {
      x: this.x === null ? [this.time.from, this.time.to] : rangeOf(groups, 'x', this.spans),
      y: rangeOf(groups, 'y', this.spans),
      width: this.chart.width,
      height: plotHeight() - top - bottom,
    };
  }

  points(group, [begin, end], frame) {
    const pointAt = (at) => ({ x: group.x[at], y: group.y[at], event: group.events[at] });
    return { many: end - begin > fewPoints, points: drawnOf(group, [begin, end], frame).map(pointAt) };
  }

  bars(slices) {
    const { time } = this;
    return { points: barsIn(slices, time, (time.to - time.from) / this.chart.width) };
  }

  pointSeries({ name, look, symbol, run, points, many }) {
    const flat = new Float64Array(2 * points.length);
    points.forEach((point, at) => {
      flat[2 * at] = point.x;
      flat[2 * at + 1] = point.y;
    });
    return {
      type: 'scatter',
      name,
      data: flat,
      dimensions: ['x', 'y'],
      progressive: 0,
      large: true,
      largeThreshold: 500,
      symbol,
      symbolSize: many ? manySize() : points.length > 500 ? 5 : 8,
      itemStyle: { color: colour(look), opacity: 1 },
      tooltip: { formatter: ({ dataIndex }) => this.wordsFor(points[dataIndex], run) },
    };
  }

  barSeries({ name, look, points }) {
    return {
      type: 'custom',
      name,
      progressive: 0,
      clip: true,
      dimensions: ['x', 'y', 'high'],
      encode: { x: 'x', y: ['y', 'high'] },
      data: points.map(({ from, low, high }) => [from, low, high]),
      renderItem: (params, api) => {
        const bar = points[params.dataIndex];
        const [x, low] = api.coord([bar.from, bar.low]);
        const [end, high] = api.coord([bar.to, bar.high]);
        return {
          type: 'rect',
          style: { fill: colour(look) },
          shape: { x, y: high - 1, width: Math.max(end - x, 1), height: low - high + 2 },
        };
      },
      tooltip: {
        formatter: ({ dataIndex }) => {
          const { from, low, high } = points[dataIndex];
          const values = `${plain(this.y.name)}  ${low} to ${high}${this.unitOf(this.y)}`;
          return `${values}\nfrom ${this.recorded.clock.moment(from, 6)}`;
        },
      },
    };
  }

  axisX() {
    const {
      time,
      recorded: { clock },
    } = this;
    const nameOf = (name, at) => this.nameOf(`${name}, UTC${clock.offset(at)}`);
    if (this.x?.timely) {
      const shown = this.timesOfX();
      const dated = clock.spansDays || [shown.from, shown.to].some((at) => clock.date(at) !== clock.date(0));
      return { ...timeAxis(shown, clock, this.chart.width, dated), ...nameOf(shortened(this.x.label, 40), shown.from) };
    }
    return this.x === null
      ? { ...timeAxis(time, clock, this.chart.width), ...nameOf('time', time.from) }
      : this.axis(this.x);
  }

  /** From the first to the last time that a parameter states, and a little around it. */
  timesOfX() {
    const [first, last] = rangeOf(this.allGroups, 'x', this.spans);
    const margin = Math.max(1e6, 0.01 * (last - first));
    return first <= last ? { from: first - margin, to: last + margin } : this.time;
  }

  nameOf(name) {
    return { name, nameLocation: 'middle', nameGap: 28, nameTextStyle: { color: colour('text') } };
  }

  axis(quantity, more = {}) {
    const truth = quantity.boolean
      ? {
          min: -0.2,
          max: 1.2,
          interval: 1,
          axisLabel: {
            color: colour('muted'),
            customValues: [0, 1],
            formatter: (value) => (value === 1 ? 'true' : 'false'),
          },
        }
      : { scale: true, axisLabel: { color: colour('muted'), hideOverlap: true } };
    return {
      type: 'value',
      ...this.nameOf(shortened(quantity.label, 40) + unitBehind(this.recorded, quantity.name)),
      ...more,
      ...truth,
      axisLine: { show: true, onZero: false, lineStyle: { color: colour('line') } },
      splitLine: { lineStyle: { color: colour('line') } },
    };
  }

  unitOf({ name }) {
    return plain(unitAfter(this.recorded, name));
  }

  tell() {
    const own = this.groups.filter(({ run }) => run === this.recorded);
    const drawn = own.reduce((sum, group) => sum + group.points.length, 0);
    Object.assign(this.element.dataset, { points: drawn, from: this.time.from, to: this.time.to });
    this.note.textContent =
      (this.read.isBinned ? this.wordsForSlices() : this.wordsForPoints(drawn)) + this.wordsForOthers(own.length);
    this.chart.describe(`Plot of ${this.y.label} over ${this.x ? this.x.label : 'time'}: ${this.note.textContent}.`);
  }

  wordsForSlices() {
    const { kind, groups } = this.read;
    const shown = groups.reduce((sum, { slices }) => sum + slicesIn(slices, this.time).length, 0);
    const whole = `in place of ${count(kind.recorded, 'event')}`;
    return `binned: lowest and highest of ${count(shown, 'slice')} of time ${this.time.isWhole ? whole : 'shown'}`;
  }

  /** How many events the groups from one place to another have in the time shown. */
  inSpans(from, to) {
    return this.spans.slice(from, to).reduce((sum, [begin, end]) => sum + end - begin, 0);
  }

  wordsForOthers(own) {
    const { others } = this.read;
    return others.length > 0 ? `; ${this.inSpans(own).toLocaleString('en')} of the other run` : '';
  }

  wordsForPoints(drawn) {
    const { kind, noNumber, groups } = this.read;
    const shown = this.inSpans(0, groups.length);
    const where = this.time.isWhole ? '' : ' in the time shown';
    const [first, behind] = placesIn(this.time, noNumber);
    return [
      kind.slices
        ? `binned: ${shown.toLocaleString('en')} of ${count(kind.recorded, 'event')}, ` +
          'the lowest and highest of each slice of time'
        : `${count(shown, 'point')}${where}`,
      ...(drawn < shown ? [`of those within ${side} pixels one is drawn`] : []),
      ...(behind > first ? [`${count(behind - first, 'value is', 'values are')} no number`] : []),
    ].join('; ');
  }

  wordsFor({ event, x, y }, run) {
    const { clock } = run;
    const words = (quantity, number) =>
      quantity.timely ? `${clock.date(number)} ${clock.day(number)}` : quantity.boolean ? number === 1 : number;
    const value = (quantity, number) =>
      `${shortened(plain(quantity.name), 40)}  ${words(quantity, number)}${this.unitOf(quantity)}`;
    return [
      value(this.y, y),
      ...(this.x ? [value(this.x, x)] : []),
      shortened(plain(run.node[event.execution]), 60),
      `${clock.moment(event.at, 6)}, ${statusName(run.status[event.execution])}`,
      ...(run === this.recorded ? [] : ['the other run']),
    ].join('\n');
  }
}
