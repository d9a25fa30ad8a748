// Two runs beside each other: what differs, in words, and a parameter of both in one plot.

import { button, make } from '../view/element.js';
import { keepingFocus } from '../view/renew.js';
import { addressOf, queryOf } from './api.js';
import { BothPlot } from './both-plot.js';
import { configurationOf, differencesOf, mostOfEach, partingOf } from './differences.js';
import { keep, keepText } from './kept.js';
import { keyOf, partsOf, quantitiesOf } from './quantities.js';
import { RunChoice } from './run-choice.js';
import { signOf, toldOf } from './told.js';
import { Updates } from './updates.js';

const ofRuns = ['store', 'run', 'with', 'with_store'];
const ofPlot = ['event', 'parameter', 'parameter_n'];

export const compare = {
  name: 'compare',
  title: 'Compare',
  begin: (section, shell) => new Compare(section, shell),
};

class Compare {
  constructor(section, shell) {
    const { ask, address: place, live } = shell;
    Object.assign(this, { ask, place, live, chosen: {}, plotted: {}, shown: null, isShown: false });
    this.updates = new Updates(() => this.renew());
    this.own = new RunChoice('This run', shell, ({ store, guid }) => this.choose({ store, run: guid }));
    const lastGood = button('', 'Last good', () => this.choose({ with: '', with_store: '' }));
    lastGood.title = 'The newest finished run of the same activity and instrument before this one';
    const swap = button('', 'Swap', () => this.swap());
    swap.title = 'Compare the other way round';
    const takeOther = ({ store, guid }) => this.choose({ with: guid, with_store: store });
    this.other = new RunChoice('The other', shell, takeOther, [lastGood, swap]);
    this.said = make('p', 'hint');
    this.said.setAttribute('role', 'status');
    this.error = make('p', 'error');
    this.error.setAttribute('role', 'alert');
    this.links = make('p', 'links');
    this.parting = make('div', 'where-they-part');
    this.differences = make('div', 'what-differs');
    this.plot = new BothPlot({
      choose: (quantity) => this.choosePlotted(quantity),
      open: (side, execution) => this.openStep(side, execution),
    });
    section.append(
      make('h1', '', 'Compare'),
      make('div', 'choices', this.own.element, this.other.element),
      this.rules(),
      this.said,
      this.error,
      this.links,
      this.parting,
      this.plot.element,
      this.differences,
    );
    live.onState(() => this.catchUp());
    document.addEventListener('visibilitychange', () => this.catchUp());
  }

  /** What does not count as a difference. */
  rules() {
    const field = (title, parameter, placeholder) => {
      const input = make('input');
      Object.assign(input, { type: 'search', name: parameter, placeholder, maxLength: 1000 });
      input.addEventListener('change', () => this.choose({ [parameter]: namesIn(input.value) }));
      return [input, make('label', '', `${title} `, input)];
    };
    const [ignore, ignoreLabel] = field('Ignore', 'ignore', 'DateTime, File');
    const [tolerance, toleranceLabel] = field('Tolerance', 'tolerance', '0.1, Defocus=2%');
    Object.assign(this, { ignore, tolerance });
    return make('div', 'tools rules', ignoreLabel, toleranceLabel);
  }

  show(query) {
    const valuesOf = (names) => Object.fromEntries(names.map((name) => [name, query.get(name) ?? '']));
    this.isShown = true;
    this.chosen = { ...valuesOf(ofRuns), ignore: query.getAll('ignore'), tolerance: query.getAll('tolerance') };
    this.plotted = valuesOf(ofPlot);
    this.ignore.value = this.chosen.ignore.join(', ');
    this.tolerance.value = this.chosen.tolerance.join(', ');
    this.draw();
  }

  hide() {
    this.isShown = false;
  }

  /** The reader has chosen something else. */
  choose(changed) {
    Object.assign(this.chosen, changed);
    this.place.choose({ ...this.chosen, ...this.plotted });
    this.draw();
  }

  choosePlotted(quantity) {
    this.plotted = partsOf(quantity);
    this.choose({});
  }

  swap() {
    if (this.found) {
      const { store, run, against_store: otherStore, against } = this.found;
      this.choose({ store: otherStore, run: against.guid, with: run.guid, with_store: store });
    }
  }

  /** Shows what is chosen; asks for it, unless it is there. */
  draw() {
    const wanted = queryOf(this.chosen);
    if (wanted === this.shown && this.found) {
      this.answer((signal) => this.drawPlot(signal));
      this.catchUp();
      return;
    }
    this.clear();
    this.shown = wanted;
    if (!this.chosen.run) {
      this.own.show(null);
      this.other.show(null);
      keepText(this.said, 'Choose a run; it is compared with the last good one, or with another that you choose.');
      this.own.open();
      return;
    }
    keepText(this.said, 'Comparing …');
    this.answer((signal) => this.compare(signal));
  }

  clear() {
    this.asking?.abort();
    Object.assign(this, { found: null, usual: null });
    [this.error, this.said].forEach((words) => keepText(words, ''));
    [this.links, this.parting, this.differences].forEach((part) => keep(part, null, () => part.replaceChildren()));
    this.plot.clear();
  }

  /** Asks, in the place of what was asked before; answers whether it did not fail. */
  async answer(work) {
    this.asking?.abort();
    this.asking = new AbortController();
    const { signal } = this.asking;
    try {
      await work(signal);
      [this.error, this.said].forEach((words) => keepText(words, ''));
    } catch (error) {
      if (!signal.aborted) {
        await this.complain(error);
      }
      return signal.aborted;
    }
    return true;
  }

  async compare(signal) {
    const { state } = this.live;
    const asked = this.found ? this.pair : this.chosen; // what is "last" can be another one meanwhile
    const found = await this.ask('api/compare', { ...asked, first: mostOfEach }, signal);
    Object.assign(this, { found, asked: state });
    keepingFocus(() => this.tell());
    const { parameters } = await this.ask('api/parameters', { store: found.store, run: found.run.guid }, signal);
    this.parameters = parameters;
    await this.drawPlot(signal);
    this.catchUp();
  }

  /** The runs with their stores, also where the reader has chosen the last good one. */
  get sides() {
    const { store, run, against_store: otherStore, against } = this.found;
    return [
      { ...run, store },
      { ...against, store: otherStore },
    ];
  }

  /** Both as parameters, with what does not count. */
  get pair() {
    const [own, other] = this.sides;
    return { ...this.chosen, store: own.store, run: own.guid, with: other.guid, with_store: other.store };
  }

  /** Says what was found; what did not change stays as it is. */
  tell() {
    const { found } = this;
    const address = addressOf('run', this.pair);
    [this.own, this.other].forEach((choice, at) => choice.show(this.sides[at]));
    keep(this.differences, [found.summary, found.differences, found.configuration, found.left_out], (place) =>
      place.replaceChildren(make('h2', '', 'What differs'), ...differencesOf(found), ...configurationOf(found)),
    );
    keep(this.parting, [found.parting, address], (place) => place.replaceChildren(...partingOf(found, address)));
    keep(this.links, address, (place) => {
      const link = make('a', '', 'Both with timeline and table');
      link.href = address;
      place.replaceChildren(link);
    });
  }

  /** Shows the numbers that the reader has chosen, or else those that say most of what differs. */
  async drawPlot(signal) {
    const offered = quantitiesOf(this.found, this.parameters ?? []);
    const wanted = this.plotted.parameter
      ? { ...this.plotted, parameter_n: Number(this.plotted.parameter_n) || 1 }
      : null;
    const chosen = wanted ?? (this.usual ??= offered[0]);
    if (!chosen) {
      return;
    }
    const isOffered = offered.some((one) => keyOf(one) === keyOf(chosen));
    const numbersOf = ({ store, guid }) =>
      this.ask('api/run/numbers', { store, run: guid, ...partsOf(chosen) }, signal);
    const runs = await Promise.all(this.sides.map(numbersOf));
    this.plot.offer(isOffered ? offered : [chosen, ...offered], chosen);
    this.plot.show(runs, chosen);
  }

  /** Opens the page of a run, or of both, at one of its steps. */
  openStep(side, execution) {
    const { store, guid } = this.sides[side];
    const address = side === 0 ? addressOf('run', this.pair) : addressOf('run', { store, run: guid });
    window.location.assign(`${address}#execution-${execution}`);
  }

  /** Asks again while one of the runs is recorded and somebody looks. */
  catchUp() {
    const isOver = this.found && this.sides.every(({ state }) => state === 'finished');
    if (!this.found || isOver || !this.isShown || document.hidden) {
      return;
    }
    const isOne = (store, guid) => this.sides.some((one) => one.store === store && one.guid === guid);
    const [now, then] = [this.live.state, this.asked].map((state) => signOf(state, toldOf(state, isOne), false));
    if (now !== then) {
      this.updates.want();
    }
  }

  async renew() {
    return !this.found || this.answer((signal) => this.compare(signal));
  }

  /** Says why there is no comparison, and still what is chosen. */
  async complain({ message }) {
    const { store, run, with: other } = this.chosen;
    keepText(this.said, '');
    keepText(this.error, message);
    if (!this.found) {
      this.other.show(null, other ? other : 'none');
      this.own.show(null, run);
      await this.ask('api/run', { store, run }).then(
        (known) => this.own.show(known),
        () => {},
      );
    }
  }
}

const namesIn = (text) =>
  text
    .split(',')
    .map((part) => part.trim())
    .filter((part) => part !== '');
