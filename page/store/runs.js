// All runs, the newest first, as far as the reader asks for them.

import { lengthOf } from '../view/clock.js';
import { button, make } from '../view/element.js';
import { statusName } from '../view/statuses.js';
import { count } from '../view/text.js';
import { addressOf } from './api.js';
import { keepText } from './kept.js';
import { millisecondsOf, moment } from './moment.js';
import { filterOf, RunFilter } from './run-filter.js';
import { RunGrid } from './run-grid.js';
import { keyOf, RunList } from './run-list.js';
import { linkToRun, name, stateBadge, stateName } from './run-words.js';

const mostChosen = 2;

export const runs = {
  name: 'runs',
  title: 'Runs',
  begin: (section, shell) => new Runs(section, shell),
};

class Runs {
  constructor(section, { address, ask, live }) {
    Object.assign(this, { address, live, askServer: ask, chosen: [], isShown: false, above: 0 });
    this.filter = new RunFilter((filter) => this.choose(filter));
    this.list = new RunList(ask, () => this.draw());
    this.grid = new RunGrid(columns, {
      keyOf,
      open: (run) => window.location.assign(addressOfRun(run)),
      choose: (run) => this.pick(run),
      isChosen: (run) => this.chosen.some((one) => keyOf(one) === keyOf(run)),
      nearEnd: () => this.list.more(),
      end: () => this.loadAll(),
      scrolled: () => this.drawNewer(),
      printed: (rows) => keepText(this.paper, this.wordsOnPaper(rows)),
    });
    this.said = make('p', 'hint');
    this.said.setAttribute('role', 'status');
    this.newer = button('', '', () => {
      this.grid.toTop();
      this.draw();
    });
    this.newer.hidden = true;
    this.bar = make('div', 'bar compare');
    this.keys = make('p', 'hint', 'Arrows go from run to run, Enter opens one, Space chooses it to compare.');
    this.paper = make('p', 'hint on-paper');
    const counts = make('div', 'bar counts', this.said, this.newer, this.bar);
    section.append(make('h1', '', 'Runs'), this.filter.form, this.filter.error, counts, this.paper);
    section.append(this.grid.element, this.keys);
    live.onState((state) => this.take(state));
  }

  show(chosen) {
    this.isShown = true;
    const filter = filterOf(chosen);
    this.filter.show(filter);
    this.ask(filter);
    this.offerNames();
  }

  async offerNames() {
    const { stores } = await this.askServer('api/stores').catch(() => ({ stores: [] }));
    this.filter.offerNames(stores);
  }

  hide() {
    this.isShown = false;
  }

  /** The reader has chosen something else. */
  choose(filter) {
    this.address.choose(filter);
    this.ask(filter);
  }

  ask(filter) {
    const isOther = JSON.stringify(filter) !== JSON.stringify(this.list.filter);
    if (isOther) {
      this.grid.toTop();
      this.above = 0;
      this.list.load(filter);
    } else {
      this.list.refresh();
    }
  }

  /** Looks again when a run began, ended or stopped. */
  take(state) {
    this.filter.offer(state);
    const standing = state.instruments.map(({ runs: open, newest }) => [
      newest?.run,
      newest?.state,
      open.map((run) => [run.run, run.state]),
    ]);
    const changed = JSON.stringify(standing) !== this.standing;
    this.standing = JSON.stringify(standing);
    if (changed && this.isShown) {
      this.list.refresh();
    }
  }

  async loadAll() {
    while (this.list.next !== null && this.list.error === '') {
      await this.list.more(500);
    }
  }

  draw() {
    const { runs: found, isWhole, isLoading, error } = this.list;
    this.filter.complain(error);
    this.above += this.grid.show(found, isWhole ? found.length : -1);
    this.drawNewer();
    if (isLoading) {
      return;
    }
    const words =
      found.length === 0 ? 'No run is like that' : `${count(found.length, 'run')}${isWhole ? '' : ' so far'}`;
    keepText(this.said, error ? '' : words);
  }

  /** What is left out where so many rows are on paper. */
  wordsOnPaper(rows) {
    const { runs: found, isWhole } = this.list;
    const left = found.length - rows;
    const parts = [...(left > 0 ? [`${left.toLocaleString('en')} more are left out`] : [])];
    return [`${count(rows, 'run')} on paper`, ...parts, ...(isWhole ? [] : ['older ones were not loaded'])].join('; ');
  }

  /** Says how many runs came above what is being read. */
  drawNewer() {
    this.above = this.grid.isAtTop ? 0 : Math.max(0, this.above);
    this.newer.hidden = this.above === 0;
    keepText(this.newer, `${count(this.above, 'newer run')} above`);
  }

  /** Chooses a run to compare, or no longer; of more than two the first one is let go. */
  pick(run) {
    const others = this.chosen.filter((one) => keyOf(one) !== keyOf(run));
    this.chosen = others.length < this.chosen.length ? others : [...others, run].slice(-mostChosen);
    this.grid.draw();
    const [one, other] = [...this.chosen].sort((a, b) => (a.started_at < b.started_at ? 1 : -1));
    this.bar.replaceChildren(...(one ? [linkToCompare(one, other)] : []));
  }
}

const addressOfRun = ({ store, guid }) => addressOf('run', { store, run: guid });

function linkToCompare(one, other) {
  const words = other ? ['Compare ', name(one.node), ' with ', name(other.node)] : ['Compare with the last good run'];
  const link = make('a', '', ...words);
  const against = other ? { with: other.guid, with_store: other.store } : {};
  link.href = addressOf('compare', { store: one.store, run: one.guid, ...against });
  return link;
}

/** The columns of velora-ts runs. */
const columns = [
  { title: 'Compare', className: 'choose', shown: () => '', cell: () => [make('span', 'box')] },
  { title: 'Run', className: 'guid', shown: (run) => run.guid, cell: (run) => [guidOf(run)] },
  { title: 'Started', className: 'time', shown: (run) => run.started_at, cell: (run) => [moment(run.started_at)] },
  { title: 'Until', className: 'time', shown: untilOf, cell: (run) => [moment(untilOf(run))] },
  { title: 'Duration', className: 'length', shown: durationOf, cell: (run) => [durationOf(run)] },
  { title: 'State', className: 'word', shown: stateOf, cell: (run) => [stateBadge(run.state, stateOf(run))] },
  { title: 'Instrument', className: 'text', shown: (run) => run.instrument, cell: (run) => [name(run.instrument)] },
  {
    title: 'Activity',
    className: 'text',
    shown: (run) => [run.activity, run.version],
    cell: (run) => [name(run.activity), ' ', name(run.version, ' ')],
  },
  { title: 'Node', className: 'text', shown: (run) => run.node, cell: (run) => [name(run.node)] },
  { title: 'Note', className: 'text', shown: (run) => run.notes, cell: (run) => noteOf(run.notes) },
];

function guidOf(run) {
  const link = linkToRun(run.store, run.guid, name(run.guid.slice(0, 8)));
  link.title = run.guid;
  link.tabIndex = -1; // the table is one stop for the keyboard
  return link;
}

function untilOf({ unfinished, status_at: ended, last_recorded_at: last }) {
  return unfinished ? last : (ended ?? last);
}

function durationOf(run) {
  const milliseconds = millisecondsOf(untilOf(run)) - millisecondsOf(run.started_at);
  return lengthOf(run.unfinished || run.seconds === null ? milliseconds * 1000 : run.seconds * 1e6);
}

function stateOf({ unfinished, state, status }) {
  return unfinished ? stateName(state) : statusName(status);
}

/** The newest cause or tag, as velora-ts runs says it. */
function noteOf(notes) {
  const newest = notes.filter(({ kind }) => kind === 'cause' || kind === 'tag').pop();
  if (!newest) {
    return notes.length === 0 ? [] : [count(notes.length, 'note')];
  }
  return [name(newest.text), ...(notes.length > 1 ? [` (+${notes.length - 1})`] : [])];
}
