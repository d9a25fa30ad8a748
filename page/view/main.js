// Puts the parts of the page together.

import { Against } from './against.js';
import { showAgainst } from './against-section.js';
import { showCause } from './cause.js';
import { oncePerFrame } from './chart.js';
import { csvOfEvents, csvOfTable, download } from './csv.js';
import { Recorded } from './recorded.js';
import { showHead, showLegend } from './head.js';
import { historyOf } from './history.js';
import { LogSection } from './log-section.js';
import { Plot } from './plot.js';
import { preparePrinting } from './print.js';
import { Table } from './table.js';
import { TimeWindow } from './time-window.js';
import { Timeline } from './timeline.js';

const byId = (id) => document.getElementById(id);
const recorded = new Recorded(JSON.parse(byId('recorded').textContent));
recorded.against = recorded.raw.against ? new Against(recorded) : null;
byId('recorded').remove();
byId('licences').textContent = byId('licence-texts').textContent;

showHead(recorded);
showAgainst(recorded);
showCause(recorded, () => table.filterUnfinished());
const time = new TimeWindow(recorded.first, recorded.last);
new LogSection(recorded, time);
const table = new Table(byId('table'), recorded);
const reveal = (at) => (at === recorded.root ? showOwnHistory(true) : table.reveal(at));
const timeline = new Timeline(byId('timeline'), recorded, time, reveal);
const plot = recorded.quantities.some((quantity) => quantity.numeric)
  ? new Plot(byId('plot'), recorded, time, reveal)
  : null;
byId('plot').closest('section').hidden = plot === null;

/** Opens what a link refers to, and shows it in the timeline. */
function follow(address) {
  const at = recorded.indexOf.get(Number(/^#execution-(\d+)$/.exec(address)?.[1]));
  if (at !== undefined) {
    const [from, to] = [recorded.started[at], Math.min(recorded.endOf(at), recorded.last)];
    const margin = Math.max((to - from) * 0.1, 1e5);
    time.show(from - margin, to + margin);
    reveal(at);
    requestAnimationFrame(() => timeline.cursor.goTo(at)); // that time is drawn then
  }
}

function showOwnHistory(shown) {
  byId('own-history').setAttribute('aria-expanded', shown);
  byId('own').replaceChildren(...(shown ? [historyOf(recorded, recorded.root)] : []));
  if (shown) {
    byId('own').scrollIntoView({ block: 'nearest' });
  }
}

function showWindow() {
  const { clock } = recorded;
  const digits = time.to - time.from < 1e7 ? 3 : 0;
  byId('window').textContent = time.isWhole
    ? 'whole run'
    : `${clock.moment(time.from, digits)} – ${clock.moment(time.to, digits)}`;
}

function redraw() {
  showLegend(recorded);
  showWindow();
  timeline.draw();
  plot?.draw();
  table.draw();
}

time.onChange(
  oncePerFrame(() => {
    showWindow();
    timeline.drawWindow();
    plot?.drawWindow();
  }),
);
byId('zoom-in').addEventListener('click', () => time.zoom(0.5));
byId('zoom-out').addEventListener('click', () => time.zoom(2));
byId('zoom-all').addEventListener('click', () => time.showAll());
byId('own-history').addEventListener('click', () => showOwnHistory(byId('own').children.length === 0));
const fileName = (what) => `${recorded.raw.run.slice(0, 8)}-${what}.csv`;
byId('download').addEventListener('click', () => download(fileName('executions'), csvOfTable(table)));
const [which, eventFile] = recorded.raw.slices ? ['the kept', 'kept-events'] : ['all', 'events'];
byId('download-events').textContent = `Download ${which} events as CSV`;
byId('download-events').addEventListener('click', () => download(fileName(eventFile), csvOfEvents(recorded)));
window.addEventListener('resize', oncePerFrame(redraw));
window.matchMedia('(prefers-color-scheme: dark)').addEventListener('change', redraw);
preparePrinting(table, redraw);
redraw();
document.addEventListener('click', (event) => {
  const link = event.target.closest('a[href]');
  if (link?.hash) {
    follow(link.hash); // again, too, if it is the newest that was followed
  }
});
follow(window.location.hash);
