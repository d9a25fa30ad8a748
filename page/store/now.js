// What runs on each instrument, what stopped and where, and since when nothing was heard.

import { make, show } from '../view/element.js';
import { count } from '../view/text.js';
import { briefText } from '../view/values.js';
import { keep, keepList, keepText } from './kept.js';
import { millisecondsOf, moment, spanText } from './moment.js';
import { lastEvent, linkToRun, name, pathOf, plainName, stateBadge, stateName } from './run-words.js';
import { storeName } from './store-names.js';
import { troublesOf } from './troubles.js';

const mostOthers = 3;
const silentAfter = 60000; // milliseconds after which the silence of what runs is said louder

export const now = {
  name: '',
  title: 'Now',
  begin(section, shell) {
    const view = new Now(section, shell);
    return { show: () => view.tick() };
  },
};

class Now {
  constructor(section, { live }) {
    this.live = live;
    this.title = make('h1', '', 'Now');
    this.brief = make('p', 'hint');
    this.troubles = make('ul', 'troubles');
    this.list = make('ul', 'instruments');
    this.list.setAttribute('aria-label', 'Instruments');
    section.append(this.title, this.brief, this.troubles, this.list);
    this.lines = new Map();
    live.onState((state) => this.draw(state));
    setInterval(() => this.tick(), 1000);
  }

  draw(state) {
    this.state = state;
    keepText(this.brief, briefOf(state));
    const instruments = [...state.instruments].sort(
      (a, b) => plainName(a.name).localeCompare(plainName(b.name), 'en', { numeric: true }) || a.store - b.store,
    );
    keepList(this.list, instruments, {
      keyOf: ({ store, name: instrument }) => JSON.stringify([store, instrument]),
      make: lineOf,
      update: (element, instrument) => this.update(element, instrument),
    });
    this.tick();
  }

  update(element, instrument) {
    const run = mainRunOf(instrument);
    const part = (className) => element.querySelector(`.${className}`);
    element.className = `instrument is-${instrument.state}`;
    keep(part('badge'), instrument.state, (place, state) => place.replaceChildren(stateBadge(state)));
    keep(part('where'), [instrument.store, this.state.stores.map((one) => one.name)], (place) =>
      place.replaceChildren(...storeName(this.state.stores, instrument.store)),
    );
    keep(part('what'), [run?.run, run?.path, run?.node], (place) =>
      place.replaceChildren(...(run ? whatRuns(instrument.store, run) : ['no run yet'])),
    );
    keep(part('why'), run?.why, (place, why) => place.replaceChildren(...(why ? whyNotKnown(why) : [])));
    keep(part('values'), valuesOf(this.state, instrument), (place, values) =>
      place.replaceChildren(...values.map(valueOf)),
    );
    keep(part('last'), run?.last_event, (place) => place.replaceChildren(...(run ? lastEvent(run) : [])));
    keepText(part('rate'), rateOf(run));
    const others = othersThan(run, instrument).map((one) => [one.run, one.state]);
    keep(part('others'), [others, instrument.more_runs], (place) => place.replaceChildren(...othersOf(instrument)));
    element.dataset.state = instrument.state;
    element.dataset.last = run?.last_recorded_at ?? instrument.last_recorded_at ?? '';
  }

  drawTroubles() {
    keepList(this.troubles, troublesOf(this.state, this.live.serverTime()), {
      keyOf: ({ key }) => key,
      make: () => make('li', 'alarm'),
      update: (element, { words, draw }) => keep(element, words, () => element.replaceChildren(...draw())),
    });
    this.troubles.hidden = this.troubles.children.length === 0;
  }

  /** Counts on, between what the server says. */
  tick() {
    if (this.state) {
      this.drawTroubles();
    }
    for (const element of this.list.children) {
      const { last, state } = element.dataset;
      const silence = last ? this.live.serverTime() - millisecondsOf(last) : NaN;
      const words = silenceOf(state, silence);
      keepText(element.querySelector('.silence'), words);
      element.querySelector('.silence').classList.toggle('long', state === 'running' && silence > silentAfter);
      keep(element.querySelector('.at'), last, (place) => place.replaceChildren(...(last ? [moment(last)] : [])));
    }
  }
}

function silenceOf(state, silence) {
  if (Number.isNaN(silence)) {
    return '';
  }
  return state === 'running' ? `silent for ${spanText(silence)}` : `last record ${spanText(silence)} ago`;
}

function lineOf(instrument) {
  const title = make('h2', 'name', name(instrument.name, '(no name)'));
  return make(
    'li',
    'instrument',
    make('span', 'badge'),
    make('div', 'whose', title, make('span', 'where hint')),
    make(
      'div',
      'doing',
      make('p', 'what'),
      make('p', 'why'),
      make('p', 'last'),
      make('p', 'values'),
      make('p', 'others hint'),
    ),
    make('div', 'pace', make('p', 'silence'), make('p', 'at hint'), make('p', 'rate hint')),
  );
}

function whatRuns(store, run) {
  const inner = run.path[run.path.length - 1];
  const step = inner?.step ? [', step ', make('strong', '', String(inner.step))] : [];
  const since = [', since ', moment(inner?.started_at ?? run.started_at)];
  return [linkToRun(store, run.run, ...pathOf(run)), ...step, ...since];
}

const whyNotKnown = (why) => ['whether it still runs is not known: ', show(make('span'), why)];

/** The newest numbers of the parameters that the server was told to name. */
const valuesOf = ({ values }, { store, name: instrument }) =>
  values.filter((one) => one.store === store && one.instrument === instrument);

function valueOf({ parameter, value, at }) {
  const text = typeof value === 'string' ? value : briefText(value, 'double');
  return make('span', 'value', name(parameter), ' ', make('strong', '', text), ' at ', moment(at));
}

function rateOf(run) {
  if (!run) {
    return '';
  }
  const rate = run.events_per_minute;
  const words = rate === null || rate === undefined ? '' : `, ${Number(rate.toPrecision(3))} per minute`;
  return `${count(run.events, 'event')}${words}`;
}

/** The run that the state of an instrument is of: of an idle one its newest, whatever did not finish before. */
const mainRunOf = ({ state, runs, newest }) => runs.find((run) => run.state === state) ?? newest;
/** What else did not finish there. */
const othersThan = (main, { runs }) => runs.filter(({ run }) => run !== main?.run);

function othersOf(instrument) {
  const { store, more_runs: more } = instrument;
  const others = othersThan(mainRunOf(instrument), instrument);
  if (others.length === 0) {
    return [];
  }
  const links = others
    .slice(0, mostOthers)
    .flatMap((run) => [', ', linkToRun(store, run.run, name(run.node)), ` (${stateName(run.state)})`]);
  const left = others.length - mostOthers + more;
  return ['Before it: ', ...links.slice(1), ...(left > 0 ? [` and ${left} more`] : [])];
}

function briefOf({ stores, instruments, runs_by_state: runs }) {
  const parts = [count(instruments.length, 'instrument'), `${runs.running} running`, `${runs.stopped} stopped`];
  return [...parts, ...(stores.length > 1 ? [count(stores.length, 'store')] : [])].join(' · ');
}
