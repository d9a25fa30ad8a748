// What the page of a run shows of another one: where they first part, and a parameter of both in one plot.

import { showAgainst } from '../view/against-section.js';
import { oncePerFrame } from '../view/chart.js';
import { make } from '../view/element.js';
import { showLegend } from '../view/head.js';
import { Plot } from '../view/plot.js';
import { read } from '../view/run-page.js';
import { TimeWindow } from '../view/time-window.js';

const withId = (id, element) => Object.assign(element, { id });

export class BothRuns {
  constructor() {
    this.parting = withId('against', make('section'));
    this.plot = make('section', 'both-plotted');
    this.clear();
    const redraw = oncePerFrame(() => this.redraw());
    window.addEventListener('resize', redraw);
    window.matchMedia('(prefers-color-scheme: dark)').addEventListener('change', redraw);
  }

  clear() {
    this.drawn?.chart.echarts.dispose();
    Object.assign(this, { raw: null, drawn: null });
    this.parting.hidden = this.plot.hidden = true;
    this.parting.replaceChildren();
    this.plot.replaceChildren();
  }

  /** @param address of the page of both runs */
  show(raw, address) {
    Object.assign(this, { raw, address });
    this.redraw();
  }

  /** Draws what is to be shown, as soon as there is room for it: another view can be shown, or the window be closed. */
  redraw() {
    if (!this.raw || !this.plot.parentElement.clientWidth) {
      return;
    }
    if (this.drawn) {
      this.drawn.draw();
      return;
    }
    const recorded = read(this.raw);
    showAgainst(recorded);
    // A step is shown by the page of the run.
    this.parting.querySelectorAll('a[href^="#"]').forEach((link) => (link.href = this.address + link.hash));
    if (recorded.quantities.some(({ numeric }) => numeric)) {
      this.plot.append(...plotParts());
      this.plot.hidden = false;
      showLegend(recorded);
      const time = new TimeWindow(recorded.first, recorded.last);
      const open = (at) => window.location.assign(`${this.address}#execution-${recorded.number[at]}`);
      this.drawn = new Plot(document.getElementById('plot'), recorded, time, open);
      time.onChange(oncePerFrame(() => this.drawn?.drawWindow()));
      this.drawn.draw();
    }
  }
}

/** The elements that a plot takes. */
function plotParts() {
  const title = withId('plot-title', make('h2', '', 'Both in one plot'));
  const choice = (words, id) => make('label', '', `${words} `, withId(id, make('select')));
  const legend = withId('legend', make('ul'));
  legend.setAttribute('aria-label', 'Colours');
  const note = withId('plot-note', make('span', 'hint'));
  note.setAttribute('aria-live', 'polite');
  const plot = withId('plot', make('div', 'chart'));
  Object.entries({ role: 'group', tabindex: 0, 'aria-labelledby': title.id, 'aria-describedby': 'plot-keys' }).forEach(
    ([name, value]) => plot.setAttribute(name, value),
  );
  const keys = 'Drag to pan, Ctrl and wheel to zoom; Shift and arrows to pan, + and − to zoom, 0 for the whole run.';
  return [
    make('div', 'bar', title, legend, make('span', 'tools', choice('Show', 'plot-y'), choice('over', 'plot-x')), note),
    plot,
    withId('plot-keys', make('p', 'hint', keys)),
  ];
}
