// The page of a run: its parts, each of which takes what is recorded later.

import { Against } from './against.js';
import { showAgainst } from './against-section.js';
import { showCause } from './cause.js';
import { oncePerFrame } from './chart.js';
import { csvOfEvents, csvOfTable, download } from './csv.js';
import { showFacts, showHead, showLegend } from './head.js';
import { History } from './history.js';
import { LogSection } from './log-section.js';
import { Plot } from './plot.js';
import { preparePrinting } from './print.js';
import { Recorded } from './recorded.js';
import { keepingFocus } from './renew.js';
import { Table } from './table.js';
import { TimeWindow } from './time-window.js';
import { Timeline } from './timeline.js';

const byId = (id) => document.getElementById(id);

/** What the data of a page say, also of the run with which it is compared. */
export function read(raw) {
  const recorded = new Recorded(raw);
  recorded.against = raw.against ? new Against(recorded) : null;
  return recorded;
}

export class RunPage {
  /** @param raw the data: page/FORM.md. */
  constructor(raw) {
    const recorded = read(raw);
    this.recorded = recorded;
    byId('licences').textContent = byId('licence-texts').textContent;
    showHead(recorded);
    this.tell();
    this.time = new TimeWindow(recorded.first, recorded.last);
    new LogSection(recorded, this.time);
    this.table = new Table(byId('table'), recorded);
    this.reveal = (at) => (at === this.recorded.root ? this.showOwnHistory(true) : this.table.reveal(at));
    this.timeline = new Timeline(byId('timeline'), recorded, this.time, this.reveal);
    this.listen();
    preparePrinting(this.table, () => this.redraw());
    this.offerPlot();
    this.redraw();
    this.follow(window.location.hash);
  }

  /**
   * Shows what was recorded since, and leaves what the reader has chosen and opened.
   * @returns whether the data are of the same run, and go on where those before ended; if not, nothing is shown.
   */
  take(raw) {
    const recorded = read(raw);
    const { number } = this.recorded;
    if (raw.run !== this.recorded.raw.run || number.some((one, at) => one !== recorded.number[at])) {
      return false;
    }
    keepingFocus(() => this.show(recorded));
    return true;
  }

  show(recorded) {
    this.recorded = recorded;
    this.tell();
    this.time.take(recorded.first, recorded.last);
    this.timeline.take(recorded);
    this.takeForPlot();
    this.table.take(recorded);
    this.own?.take(recorded);
    showLegend(recorded);
    this.showWindow();
  }

  tell() {
    showFacts(this.recorded);
    showAgainst(this.recorded);
    showCause(this.recorded, () => this.table.filterUnfinished());
    byId('download-events').textContent = `Download ${this.recorded.raw.slices ? 'the kept' : 'all'} events as CSV`;
  }

  /** There is a plot as soon as there are numbers. */
  offerPlot() {
    if (!this.plot && this.recorded.quantities.some((quantity) => quantity.numeric)) {
      this.plot = new Plot(byId('plot'), this.recorded, this.time, this.reveal);
    }
    byId('plot').closest('section').hidden = !this.plot;
  }

  takeForPlot() {
    if (this.plot) {
      this.plot.take(this.recorded);
    } else {
      this.offerPlot();
      this.plot?.draw();
    }
  }

  listen() {
    const { time } = this;
    time.onChange(
      oncePerFrame(() => {
        this.showWindow();
        this.timeline.drawWindow();
        this.plot?.drawWindow();
      }),
    );
    const onClick = (id, work) => byId(id).addEventListener('click', work);
    onClick('zoom-in', () => time.zoom(0.5));
    onClick('zoom-out', () => time.zoom(2));
    onClick('zoom-all', () => time.showAll());
    onClick('own-history', () => this.showOwnHistory(!this.own));
    const fileName = (what) => `${this.recorded.raw.run.slice(0, 8)}-${what}.csv`;
    onClick('download', () => download(fileName('executions'), csvOfTable(this.table)));
    onClick('download-events', () => {
      download(fileName(this.recorded.raw.slices ? 'kept-events' : 'events'), csvOfEvents(this.recorded));
    });
    const redraw = () => this.redraw();
    window.addEventListener('resize', oncePerFrame(redraw));
    window.matchMedia('(prefers-color-scheme: dark)').addEventListener('change', redraw);
    document.addEventListener('click', (event) => {
      const link = event.target.closest('a[href]');
      if (link?.hash) {
        this.follow(link.hash); // again, too, if it is the newest that was followed
      }
    });
  }

  /** Opens what a link refers to, and shows it in the timeline. */
  follow(address) {
    const { recorded, time } = this;
    const at = recorded.indexOf.get(Number(/^#execution-(\d+)$/.exec(address)?.[1]));
    if (at !== undefined) {
      const [from, to] = [recorded.started[at], Math.min(recorded.endOf(at), recorded.last)];
      const margin = Math.max((to - from) * 0.1, 1e5);
      time.show(from - margin, to + margin);
      this.reveal(at);
      requestAnimationFrame(() => this.timeline.cursor.goTo(at)); // that time is drawn then
    }
  }

  showOwnHistory(shown) {
    this.own = shown ? (this.own ?? new History(this.recorded, this.recorded.root)) : null;
    byId('own-history').setAttribute('aria-expanded', shown);
    byId('own').replaceChildren(...(shown ? [this.own.element] : []));
    if (shown) {
      byId('own').scrollIntoView({ block: 'nearest' });
    }
  }

  showWindow() {
    const { clock } = this.recorded;
    const { from, to, isWhole } = this.time;
    const digits = to - from < 1e7 ? 3 : 0;
    const words = isWhole ? 'whole run' : `${clock.moment(from, digits)} – ${clock.moment(to, digits)}`;
    if (byId('window').textContent !== words) {
      byId('window').textContent = words; // which is read out
    }
  }

  redraw() {
    showLegend(this.recorded);
    this.showWindow();
    this.timeline.draw();
    this.plot?.draw();
    this.table.draw();
  }
}
