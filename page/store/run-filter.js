// What the reader asks of runs: a form whose fields are parameters of api/runs and of the address.

import { button, make } from '../view/element.js';
import { keep } from './kept.js';
import { storeOptions } from './store-names.js';

const fields = [
  { name: 'instrument', title: 'Instrument' },
  { name: 'activity', title: 'Activity' },
  { name: 'node', title: 'Node' },
  { name: 'text', title: 'Text', hint: 'in node, description, activity, notes' },
  { name: 'since', title: 'Since', hint: '2026-11-24, yesterday, -2h' },
  { name: 'until', title: 'Until', hint: '2026-11-24 21:55' },
];
const states = [
  ['', 'any state'],
  ['running', 'running'],
  ['stopped', 'STOPPED'],
  ['unfinished', 'did not finish'],
  ['finished', 'finished'],
  ['unknown', 'not known'],
];
const offered = { instrument: 'instruments', activity: 'activities' }; // names of fields and of lists of api/stores
const mostOffered = 2000;
const names = ['store', 'state', ...fields.map(({ name }) => name)];

/** What an address asks of runs, as parameters of api/runs. */
export const filterOf = (chosen) => ({
  ...Object.fromEntries(names.map((name) => [name, chosen.get(name) ?? ''])),
  where: chosen.getAll('where'),
});

/**
 * A date, or a date and a time of day, with the offset of this browser's time zone: so a link means the same times to
 * everybody. Other forms stay as they are.
 */
export function withOffset(time) {
  const [, date, clock] = /^(\d{4}-\d\d-\d\d)(?:[ T](\d\d:\d\d(?::\d\d)?))?$/.exec(time) ?? [];
  const moment = new Date(`${date}T${clock ?? '00:00'}`);
  if (date === undefined || Number.isNaN(moment.getTime())) {
    return time;
  }
  const minutes = -moment.getTimezoneOffset();
  const [hours, rest] = [Math.floor(Math.abs(minutes) / 60), Math.abs(minutes) % 60];
  return `${date} ${clock ?? '00:00'}${minutes < 0 ? '-' : '+'}${twoDigits(hours)}:${twoDigits(rest)}`;
}

const twoDigits = (number) => String(number).padStart(2, '0');

export class RunFilter {
  /** Calls `ask` when the reader has chosen something else. */
  constructor(ask) {
    this.ask = ask;
    this.where = [];
    this.knownNames = new Map(Object.keys(offered).map((name) => [name, make('datalist')]));
    this.knownNames.forEach((list, name) => (list.id = `known-${name}`));
    this.inputs = new Map(fields.map((field) => [field.name, this.inputOf(field)]));
    this.inputs.set('state', this.selectOf('State', states));
    this.inputs.set('store', this.selectOf('Store', storeOptions([])));
    this.storeLabel = labelled('Store', this.inputs.get('store'));
    this.storeLabel.hidden = true;
    this.condition = make('input');
    Object.assign(this.condition, { type: 'search', placeholder: 'Dose > 40', maxLength: 1000 });
    this.condition.addEventListener('change', () => this.addCondition());
    this.conditions = make('span', 'conditions');
    this.error = make('p', 'error');
    this.error.setAttribute('role', 'alert');
    this.form = make(
      'form',
      'tools filter',
      this.storeLabel,
      ...fields.map(({ name, title }) => labelled(title, this.inputs.get(name))),
      labelled('State', this.inputs.get('state')),
      labelled('With an event where', this.condition),
      this.conditions,
      button('', 'Clear', () => this.clear()),
    );
    this.form.setAttribute('role', 'search');
    this.form.setAttribute('aria-label', 'Runs shown');
    this.form.addEventListener('submit', (event) => {
      event.preventDefault();
      this.take();
    });
    this.form.append(make('button', 'unseen', 'Show'), ...this.knownNames.values()); // Enter counts in every field
  }

  inputOf({ name, hint }) {
    const input = make('input');
    Object.assign(input, { type: 'search', name, placeholder: hint ?? '', maxLength: 1000 });
    input.addEventListener('change', () => this.take());
    if (this.knownNames.has(name)) {
      input.setAttribute('list', this.knownNames.get(name).id);
    }
    return input;
  }

  selectOf(name, options) {
    const select = make('select', '', ...options.map(([value, title]) => new Option(title, value)));
    select.name = name.toLowerCase();
    select.addEventListener('change', () => this.take());
    return select;
  }

  /** Shows what an address asks. */
  show(filter) {
    this.inputs.forEach((input, name) => this.showIn(input, filter[name]));
    this.where = filter.where;
    this.drawConditions();
  }

  showIn(input, value) {
    if (input.tagName === 'SELECT' && ![...input.options].some((option) => option.value === value)) {
      input.append(new Option(value, value));
    }
    input.value = value;
  }

  /** What is offered: stores, and names that can be chosen. */
  offer({ stores }) {
    const select = this.inputs.get('store');
    this.storeLabel.hidden = stores.length < 2 && select.value === '';
    const options = storeOptions(stores);
    keep(select, options, () => {
      const { value } = select;
      select.replaceChildren(...options.map(([one, title]) => new Option(title, one)));
      this.showIn(select, value);
    });
  }

  /** Offers the names that stores have, as api/stores answers them, while the reader types. */
  offerNames(stores) {
    this.knownNames.forEach((list, name) => {
      const known = [...new Set(stores.flatMap((store) => store[offered[name]]))].filter((one) => one !== '');
      keep(list, known.sort().slice(0, mostOffered), (place, some) =>
        place.replaceChildren(...some.map((one) => new Option('', one))),
      );
    });
  }

  /** Says what is wrong with what is asked; nothing with an empty text. */
  complain(words) {
    this.error.textContent = words;
  }

  addCondition() {
    const condition = this.condition.value.trim();
    this.condition.value = '';
    if (condition && !this.where.includes(condition)) {
      this.where = [...this.where, condition];
      this.take();
    }
  }

  drawConditions() {
    this.conditions.replaceChildren(
      ...this.where.map((condition) => {
        const remove = button('condition', `${condition} ×`, () => {
          this.where = this.where.filter((one) => one !== condition);
          this.condition.focus();
          this.take();
        });
        remove.setAttribute('aria-label', `No longer ask for ${condition}`);
        return remove;
      }),
    );
  }

  clear() {
    this.inputs.forEach((input) => (input.value = ''));
    this.condition.value = '';
    this.where = [];
    this.take();
  }

  take() {
    const added = this.condition.value.trim();
    if (added) {
      this.addCondition();
      return;
    }
    this.drawConditions();
    for (const name of ['since', 'until']) {
      this.inputs.get(name).value = withOffset(this.inputs.get(name).value.trim());
    }
    const values = [...this.inputs].map(([name, input]) => [name, input.value.trim()]);
    this.ask({ ...Object.fromEntries(values), where: this.where });
  }
}

const labelled = (title, input) => make('label', '', `${title} `, input);
