// The plot: a parameter over time or over another parameter of the same event.

import { Chart, isPrinting, left, plain, right, shortened, timeAxis } from './chart.js';
import { colour, statusColour } from './colours.js';
import { make } from './element.js';
import { firstOver, firstQuantity } from './first-plot.js';
import { drawnOf, fewPoints, placesIn, Points, rangeOf, side } from './points.js';
import { barsIn, slicesIn, slicesOf } from './slices.js';
import { done, statusName } from './statuses.js';
import { count, eventName } from './text.js';
import { unitAfter, unitBehind } from './units.js';
import { numberOf } from './values.js';

const plotHeight = () => (isPrinting() ? 170 : 300);
const [top, bottom] = [12, 44]; // around the drawing
// Pixels of each of many points: below 4, ECharts fills squares, which takes much less time than other shapes, but only
// on the screen.
const manySize = () => (isPrinting() ? 4 : 3.9);

export class Plot {
  constructor(element, recorded, time, open) {
    Object.assign(this, { element, recorded, time, open, quantities: recorded.quantities });
    this.choiceY = document.getElementById('plot-y');
    this.choiceX = document.getElementById('plot-x');
    this.note = document.getElementById('plot-note');
    this.chart = new Chart(element, time, () => this.x === null);
    this.chart.onItem(({ seriesIndex, dataIndex }) => {
      const event = this.groups[seriesIndex]?.points[dataIndex]?.event;
      if (event) {
        open(event.execution);
      }
    });
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
  }

  offerY() {
    for (const { name } of this.recorded.kinds) {
      const group = make('optgroup');
      group.label = eventName(name);
      group.append(...this.options((quantity) => quantity.numeric && quantity.event === name));
      if (group.children.length > 0) {
        this.choiceY.append(group);
      }
    }
    this.y = firstQuantity(
      this.recorded,
      this.quantities.filter(({ numeric }) => numeric),
    );
    this.x = firstOver(this.recorded, this.y);
    this.choiceY.value = this.quantities.indexOf(this.y);
    this.offerX();
  }

  /** Offers the parameters of the same event, and keeps what is chosen where it is one. */
  offerX() {
    const isOther = (quantity) => quantity.event === this.y.event && quantity !== this.y;
    this.choiceX.replaceChildren(
      new Option('time', ''),
      ...this.options((quantity) => isOther(quantity) && (quantity.numeric || quantity.timely)),
    );
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
    if (this.read?.y !== this.y || this.read.x !== this.x) {
      this.read = this.pointsOf(this.recorded.kinds.find((kind) => kind.name === this.y.event));
    }
    this.chart.draw({
      grid: { left, right, top, bottom, outerBoundsMode: 'none' },
      yAxis: this.axis(this.y, { nameGap: 62, nameLocation: 'middle', nameRotate: 90 }),
      ...this.inTheTimeShown(),
    });
  }

  /** The time shown has changed. */
  drawWindow() {
    this.chart.change(this.inTheTimeShown());
  }

  /** The points of what is chosen, in a group for each status of an execution. */
  pointsOf(kind) {
    const { recorded, x: quantityX, y: quantityY } = this;
    const groups = new Map();
    const noNumber = [];
    for (const event of kind.events) {
      const value = recorded.valueOf(event, quantityY);
      if (value === undefined) {
        continue;
      }
      const y = numberOf(value);
      const x = quantityX === null ? event.at : recorded.coordinateOf(event, quantityX);
      const code = recorded.status[event.execution];
      if (Number.isNaN(x) || Number.isNaN(y)) {
        noNumber.push(event);
      } else {
        groups.set(code, groups.get(code) ?? new Points(code));
        groups.get(code).add(event, x, y);
      }
    }
    const read = { kind, noNumber, x: quantityX, y: quantityY, groups: [...groups.values()] };
    if (kind.slices !== null && quantityX === null) {
      read.slices = read.groups.map((group) => slicesOf(group, recorded.raw.slices));
    }
    return read;
  }

  inTheTimeShown() {
    const { groups, slices } = this.read;
    this.spans = groups.map(({ events }) => placesIn(this.time, events));
    const frame = this.frame();
    this.groups = groups.map((group, at) => ({
      code: group.code,
      ...(slices ? this.bars(slices[at]) : this.points(group, this.spans[at], frame)),
    }));
    this.tell();
    return {
      xAxis: this.axisX(),
      series: this.groups.map((group) => (slices ? this.barSeries(group) : this.pointSeries(group))),
    };
  }

  /** Where points lie: numbers at the ends of both axes, and their lengths in pixels. */
  frame() {
    const { groups } = this.read;
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

  pointSeries({ code, points, many }) {
    const flat = new Float64Array(2 * points.length);
    points.forEach((point, at) => {
      flat[2 * at] = point.x;
      flat[2 * at + 1] = point.y;
    });
    return {
      type: 'scatter',
      name: statusName(code),
      data: flat,
      dimensions: ['x', 'y'],
      progressive: 0,
      large: true,
      largeThreshold: 500,
      symbol: code === done ? 'circle' : 'triangle',
      symbolSize: many ? manySize() : points.length > 500 ? 5 : 8,
      itemStyle: { color: statusColour(code), opacity: 1 },
      tooltip: { formatter: ({ dataIndex }) => this.wordsFor(points[dataIndex]) },
    };
  }

  barSeries({ code, points }) {
    return {
      type: 'custom',
      name: statusName(code),
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
          style: { fill: statusColour(code) },
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
    const [first, last] = rangeOf(this.read.groups, 'x', this.spans);
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
    const drawn = this.groups.reduce((sum, group) => sum + group.points.length, 0);
    Object.assign(this.element.dataset, { points: drawn, from: this.time.from, to: this.time.to });
    this.note.textContent = this.read.slices ? this.wordsForSlices() : this.wordsForPoints(drawn);
    this.chart.describe(`Plot of ${this.y.label} over ${this.x ? this.x.label : 'time'}: ${this.note.textContent}.`);
  }

  wordsForSlices() {
    const { kind, slices } = this.read;
    const shown = slices.reduce((sum, group) => sum + slicesIn(group, this.time).length, 0);
    const whole = `in place of ${count(kind.recorded, 'event')}`;
    return `binned: lowest and highest of ${count(shown, 'slice')} of time ${this.time.isWhole ? whole : 'shown'}`;
  }

  wordsForPoints(drawn) {
    const { kind, noNumber } = this.read;
    const shown = this.spans.reduce((sum, [begin, end]) => sum + end - begin, 0);
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

  wordsFor({ event, x, y }) {
    const { clock } = this.recorded;
    const words = (quantity, number) =>
      quantity.timely ? `${clock.date(number)} ${clock.day(number)}` : quantity.boolean ? number === 1 : number;
    const value = (quantity, number) =>
      `${shortened(plain(quantity.name), 40)}  ${words(quantity, number)}${this.unitOf(quantity)}`;
    return [
      value(this.y, y),
      ...(this.x ? [value(this.x, x)] : []),
      shortened(plain(this.recorded.node[event.execution]), 60),
      `${clock.moment(event.at, 6)}, ${statusName(this.recorded.status[event.execution])}`,
    ].join('\n');
  }
}
