// The plot of a trend: each group has a band from its minimum to its maximum, a darker one with half of its numbers,
// and a line for the median, on which groups that share a colour with an earlier one have a mark.

import { init } from '../view/echarts.js';
import { make } from '../view/element.js';
import { colour } from '../view/colours.js';
import { momentText } from './moment.js';
import { plainName } from './run-words.js';

const height = 420;
const settled = 500; // milliseconds after which the reader has found what to look at
const colours = ['done', 'running', 'other-0', 'other-1', 'other-2', 'event', 'against', 'warning'];
const markSize = 5; // pixels
const values = ['min', 'q05', 'q25', 'median', 'q75', 'q95', 'max'];

/** Whether a group has the colour of an earlier one, so that a mark tells them apart. */
const sharesColour = (at) => at >= colours.length;
const sixDigits = (number) => String(Number(number.toPrecision(6)));
const millisecondsOf = (stored) => Date.parse(`${stored.slice(0, 23)}Z`);
const rowOf = (bin) => [millisecondsOf(bin.from), millisecondsOf(bin.to), ...values.map((name) => bin[name])];

function drawBin(fill, isMarked) {
  const mark = (x, y) => {
    const points = [
      [x - markSize, y],
      [x, y - markSize],
      [x + markSize, y],
      [x, y + markSize],
    ];
    return { type: 'polygon', shape: { points }, style: { fill } };
  };
  return (params, api) => {
    const rectangle = (low, high, opacity) => {
      const [left, bottom] = api.coord([api.value(0), api.value(low)]);
      const [right, top] = api.coord([api.value(1), api.value(high)]);
      const shape = { x: left, y: top, width: Math.max(right - left, 1), height: Math.max(bottom - top, 1.5) };
      return { type: 'rect', shape, style: { fill, opacity } };
    };
    const children = [rectangle(2, 8, 0.15), rectangle(4, 6, 0.35), rectangle(5, 5, 1)];
    if (isMarked) {
      const { x, y, width } = children[2].shape;
      children.push(mark(x + width / 2, y));
    }
    return { type: 'group', children };
  };
}

/** The bin and its extreme that is nearer to a number. */
const nearer = (bin, number) => (number - bin.min < bin.max - number ? bin.lowest : bin.highest);

export class TrendPlot {
  /**
   * @param element in which it is drawn
   * @param open is called with {store, run} when the reader clicks what that run recorded
   * @param zoom is called with two times in milliseconds when the reader looks at another part of the time
   */
  constructor(element, { open, zoom }) {
    Object.assign(this, { element, open, zoom, trend: null });
    this.canvas = element.appendChild(make('div', 'canvas'));
    window.addEventListener('resize', () => this.draw());
    window.matchMedia('(prefers-color-scheme: dark)').addEventListener('change', () => this.draw());
  }

  /** @param trend as api/trends answers it; @param groups with their titles */
  show(trend, groups) {
    Object.assign(this, { trend, groups });
    this.draw();
  }

  draw() {
    const width = this.element.clientWidth;
    if (!this.trend || width === 0) {
      return;
    }
    this.canvas.style.height = `${height}px`;
    this.chart ??= this.begin();
    this.chart.resize({ width, height });
    this.chart.setOption(this.option(), { notMerge: true });
  }

  begin() {
    const chart = init(this.canvas, null, { devicePixelRatio: Math.max(2, window.devicePixelRatio) });
    chart.on('click', ({ seriesIndex, dataIndex, event }) => {
      const [, number] = chart.convertFromPixel({ gridIndex: 0 }, [event.offsetX, event.offsetY]);
      const extreme = nearer(this.groups[seriesIndex].bins[dataIndex], number);
      if (extreme) {
        this.open(extreme);
      }
    });
    chart.on('datazoom', () => {
      clearTimeout(this.timer);
      this.timer = setTimeout(() => this.look(), settled);
    });
    chart.on('finished', () => {
      this.element.dataset.drawn = String(this.groups.reduce((sum, { bins }) => sum + bins.length, 0));
    });
    return chart;
  }

  look() {
    const { startValue, endValue } = this.chart.getOption().dataZoom[0];
    this.zoom(startValue, endValue);
  }

  option() {
    const axis = () => ({
      axisLabel: { color: colour('muted'), hideOverlap: true },
      axisLine: { show: true, onZero: false, lineStyle: { color: colour('line') } },
      splitLine: { show: true, lineStyle: { color: colour('line') } },
    });
    return {
      animation: false,
      backgroundColor: 'transparent',
      textStyle: { fontFamily: 'system-ui, sans-serif', color: colour('text') },
      legend: {
        show: this.groups.length > 1,
        type: 'scroll',
        top: 0,
        textStyle: { color: colour('text') },
        data: this.groups.map(({ title }, at) => ({ name: title, icon: sharesColour(at) ? 'diamond' : 'roundRect' })),
      },
      grid: { left: 70, right: 30, top: 40, bottom: 70 },
      xAxis: { type: 'time', ...axis() },
      yAxis: { type: 'value', scale: true, name: plainName(this.trend.unit), ...axis() },
      dataZoom: [
        { type: 'inside', zoomOnMouseWheel: 'ctrl', filterMode: 'none' },
        { type: 'slider', height: 20, bottom: 12, filterMode: 'none' },
      ],
      tooltip: {
        renderMode: 'richText',
        trigger: 'item',
        confine: true,
        transitionDuration: 0,
        formatter: ({ seriesIndex, dataIndex }) => this.describe(this.groups[seriesIndex], dataIndex),
      },
      series: this.groups.map((group, at) => this.seriesOf(group, at)),
    };
  }

  seriesOf({ title, bins }, at) {
    const fill = colour(colours[at % colours.length]);
    const encode = { x: [0, 1], y: [2, 8] };
    const data = bins.map(rowOf);
    const renderItem = drawBin(fill, sharesColour(at));
    return { type: 'custom', name: title, color: fill, encode, data, clip: true, renderItem };
  }

  describe({ title, bins }, at) {
    const bin = bins[at];
    const numbers = values.map((name) => `${name} ${sixDigits(bin[name])}`).join('\n');
    const head = title.replaceAll('{', '{\u2060');
    return `${head}\n${momentText(bin.from)} – ${momentText(bin.to)}\n${bin.count} numbers\n${numbers}`;
  }
}
