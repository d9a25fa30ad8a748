// Two runs beside each other: what differs, in words, and a parameter of both in one plot.

import { button, make } from '../view/element.js';
import { queryOf, addressOf } from './api.js';
import { BothRuns } from './both-runs.js';
import { configurationOf, differencesOf, mostOfEach } from './differences.js';
import { keepText } from './kept.js';
import { RunChoice } from './run-choice.js';

export const compare = {
  name: 'compare',
  title: 'Compare',
  begin: (section, shell) => new Compare(section, shell),
};

class Compare {
  constructor(section, shell) {
    Object.assign(this, { ask: shell.ask, address: shell.address, chosen: {}, shown: null });
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
    this.differences = make('div', 'what-differs');
    this.both = new BothRuns();
    section.append(
      make('h1', '', 'Compare'),
      make('div', 'choices', this.own.element, this.other.element),
      this.rules(),
      this.said,
      this.error,
      this.links,
      this.both.parting,
      this.differences,
      this.both.plot,
    );
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
    this.chosen = {
      ...Object.fromEntries(['store', 'run', 'with', 'with_store'].map((name) => [name, query.get(name) ?? ''])),
      ignore: query.getAll('ignore'),
      tolerance: query.getAll('tolerance'),
    };
    this.ignore.value = this.chosen.ignore.join(', ');
    this.tolerance.value = this.chosen.tolerance.join(', ');
    this.draw();
  }

  /** The reader has chosen something else. */
  choose(changed) {
    Object.assign(this.chosen, changed);
    this.address.choose(this.chosen);
    this.draw();
  }

  swap() {
    if (this.found) {
      const { store, run, against_store: otherStore, against } = this.found;
      this.choose({ store: otherStore, run: against.guid, with: run.guid, with_store: store });
    }
  }

  /** Compares what is chosen, unless that is shown. */
  async draw() {
    const wanted = queryOf(this.chosen);
    if (wanted === this.shown) {
      this.both.redraw();
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
    this.asking = new AbortController();
    const { signal } = this.asking;
    keepText(this.said, 'Comparing …');
    try {
      await this.compare(signal);
      keepText(this.said, '');
    } catch (error) {
      if (!signal.aborted) {
        this.complain(error);
      }
    }
  }

  clear() {
    this.asking?.abort();
    this.found = null;
    this.error.textContent = '';
    this.links.replaceChildren();
    this.differences.replaceChildren();
    this.both.clear();
  }

  async compare(signal) {
    const found = await this.ask('api/compare', { ...this.chosen, first: mostOfEach }, signal);
    this.found = found;
    this.own.show({ ...found.run, store: found.store });
    this.other.show({ ...found.against, store: found.against_store });
    this.differences.replaceChildren(
      make('h2', '', 'What differs'),
      ...differencesOf(found),
      ...configurationOf(found),
    );
    const pair = {
      ...this.chosen,
      store: found.store,
      run: found.run.guid,
      with: found.against.guid,
      with_store: found.against_store,
    };
    const link = make('a', '', 'Both with timeline and table');
    link.href = addressOf('run', pair);
    this.links.replaceChildren(link);
    this.both.show(await this.ask('api/run/data', pair, signal), addressOf('run', pair));
  }

  /** Says why there is no comparison, and still what is chosen. */
  async complain({ message }) {
    const { store, run, with: other } = this.chosen;
    keepText(this.said, '');
    this.error.textContent = message;
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
