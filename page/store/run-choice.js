// A run that the reader chooses: what is chosen, and a list to choose another one from.

import { button, make } from '../view/element.js';
import { count } from '../view/text.js';
import { keepText } from './kept.js';
import { moment } from './moment.js';
import { linkToRun, name, plainName, stateBadge } from './run-words.js';
import { storeName } from './store-names.js';

const typing = 200; // milliseconds without a key after which runs are looked for
const mostFound = 20;

export class RunChoice {
  /**
   * @param title what the run is for
   * @param choose called with the run that the reader has chosen, as api/runs has it
   * @param others buttons beside the one that opens the list
   */
  constructor(title, { ask, live }, choose, others = []) {
    Object.assign(this, { ask, live, choose, title });
    this.facts = make('p', 'facts', '–');
    this.opener = button('', 'Choose another', () => this.toggle());
    this.opener.setAttribute('aria-label', `${title}: choose another`);
    this.instrument = make('select', '', new Option('any instrument', ''));
    this.instrument.setAttribute('aria-label', 'Instrument');
    this.instrument.addEventListener('change', () => this.find());
    this.text = make('input');
    Object.assign(this.text, { type: 'search', placeholder: 'guid, node, activity, note', maxLength: 1000 });
    this.text.addEventListener('input', () => {
      clearTimeout(this.waiting);
      this.waiting = setTimeout(() => this.find(), typing);
    });
    this.said = make('p', 'hint');
    this.said.setAttribute('role', 'status');
    this.found = make('ul', 'found');
    const tools = make('div', 'tools', make('label', '', 'Find ', this.text), this.instrument);
    this.panel = make('div', 'panel', tools, this.said, this.found);
    const heading = make('h2', '', title);
    this.element = make(
      'div',
      'run-choice',
      heading,
      this.facts,
      make('div', 'tools', this.opener, ...others),
      this.panel,
    );
    this.panel.addEventListener('keydown', (event) => event.key === 'Escape' && this.close());
    this.hide();
  }

  /** Shows a run, as api/runs has it; null for none, of which the words say why. */
  show(run, words = 'none chosen') {
    this.facts.replaceChildren(...(run ? this.factsOf(run, true) : [words]));
  }

  factsOf(run, isLink) {
    const parts = [name(run.instrument), name(run.activity), moment(run.started_at), run.guid.slice(0, 8)];
    const node = isLink ? linkToRun(run.store, run.guid, name(run.node)) : make('strong', '', name(run.node));
    const facts = [...parts, ...storeName(this.live.state?.stores ?? [], run.store)].flatMap((part) => [' · ', part]);
    return [node, ' ', stateBadge(run.state), ...facts];
  }

  hide() {
    this.panel.hidden = true;
    this.opener.setAttribute('aria-expanded', 'false');
  }

  close() {
    this.hide();
    this.opener.focus();
  }

  toggle() {
    if (this.panel.hidden) {
      this.open();
    } else {
      this.close();
    }
  }

  open() {
    this.panel.hidden = false;
    this.opener.setAttribute('aria-expanded', 'true');
    const names = new Set((this.live.state?.instruments ?? []).map((one) => one.name));
    const { value } = this.instrument;
    this.instrument.replaceChildren(
      new Option('any instrument', ''),
      ...[...names].sort().map((one) => new Option(plainName(one), one)),
    );
    this.instrument.value = names.has(value) ? value : '';
    this.text.focus();
    this.find();
  }

  async find() {
    const asked = { text: this.text.value, instrument: this.instrument.value, limit: mostFound };
    this.asked = asked;
    let runs = [];
    let words;
    try {
      const answer = await this.ask('api/runs', asked);
      runs = answer.runs;
      words = `${count(runs.length, 'run')}${answer.next ? ', the newest of more' : ''}`;
    } catch (error) {
      words = error.message;
    }
    if (this.asked === asked) {
      keepText(this.said, words);
      this.found.replaceChildren(...runs.map((run) => make('li', '', this.buttonOf(run))));
    }
  }

  buttonOf(run) {
    const chosen = button('found', '', () => {
      this.close();
      this.choose(run);
    });
    chosen.append(...this.factsOf(run, false));
    return chosen;
  }
}
