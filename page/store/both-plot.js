// The numbers of a parameter in two runs, each over the time since its own start.

import { Chart, left, oncePerFrame, plain, right, shortened, timeAxis } from '../view/chart.js';
import { Clock, lengthOf } from '../view/clock.js';
import { colour } from '../view/colours.js';
import { make } from '../view/element.js';
import { count, eventName, readable } from '../view/text.js';
import { TimeWindow } from '../view/time-window.js';
import { keepText } from './kept.js';
import { keyOf, titleOf } from './quantities.js';

const height = 300;
const sides = [
  { name: 'this run', look: 'done', symbol: 'circle' },
  { name: 'the other', look: 'against', symbol: 'diamond' },
];

const withId = (id, element) => Object.assign(element, { id });

export class BothPlot {
  /**
   * @param choose is called with the quantity that the reader has chosen
   * @param open is called with the place of a run, 0 or 1, and the key of one of its executions
   */
  constructor({ choose, open }) {
    Object.assign(this, { open, offered: [], runs: null });
    this.choice = withId('plot-y', make('select'));
    this.choice.addEventListener('change', () => choose(this.offered[this.choice.selectedIndex]));
    this.note = withId('plot-note', make('span', 'hint'));
    this.note.setAttribute('role', 'status');
    this.place = withId('plot', make('div', 'chart'));
    const title = withId('plot-title', make('h2', '', 'Both in one plot'));
    const keys = 'Drag to pan, Ctrl and wheel to zoom; Shift and arrows to pan, + and − to zoom, 0 for all.';
    const about = { role: 'group', tabindex: 0, 'aria-labelledby': title.id, 'aria-describedby': 'plot-keys' };
    Object.entries(about).forEach(([name, value]) => this.place.setAttribute(name, value));
    this.element = make(
      'section',
      'both-plotted',
      make('div', 'bar', title, legend(), make('span', 'tools', make('label', '', 'Show ', this.choice)), this.note),
      this.place,
      withId('plot-keys', make('p', 'hint', keys)),
    );
    this.element.hidden = true;
    const redraw = oncePerFrame(() => this.draw());
    window.addEventListener('resize', redraw);
    window.matchMedia('(prefers-color-scheme: dark)').addEventListener('change', redraw);
  }

  /** Shows nothing, until it is shown something again. */
  clear() {
    this.runs = null;
    this.time = null;
    this.element.hidden = true;
  }

  /** Offers quantities, of which one is chosen. */
  offer(quantities, chosen) {
    if (JSON.stringify(quantities.map(keyOf)) !== JSON.stringify(this.offered.map(keyOf))) {
      this.choice.replaceChildren(...optionsOf(quantities));
    }
    this.offered = [...this.choice.options].map(({ value }) => quantities[value]);
    this.choice.selectedIndex = this.offered.findIndex((one) => keyOf(one) === keyOf(chosen));
  }

  /** @param runs the numbers of both, as api/run/numbers answers them; @param quantity of which they are */
  show(runs, quantity) {
    const ends = runs.flatMap(({ points }) => [points[0], points[points.length - 1]]).flatMap((one) => one?.[0] ?? []);
    const [first, last] = [Math.min(0, ...ends), Math.max(1, ...ends)];
    Object.assign(this, { runs, quantity, clock: new Clock(runs[0].started_at) });
    this.clock.spansDays = this.clock.date(first) !== this.clock.date(last);
    if (this.time) {
      this.time.take(first, last);
    } else {
      this.time = new TimeWindow(first, last);
      this.time.onChange(oncePerFrame(() => this.draw()));
    }
    this.element.hidden = false;
    keepText(this.note, runs.map(wordsOf).join('; '));
    this.draw();
  }

  /** Draws, as soon as there is room for it: another view can be shown. */
  draw() {
    if (!this.runs || !this.place.clientWidth) {
      return;
    }
    this.chart ??= this.begin();
    Object.assign(this.chart, { time: this.time });
    this.chart.fit(height);
    this.chart.draw(this.option());
    this.chart.describe(`Plot of ${titleOf(this.quantity)} over time: ${this.note.textContent}.`);
    this.place.dataset.quantity = titleOf(this.quantity);
  }

  begin() {
    const chart = new Chart(this.place, this.time, () => true);
    chart.onItem(({ seriesIndex, dataIndex }) => this.open(seriesIndex, this.runs[seriesIndex].points[dataIndex][2]));
    return chart;
  }

  option() {
    const axis = { axisLine: { show: true, onZero: false, lineStyle: { color: colour('line') } } };
    const name = { nameLocation: 'middle', nameTextStyle: { color: colour('text') } };
    const unit = this.runs[0].unit ? ` [${readable(this.runs[0].unit)}]` : '';
    const { from } = this.time;
    return {
      grid: { left, right, top: 12, bottom: 44, outerBoundsMode: 'none' },
      xAxis: {
        ...timeAxis(this.time, this.clock, this.chart.width),
        ...name,
        name: `time of this run, UTC${this.clock.offset(from)}`,
        nameGap: 28,
      },
      yAxis: {
        type: 'value',
        scale: true,
        ...axis,
        ...name,
        name: shortened(readable(this.quantity.parameter), 40) + unit,
        nameGap: 62,
        nameRotate: 90,
        axisLabel: { color: colour('muted'), hideOverlap: true },
        splitLine: { lineStyle: { color: colour('line') } },
      },
      series: this.runs.map((run, at) => this.seriesOf(run, at)),
    };
  }

  seriesOf({ points }, at) {
    const { name, look, symbol } = sides[at];
    return {
      type: 'scatter',
      name,
      symbol,
      symbolSize: points.length > 500 ? 5 : 8,
      itemStyle: { color: colour(look), opacity: 1 },
      data: points.map(([time, number]) => [time, number]),
      tooltip: { formatter: ({ dataIndex }) => this.wordsFor(points[dataIndex], at) },
    };
  }

  wordsFor([time, number], at) {
    const unit = this.runs[at].unit ? ` ${plain(this.runs[at].unit)}` : '';
    const value = `${shortened(plain(this.quantity.parameter), 40)}  ${number}${unit}`;
    return [value, `${lengthOf(time)} after its start`, sides[at].name].join('\n');
  }
}

function legend() {
  const list = withId('legend', make('ul'));
  list.setAttribute('aria-label', 'Colours');
  list.append(
    ...sides.map(({ name, look }) => {
      const mark = make('span', 'swatch');
      mark.style.background = `var(--${look})`;
      return make('li', '', mark, name);
    }),
  );
  return list;
}

/** A group of options for each event. */
function optionsOf(quantities) {
  const groups = new Map();
  quantities.forEach(({ event, parameter, parameter_n: n }, at) => {
    const group = groups.get(event) ?? groups.set(event, make('optgroup')).get(event);
    group.label = eventName(event);
    group.append(new Option(readable(parameter) + (n > 1 ? ` (${n})` : ''), at));
  });
  return groups.values();
}

function wordsOf({ numbers, others, points }, at) {
  const drawn =
    points.length < numbers ? `, of which ${points.length.toLocaleString('en')} show lowest and highest` : '';
  const rest = others > 0 ? `, ${count(others, 'value that is', 'values that are')} not drawn` : '';
  return `${count(numbers, 'number')} of ${sides[at].name}${drawn}${rest}`;
}
