// What the reader asks of trends: a form whose fields are parameters of api/trends and of the address.

import { make } from '../view/element.js';
import { keep } from './kept.js';
import { plainName } from './run-words.js';
import { storeOptions } from './store-names.js';
import { withOffset } from './run-filter.js';

const spans = [
  ['30d', 'a month'],
  ['91d', 'a quarter'],
  ['365d', 'a year'],
  ['', 'all'],
];
const ownSpan = 'own';
const ways = [
  ['', 'all together'],
  ['instrument', 'by instrument'],
  ['activity', 'by activity'],
];
const texts = ['parameter', 'instrument', 'activity', 'since', 'until'];
const names = [...texts, 'store', 'by'];

/** What an address asks, as parameters of api/trends. */
export const questionOf = (chosen) => Object.fromEntries(names.map((name) => [name, chosen.get(name) ?? '']));

const labelled = (title, input) => make('label', '', `${title} `, input);
const optionsOf = (options) => options.map(([value, title]) => new Option(title, value));

export class TrendForm {
  /** Calls `ask` with parameters of api/trends when the reader has chosen something else. */
  constructor(ask) {
    this.ask = ask;
    this.inputs = Object.fromEntries(texts.map((name) => [name, this.inputOf(name)]));
    this.inputs.parameter.required = true;
    this.inputs.since.placeholder = '2026-11-24, -90d';
    this.inputs.until.placeholder = '2026-11-24 21:55';
    this.inputs.store = this.selectOf(storeOptions([]));
    this.inputs.by = this.selectOf(ways);
    this.span = this.selectOf([...spans, [ownSpan, 'since and until']]);
    this.lists = Object.fromEntries(['parameter', 'instrument'].map((name) => [name, this.listOf(name)]));
    this.store = labelled('Store', this.inputs.store);
    this.store.hidden = true;
    this.error = make('p', 'error');
    this.error.setAttribute('role', 'alert');
    const { parameter, instrument, activity, by, since, until } = this.inputs;
    this.form = make(
      'form',
      'tools filter',
      this.store,
      labelled('Parameter', parameter),
      labelled('Groups', by),
      labelled('Instrument', instrument),
      labelled('Activity', activity),
      labelled('Time', this.span),
      labelled('Since', since),
      labelled('Until', until),
      make('button', 'unseen', 'Show'), // so that Enter counts in every field
      ...Object.values(this.lists),
    );
    this.form.setAttribute('role', 'search');
    this.form.setAttribute('aria-label', 'Trend shown');
    this.form.addEventListener('submit', (event) => {
      event.preventDefault();
      this.take();
    });
    this.span.addEventListener('change', () => this.takeSpan());
  }

  inputOf(name) {
    const input = make('input');
    Object.assign(input, { type: 'search', name, maxLength: 1000, autocomplete: 'off' });
    input.setAttribute('list', `trend-${name}`);
    input.addEventListener('change', () => this.take());
    return input;
  }

  selectOf(options) {
    const select = make('select', '', ...optionsOf(options));
    select.addEventListener('change', () => select !== this.span && this.take());
    return select;
  }

  listOf(name) {
    const list = make('datalist');
    list.id = `trend-${name}`;
    return list;
  }

  /** Shows what an address asks. */
  show(question) {
    for (const [name, input] of Object.entries(this.inputs)) {
      if (input.tagName === 'SELECT' && ![...input.options].some(({ value }) => value === question[name])) {
        input.append(new Option(question[name], question[name]));
      }
      input.value = question[name];
    }
    const known = spans.find(([length]) => question.until === '' && question.since === (length && `-${length}`));
    this.span.value = known ? known[0] : ownSpan;
  }

  /** Offers names that can be chosen, and stores. */
  offer(name, values) {
    keep(this.lists[name], values, (list) =>
      list.replaceChildren(...values.map((value) => new Option(plainName(value), value))),
    );
  }
  offerStores(stores) {
    this.store.hidden = stores.length < 2 && this.inputs.store.value === '';
    const options = storeOptions(stores);
    keep(this.inputs.store, options, (select) => {
      const { value } = select;
      select.replaceChildren(...optionsOf(options));
      select.value = value;
    });
  }

  /** Says what is wrong with what is asked; nothing with an empty text. */
  complain(words) {
    this.error.textContent = words;
  }

  takeSpan() {
    if (this.span.value === ownSpan) {
      this.inputs.since.focus();
      return;
    }
    this.inputs.since.value = this.span.value && `-${this.span.value}`;
    this.inputs.until.value = '';
    this.take();
  }

  take() {
    for (const name of ['since', 'until']) {
      this.inputs[name].value = withOffset(this.inputs[name].value.trim());
    }
    this.ask(Object.fromEntries(Object.entries(this.inputs).map(([name, input]) => [name, input.value.trim()])));
  }
}
