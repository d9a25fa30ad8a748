// The plot: a parameter over time or over another parameter of the same event.

import { Chart, isPrinting, left, plain, right, shortened, timeAxis } from './chart.js';
import { colour, statusColour } from './colours.js';
import { make } from './element.js';
import { done, statusName } from './statuses.js';
import { count, eventName } from './text.js';
import { elapsed } from './time-window.js';
import { numberOf } from './values.js';

const plotHeight = () => (isPrinting() ? 170 : 300);
const manyPoints = 5000;

/** What a tilt series is looked at for: [y, x]. */
const sensiblePairs = [
  ['Defocus', 'TiltAngle'],
  ['TiltAngle', null],
];

export class Plot {
  constructor(element, recorded, time, open) {
    Object.assign(this, { element, recorded, time, open });
    this.choiceY = document.getElementById('plot-y');
    this.choiceX = document.getElementById('plot-x');
    this.note = document.getElementById('plot-note');
    this.quantities = recorded.quantities.filter((quantity) => quantity.numeric);
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
      this.quantities.forEach((quantity, at) => {
        if (quantity.event === name) {
          group.append(new Option(quantity.label, at));
        }
      });
      if (group.children.length > 0) {
        this.choiceY.append(group);
      }
    }
    [this.y, this.x] = this.sensible();
    this.choiceY.value = this.quantities.indexOf(this.y);
    this.offerX();
  }

  /** Offers the parameters of the same event, and keeps what is chosen where it is one. */
  offerX() {
    this.choiceX.replaceChildren(new Option('time', ''));
    this.quantities.forEach((quantity, at) => {
      if (quantity.event === this.y.event && quantity !== this.y) {
        this.choiceX.append(new Option(quantity.label, at));
      }
    });
    if (this.x?.event !== this.y?.event || this.x === this.y) {
      this.x = null;
    }
    this.choiceX.value = this.x ? this.quantities.indexOf(this.x) : '';
  }

  sensible() {
    const named = (name, event) =>
      this.quantities.find((quantity) => quantity.name === name && (event === undefined || quantity.event === event));
    for (const [nameY, nameX] of sensiblePairs) {
      const y = named(nameY);
      const x = nameX && y ? named(nameX, y.event) : null;
      if (y && (x || nameX === null)) {
        return [y, x];
      }
    }
    return [this.quantities.find((quantity) => this.varies(quantity)) ?? this.quantities[0], null];
  }

  varies(quantity) {
    const { events } = this.recorded.kinds.find((kind) => kind.name === quantity.event);
    const valueOf = (event) => this.recorded.valueOf(event, quantity);
    return events.some((event) => valueOf(event) !== valueOf(events[0]));
  }

  draw() {
    this.chart.fit(plotHeight());
    const kind = this.recorded.kinds.find((candidate) => candidate.name === this.y.event);
    const { points, left: notDrawn } = this.pointsOf(kind);
    this.binned = kind.slices !== null && this.x === null;
    const codes = [...new Set(points.map((point) => point.code))];
    this.groups = codes.map((code) => ({ code, points: points.filter((point) => point.code === code) }));
    if (this.binned) {
      this.groups.forEach((group) => this.bin(group));
    }
    this.tell(kind, points.length, notDrawn);
    this.chart.draw({
      grid: { left, right, top: 12, bottom: 44, outerBoundsMode: 'none' },
      xAxis: this.axisX(),
      yAxis: this.axis(this.y, { nameGap: 62, nameLocation: 'middle', nameRotate: 90 }),
      series: this.groups.map((group) => (this.binned ? this.barSeries(group) : this.pointSeries(group))),
    });
  }

  /** The time shown has changed. */
  drawWindow() {
    if (this.x !== null) {
      this.draw();
      return;
    }
    Object.assign(this.element.dataset, { from: this.time.from, to: this.time.to });
    this.chart.echarts.setOption({ xAxis: this.axisX() });
  }

  pointsOf(kind) {
    const points = [];
    let notDrawn = 0;
    for (const event of kind.events) {
      const value = this.recorded.valueOf(event, this.y);
      if (value === undefined || (this.x !== null && (event.at < this.time.from || event.at > this.time.to))) {
        continue;
      }
      const y = numberOf(value);
      const x = this.x === null ? event.at : numberOf(this.recorded.valueOf(event, this.x));
      if (Number.isNaN(x) || Number.isNaN(y)) {
        ++notDrawn;
      } else {
        points.push({ x, y, event, code: this.recorded.status[event.execution] });
      }
    }
    return { points, left: notDrawn };
  }

  /** Puts in the place of points, for each slice of time, the lowest and the highest of them. */
  bin(group) {
    const { from, to, kinds } = this.recorded.raw.slices;
    const width = (to - from) / kinds[0].counts.length;
    const bars = new Map();
    for (const point of group.points) {
      const slice = Math.min(Math.floor((point.x - from) / width), kinds[0].counts.length - 1);
      const bar = bars.get(slice) ?? { ...point, x: from + slice * width, width, y: point.y, high: point.y };
      bars.set(slice, Object.assign(bar, { y: Math.min(bar.y, point.y), high: Math.max(bar.high, point.y) }));
    }
    group.points = [...bars.values()];
  }

  pointSeries({ code, points }) {
    const flat = new Float64Array(2 * points.length);
    points.forEach((point, at) => {
      flat[2 * at] = point.x;
      flat[2 * at + 1] = point.y;
    });
    const many = points.length > manyPoints;
    return {
      type: 'scatter',
      name: statusName(code),
      data: flat,
      dimensions: ['x', 'y'],
      progressive: 0,
      large: many,
      largeThreshold: manyPoints,
      symbol: code === done ? 'circle' : 'triangle',
      symbolSize: many ? 4 : points.length > 500 ? 5 : 8,
      itemStyle: { color: statusColour(code), opacity: 0.85 },
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
      data: points.map((point) => [point.x, point.y, point.high]),
      renderItem: (params, api) => {
        const point = points[params.dataIndex];
        const [x, low] = api.coord([point.x, point.y]);
        const [end, high] = api.coord([point.x + point.width, point.high]);
        return {
          type: 'rect',
          style: { fill: statusColour(code) },
          shape: { x, y: high - 1, width: Math.max(end - x, 1), height: low - high + 2 },
        };
      },
      tooltip: {
        formatter: ({ dataIndex }) => {
          const point = points[dataIndex];
          return `${plain(this.y.name)}  ${point.y} to ${point.high}\nfrom ${this.recorded.clock.moment(point.x, 6)}`;
        },
      },
    };
  }

  axisX() {
    return this.x === null
      ? { ...timeAxis(this.time, this.chart.width / 90, elapsed), ...this.nameOf('time since the start') }
      : this.axis(this.x, this.nameOf(this.x.label));
  }

  nameOf(name) {
    return { name, nameLocation: 'middle', nameGap: 28, nameTextStyle: { color: colour('text') } };
  }

  axis(quantity, more) {
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
      ...this.nameOf(shortened(quantity.label, 40)),
      ...more,
      ...truth,
      axisLine: { show: true, onZero: false, lineStyle: { color: colour('line') } },
      splitLine: { lineStyle: { color: colour('line') } },
    };
  }

  tell(kind, drawn, notDrawn) {
    const shown = this.groups.reduce((sum, group) => sum + group.points.length, 0);
    Object.assign(this.element.dataset, { points: shown, from: this.time.from, to: this.time.to });
    const where = this.x !== null && !this.time.isWhole ? ' in the time shown' : '';
    this.note.textContent = this.binned
      ? `binned: lowest and highest of ${count(shown, 'slice')} of time in place of ${count(kind.recorded, 'event')}`
      : (kind.slices
          ? `binned: ${drawn.toLocaleString('en')} of ${count(kind.recorded, 'event')}, ` +
            'the lowest and highest of each slice of time'
          : `${count(drawn, 'point')}${where}`) +
        (notDrawn > 0 ? `; ${count(notDrawn, 'value is', 'values are')} no number` : '');
    this.chart.describe(`Plot of ${this.y.label} over ${this.x ? this.x.label : 'time'}: ${this.note.textContent}.`);
  }

  wordsFor({ event, x, y }) {
    const value = (quantity, number) =>
      `${shortened(plain(quantity.name), 40)}  ${quantity.boolean ? number === 1 : number}`;
    return [
      value(this.y, y),
      ...(this.x ? [value(this.x, x)] : []),
      shortened(plain(this.recorded.node[event.execution]), 60),
      `${this.recorded.clock.moment(event.at, 6)}, ${statusName(this.recorded.status[event.execution])}`,
    ].join('\n');
  }
}
