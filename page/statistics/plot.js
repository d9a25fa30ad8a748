// The plot of statistics. A bin is a group of numbers in some of the time; it is drawn from its first to its last one.

import { init } from '../view/echarts.js';
import { make } from '../view/element.js';
import { readable } from '../view/text.js';

const height = 420;
const narrowest = 2; // pixels of a bin
const names = ['done', 'running', 'other-0', 'other-1', 'other-2', 'event'];
const values = ['min', 'q05', 'q25', 'median', 'q75', 'q95', 'max'];

const sixDigits = (number) => Number(number.toPrecision(6));

/** The rectangle of a bin between two of its values. */
function rectangle(api, low, high, style) {
  const [left, bottom] = api.coord([api.value(0), api.value(low)]);
  const [right, top] = api.coord([api.value(1), api.value(high)]);
  const width = Math.max(right - left, narrowest);
  const shape = { x: left, y: top, width, height: Math.max(bottom - top, 1) };
  return { type: 'rect', shape, style };
}

function drawBin(fill) {
  return (params, api) => {
    const [from, lowest] = api.coord([api.value(0), api.value(2)]);
    const [to, highest] = api.coord([api.value(1), api.value(8)]);
    const x = (from + Math.max(to, from + narrowest)) / 2;
    return {
      type: 'group',
      children: [
        { type: 'line', shape: { x1: x, x2: x, y1: lowest, y2: highest }, style: { stroke: fill, opacity: 0.5 } },
        rectangle(api, 3, 7, { fill, opacity: 0.2 }),
        rectangle(api, 4, 6, { fill, opacity: 0.5 }),
        rectangle(api, 5, 5, { fill, opacity: 1 }),
      ],
    };
  };
}

const rowOf = (bin) => [bin.from / 1000, bin.to / 1000, ...values.map((name) => bin[name]), bin.count];

/** The groups that have a colour of their own; groups of time share one. */
function linesOf({ groups, by, parameter }) {
  return by === 'instrument' || by === 'activity'
    ? groups.map((group) => ({ name: readable(group.name) || '–', groups: [group] }))
    : [{ name: readable(parameter), groups }];
}

function seriesOf(line, fill, before) {
  const bins = line.groups.flatMap((group) => (group.bins ?? []).map(rowOf));
  const each = line.groups.flatMap((group) => (group.each ?? []).map(([at, number]) => [at / 1000, number]));
  const encode = { x: [0, 1], y: [2, 3, 4, 5, 6, 7, 8] };
  const markLine = {
    symbol: 'none',
    silent: true,
    lineStyle: { type: 'dashed' },
    label: { formatter: 'median before', position: 'insideEndTop' },
    data: before?.count > 0 ? [{ yAxis: before.median }] : [],
  };
  const { name } = line;
  return [
    { type: 'custom', name, color: fill, encode, data: bins, clip: true, markLine, renderItem: drawBin(fill) },
    { type: 'scatter', name, color: fill, data: each, symbolSize: 3, silent: true, large: true },
  ];
}

function describe({ seriesName, value }) {
  const [from, to, ...rest] = value;
  const numbers = values.map((name, at) => `${name} ${sixDigits(rest[at])}`).join('\n');
  const times = [from, to].map((time) => new Date(time).toLocaleString('en-GB')).join(' – ');
  return `${seriesName.replaceAll('{', '{\u2060')}\n${times}\n${rest[values.length]} numbers\n${numbers}`;
}

export function plotOf(element, statistics, colour) {
  const canvas = element.appendChild(make('div', 'canvas'));
  const echarts = init(canvas, null, { devicePixelRatio: Math.max(2, window.devicePixelRatio) });
  const lines = linesOf(statistics);
  echarts.on('finished', () => {
    element.dataset.drawn = lines.length;
  });
  element.setAttribute('aria-label', `Quantiles of ${readable(statistics.parameter)} over time, as in the table`);
  const axis = () => ({
    axisLabel: { color: colour('muted'), hideOverlap: true },
    axisLine: { show: true, onZero: false, lineStyle: { color: colour('line') } },
    splitLine: { show: true, lineStyle: { color: colour('line') } },
  });
  const option = () => ({
    animation: false,
    backgroundColor: 'transparent',
    textStyle: { fontFamily: 'system-ui, sans-serif', color: colour('text') },
    legend: { show: lines.length > 1, type: 'scroll', top: 0, textStyle: { color: colour('text') } },
    grid: { left: 70, right: 30, top: 40, bottom: 70 },
    xAxis: { type: 'time', ...axis() },
    yAxis: { type: 'value', scale: true, name: statistics.unit ?? '', ...axis() },
    dataZoom: [
      { type: 'inside', zoomOnMouseWheel: 'ctrl', filterMode: 'none' },
      { type: 'slider', height: 20, bottom: 12, filterMode: 'none' },
    ],
    tooltip: { renderMode: 'richText', trigger: 'item', confine: true, transitionDuration: 0, formatter: describe },
    series: lines.flatMap((line, at) =>
      seriesOf(line, colour(names[at % names.length]), at === 0 ? statistics.before : null),
    ),
  });
  return {
    draw() {
      canvas.style.height = `${height}px`;
      echarts.resize({ width: element.clientWidth, height });
      echarts.clear();
      echarts.setOption(option());
    },
  };
}
