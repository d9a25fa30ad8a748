// What timeline and plot have in common: ECharts, the colours of the page, and one way to move through time.

import { graphic, init } from './echarts.js';
import { colour } from './colours.js';
import { make } from './element.js';
import { readable } from './text.js';
import { digitsFor, ticksOf } from './time-window.js';

export const left = 150; // of both charts, so that equal times stand above each other
export const right = 40;

export const tooltipLine = 22; // pixels

export const isPrinting = () => document.documentElement.classList.contains('printing');

/** A text for a tooltip, in which ECharts would take {name|text} for a style. */
export const plain = (stored) => readable(stored).replaceAll('{', '{\u2060');

export const shortened = (text, length) => (text.length > length ? `${text.slice(0, length - 1)}…` : text);

/**
 * The axis of clock times on so many pixels. Its ticks are the same wherever time and width are. The date stands where
 * another day begins.
 */
export function timeAxis({ from, to }, clock, width, dated = clock.spansDays) {
  const { ticks, step } = ticksOf(from, to, width / (dated ? 120 : 110), clock.midnight);
  const begins = ticks.filter((at, place) => dated && clock.date(at) !== clock.date(ticks[place - 1] ?? NaN));
  const formatter = (at) => (begins.includes(at) ? `${clock.date(at)} ` : '') + clock.day(at, digitsFor(step));
  return {
    type: 'value',
    min: from,
    max: to,
    axisLabel: { customValues: ticks, hideOverlap: true, color: colour('muted'), formatter },
    axisTick: { show: true, customValues: ticks },
    axisLine: { show: true, onZero: false, lineStyle: { color: colour('line') } },
    splitLine: { show: true, lineStyle: { color: colour('line') } },
    axisPointer: { show: false },
  };
}

/** Many rectangles as one shape, which takes much less time than a shape for each. */
graphic.registerShape(
  'rectangles',
  graphic.extendShape({
    shape: { rectangles: [] },
    buildPath(path, { rectangles }) {
      rectangles.forEach(({ x, y, width, height }) => path.rect(x, y, width, height));
    },
  }),
);

export class Chart {
  constructor(element, time, movesInTime) {
    this.element = element;
    this.time = time;
    this.movesInTime = movesInTime;
    this.drawings = 0;
    this.canvas = element.appendChild(make('div', 'canvas'));
    this.canvas.setAttribute('role', 'img');
    this.echarts = init(this.canvas, null, { devicePixelRatio: Math.max(2, window.devicePixelRatio) });
    this.echarts.on('finished', () => {
      element.dataset.drawn = ++this.drawings;
    });
    this.echarts.getZr().on('mousemove', ({ offsetX }) => {
      this.pointer = offsetX;
    });
    this.listen();
  }

  /** Calls back for a click on what is drawn, unless it is the first half of a double click. */
  onItem(work) {
    this.echarts.on('click', (item) => {
      clearTimeout(this.clicked);
      this.clicked = item.event.event.detail > 1 ? null : setTimeout(work, 250, item);
    });
  }

  get width() {
    return this.echarts.getWidth() - left - right;
  }

  /** Takes the width that there is. Comes before what depends on it is computed. */
  fit(height) {
    const width = this.element.clientWidth;
    if (width !== this.echarts.getWidth() || height !== this.echarts.getHeight()) {
      this.canvas.style.height = `${height}px`;
      this.echarts.resize({ width, height });
    }
  }

  draw(option) {
    this.echarts.clear();
    this.echarts.setOption({
      animation: false,
      progressive: 0,
      backgroundColor: 'transparent',
      textStyle: { fontFamily: 'system-ui, sans-serif', color: colour('text') },
      tooltip: {
        renderMode: 'richText',
        trigger: 'item',
        confine: true,
        transitionDuration: 0,
        backgroundColor: colour('panel'),
        borderColor: colour('line'),
        padding: 8,
        textStyle: { color: colour('text'), fontSize: 12, fontFamily: 'system-ui, sans-serif' },
      },
      ...option,
    });
    this.still?.remove();
    if (isPrinting()) {
      this.standStill();
    }
  }

  /** Draws anew what an option names, and leaves the rest of the drawing. */
  change(option) {
    this.echarts.setOption(option, { replaceMerge: ['series', 'yAxis'].filter((name) => name in option) });
  }

  /** Puts a finished picture in the place of the drawing: paper does not wait for the next frame. */
  standStill() {
    const picture = this.echarts.renderToCanvas({ pixelRatio: 3 });
    this.still = this.element.appendChild(make('canvas', 'still'));
    Object.assign(this.still, { width: picture.width, height: picture.height });
    this.still.style.height = `${this.echarts.getHeight()}px`;
    this.still.getContext('2d').drawImage(picture, 0, 0);
  }

  describe(text) {
    this.canvas.setAttribute('aria-label', text);
  }

  timeAt(pointer) {
    const x = pointer.clientX - this.canvas.getBoundingClientRect().left - left;
    return this.time.from + (this.time.to - this.time.from) * Math.min(Math.max(x / this.width, 0), 1);
  }

  /** The time at a place of the pointer, by which the rectangles of one shape are told apart. */
  timeBelow(pointer) {
    const rounding = 0.01;
    return this.time.from + ((pointer - left + rounding) / this.width) * (this.time.to - this.time.from);
  }

  listen() {
    this.keys = {
      'Shift+ArrowLeft': () => this.time.pan(-0.2),
      'Shift+ArrowRight': () => this.time.pan(0.2),
      '+': () => this.time.zoom(0.5),
      '=': () => this.time.zoom(0.5),
      '-': () => this.time.zoom(2),
      0: () => this.time.showAll(),
      Home: () => this.time.showAll(),
    };
    this.element.addEventListener('keydown', (event) => {
      const work = this.keys[(event.shiftKey && event.key.startsWith('Arrow') ? 'Shift+' : '') + event.key];
      if (event.target === this.element && work && !event.ctrlKey && !event.metaKey && !event.altKey) {
        event.preventDefault();
        work();
      }
    });
    this.element.addEventListener(
      'wheel',
      (event) => {
        if (event.ctrlKey && this.movesInTime()) {
          event.preventDefault();
          this.time.zoom(event.deltaY > 0 ? 1.25 : 0.8, this.timeAt(event));
        }
      },
      { passive: false },
    );
    this.canvas.addEventListener('dblclick', (event) => {
      if (this.movesInTime()) {
        this.time.zoom(0.4, this.timeAt(event));
      }
    });
    this.canvas.addEventListener('pointerdown', (event) => this.drag(event));
  }

  drag(down) {
    if (down.button !== 0 || !this.movesInTime()) {
      return;
    }
    const perPixel = (this.time.to - this.time.from) / this.width;
    let last = down.clientX;
    const move = (event) => {
      if (Math.abs(event.clientX - last) >= 2) {
        this.time.show(
          this.time.from - (event.clientX - last) * perPixel,
          this.time.to - (event.clientX - last) * perPixel,
        );
        last = event.clientX;
      }
    };
    window.addEventListener('pointermove', move);
    window.addEventListener('pointerup', () => window.removeEventListener('pointermove', move), { once: true });
  }
}

/** Calls something once before the next picture, however often it is asked to. */
export function oncePerFrame(work) {
  let asked = false;
  return () => {
    if (!asked) {
      asked = true;
      requestAnimationFrame(() => {
        asked = false;
        work();
      });
    }
  };
}
