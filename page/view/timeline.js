// The timeline: executions and events in their lanes. What is closer than two pixels becomes bars, the higher the more
// there is.

import { Chart, isPrinting, left, plain, right, shortened, timeAxis, tooltipLine } from './chart.js';
import { lengthOf } from './clock.js';
import { colour, inkOn, palette } from './colours.js';
import { lastOf } from './lists.js';
import { partingLine } from './parting-line.js';
import { Cursor } from './cursor.js';
import { closest, Items } from './items.js';
import { lanesOf } from './lanes.js';
import { lastBefore } from './search.js';
import { running, statusName } from './statuses.js';
import { count, eventName, noName, readable } from './text.js';
import { unitAfter } from './units.js';
import { valueText } from './values.js';

const top = 30; // above the lanes: the axis
const rooms = { onScreen: { levels: 24, kinds: 40, subLanes: 16 }, onPaper: { levels: 12, kinds: 8, subLanes: 4 } };

export class Timeline {
  constructor(element, recorded, time, open) {
    Object.assign(this, { recorded, time, element });
    this.chart = new Chart(element, time, () => true);
    this.chart.onItem(({ dataIndex, event }) => {
      const item = this.itemAt(dataIndex, event.offsetX);
      if (item.execution !== undefined) {
        open(item.execution);
      }
    });
    this.cursor = new Cursor(this, document.getElementById('said'), open);
  }

  draw() {
    this.chart.draw(this.whole());
    this.cursor.follow();
  }

  /** Draws what was recorded since. */
  take(recorded) {
    const { lanes } = this;
    Object.assign(this, { recorded, known: null });
    const whole = this.whole();
    if (this.lanes.length < lanes.length) {
      this.chart.draw(whole);
    } else {
      this.chart.change(whole);
    }
    this.cursor.take(lanes);
  }

  whole() {
    this.lanes = this.lanesFor(isPrinting() ? rooms.onPaper : rooms.onScreen);
    const last = lastOf(this.lanes);
    this.height = last.top + last.height;
    this.chart.fit(this.height + 38);
    const { recorded } = this;
    this.chart.describe(
      `Timeline of ${count(recorded.count, 'execution')} and ${count(recorded.raw.recorded, 'event')}, ` +
        `${recorded.unfinished.length} unfinished; the table below has the same by rows.`,
    );
    return {
      grid: { left, right, top, height: this.height, outerBoundsMode: 'none' },
      yAxis: { type: 'value', min: 0, max: this.height, inverse: true, show: false },
      graphic: this.lanes.map((lane, place) => ({ id: `lane ${place}`, ...this.labelOf(lane) })),
      ...this.inTheTimeShown(),
    };
  }

  /** The time shown has changed. */
  drawWindow() {
    this.chart.change(this.inTheTimeShown());
    this.cursor.follow();
  }

  inTheTimeShown() {
    const { recorded, time } = this;
    this.colourOf = palette();
    this.view = new Items(recorded, time, this.chart.width);
    this.items = this.lanes.flatMap((lane) => this.view.of(lane));
    const drawn = { execution: 0, event: 0, sign: 0, bar: 0 };
    this.items.flatMap((item) => item.marks ?? [item]).forEach(({ type }) => ++drawn[type]);
    Object.assign(this.element.dataset, {
      executions: drawn.execution,
      events: drawn.event,
      bars: drawn.bar,
      from: time.from,
      to: time.to,
    });
    return {
      xAxis: { ...timeAxis(time, recorded.clock, this.chart.width), position: 'top' },
      series: [this.series(this.items), ...partingLine(recorded, this.height)],
    };
  }

  series(items) {
    return {
      type: 'custom',
      clip: true,
      progressive: 0,
      data: items.map((item) => [item.from, item.top]),
      renderItem: (params) => this.shapeOf(items[params.dataIndex], params.coordSys),
      tooltip: { formatter: ({ dataIndex }) => this.wordsFor(this.itemAt(dataIndex, this.chart.pointer)) },
    };
  }

  /** What the pointer is on at a place. */
  itemAt(dataIndex, pointer) {
    const item = this.items[dataIndex];
    return item.type === 'marks' ? lastBefore(item.marks, this.chart.timeBelow(pointer)) : item;
  }

  lanesFor(room) {
    this.known ??= new Map();
    if (!this.known.has(room)) {
      this.known.set(room, lanesOf(this.recorded, room));
    }
    return this.known.get(room);
  }

  labelOf(lane) {
    return {
      type: 'text',
      left: 0,
      top: top + lane.top + lane.height / 2 - 7,
      silent: true,
      style: {
        text: `${lane.subLanes ? readable(lane.label) : eventName(lane.label)}  ${lane.total.toLocaleString('en')}`,
        width: left - 12,
        overflow: 'truncate',
        fill: colour(lane.subLanes ? 'text' : 'muted'),
        font: '12px system-ui, sans-serif',
      },
    };
  }

  rectangleOf(item, area) {
    const x = Math.max(area.x + this.view.pixel(item.from), area.x - 5);
    const end =
      item.to === Infinity ? area.x + area.width : Math.min(area.x + this.view.pixel(item.to), area.x + area.width + 5);
    return {
      x,
      y: area.y + item.top,
      width: Math.max(end - x, item.type === 'bar' ? closest - 0.5 : 1.5),
      height: item.height,
    };
  }

  /** Where an item is drawn in the element. */
  placeOf(item) {
    return this.rectangleOf(item, { x: left, y: top, width: this.chart.width });
  }

  shapeOf(item, area) {
    if (item.type === 'marks') {
      const rectangles = item.marks.map((mark) => this.rectangleOf(mark, area));
      return { type: 'rectangles', shape: { rectangles }, style: { fill: this.colourOf(item.look) } };
    }
    const shape = this.rectangleOf(item, area);
    const isOpen = this.recorded.status[item.execution] === running;
    const ink = this.colourOf(item.look);
    const style = isOpen ? { fill: this.hatched(ink), stroke: ink, lineWidth: 1 } : { fill: ink };
    const rect = { type: 'rect', shape: { ...shape, r: shape.width > 5 ? 2 : 0 }, style };
    if (shape.width > 36 && item.height > 14) {
      rect.textConfig = { position: 'insideLeft', distance: 6 };
      rect.textContent = {
        type: 'text',
        silent: true,
        style: {
          text: readable(this.recorded.node[item.execution]),
          width: shape.width - 12,
          overflow: 'truncate',
          ellipsis: '…',
          fill: isOpen ? this.colourOf('text') : inkOn(ink),
          font: '11px system-ui, sans-serif',
        },
      };
    }
    return rect;
  }

  /** Stripes for what did not finish. */
  hatched(ink) {
    if (this.hatch?.ink !== ink) {
      const image = document.createElement('canvas');
      image.width = image.height = 16;
      const pen = image.getContext('2d');
      pen.globalAlpha = 0.28;
      pen.fillStyle = ink;
      pen.fillRect(0, 0, 16, 16);
      pen.globalAlpha = 1;
      pen.strokeStyle = ink;
      pen.lineWidth = 3;
      for (const shift of [-16, 0, 16]) {
        pen.beginPath();
        pen.moveTo(shift - 2, 18);
        pen.lineTo(shift + 18, -2);
        pen.stroke();
      }
      this.hatch = { ink, pattern: { image, repeat: 'repeat', scaleX: 0.5, scaleY: 0.5 } };
    }
    return this.hatch.pattern;
  }

  /** What is said of an item; of the parameters of an event as many as there is room for in a tooltip, or so many. */
  wordsFor(item, most = Math.max(1, Math.floor(this.height / tooltipLine) - 2)) {
    if (item.type === 'bar') {
      const within = `${item.total.toLocaleString('en')} within ${lengthOf(item.to - item.from)}`;
      return `${within}\nfrom ${this.recorded.clock.moment(item.from, 6)}`;
    }
    if (item.type === 'sign') {
      return item.sign.words.map((line) => shortened(plain(line), 90)).join('\n');
    }
    return item.type === 'event' ? this.wordsForEvent(item.event, most) : this.wordsForExecution(item);
  }

  wordsForEvent({ batch, row, at, execution }, most) {
    const { name, parameters } = batch.shape;
    const lines = parameters.slice(0, most).map(([parameter, kind], place) => {
      const value = valueText(batch.values[place][row], kind);
      const unit = plain(unitAfter(this.recorded, parameter));
      return `${shortened(plain(parameter), 30)}  ${shortened(plain(value), 40)}${unit}`;
    });
    const title = `${shortened(plain(name) || noName, 40)} of ${shortened(plain(this.recorded.node[execution]), 60)}`;
    const rest = parameters.length > most ? [`and ${parameters.length - most} more`] : [];
    return [title, this.recorded.clock.moment(at, 6), ...lines, ...rest].join('\n');
  }

  wordsForExecution({ execution, from, to }) {
    const { recorded } = this;
    const code = recorded.status[execution];
    return [
      shortened(plain(recorded.node[execution]), 60),
      plain(recorded.versions.get(recorded.version[execution])?.name ?? ''),
      `started ${recorded.clock.moment(from, 6)}`,
      code === running ? 'did not finish' : `${statusName(code)} after ${lengthOf(to - from)}`,
      count(recorded.eventsOf[execution].length, 'event') + (recorded.raw.slices ? ' kept' : ''),
    ].join('\n');
  }
}
