// The page of a run of a store, which shows what is recorded while it is.

import { titleOf } from '../view/head.js';
import { make } from '../view/element.js';
import { RunPage } from '../view/run-page.js';
import { statusOf } from '../view/states.js';
import { addressOf, ask } from './api.js';
import { keepText } from './kept.js';
import { Live } from './live.js';
import { momentText } from './moment.js';
import { stateName } from './run-words.js';
import { signOf, toldOf } from './told.js';
import { Updates } from './updates.js';

const patience = 500; // milliseconds after which the run is asked for, whether the state of the store is known or not

const byId = (id) => document.getElementById(id);
const show = (...ids) => ids.forEach((id) => (byId(id).hidden = false));

/** The parameters of the address. A guid takes the place of other names of a run: "last" will be another one. */
class Chosen {
  constructor() {
    const query = new URLSearchParams(window.location.search);
    this.parameters = {
      ...Object.fromEntries(['store', 'run', 'with', 'with_store'].map((name) => [name, query.get(name) ?? ''])),
      ...Object.fromEntries(['ignore', 'tolerance'].map((name) => [name, query.getAll(name)])),
    };
  }

  know(raw) {
    const { run, with: other } = this.parameters;
    Object.assign(this.parameters, { run: raw.run, with: raw.against?.run ?? '' });
    if (raw.run !== run || this.parameters.with !== other) {
      window.history.replaceState(null, '', addressOf('run', this.parameters) + window.location.hash);
    }
  }
}

class LiveRun {
  constructor() {
    Object.assign(this, { chosen: new Chosen(), page: null, raw: null, latest: null, asked: null, trouble: '' });
    this.updates = new Updates(() => this.ask());
    this.live = new Live();
    this.live.onState((state) => this.take(state));
    this.live.begin((lost) => this.showConnection(lost));
    setTimeout(() => this.page ?? this.updates.want(), patience);
    document.addEventListener('visibilitychange', () => this.catchUp());
  }

  /** What the store says of the runs that the page shows, of each store that has them. */
  toldOf(state, guids) {
    const { store: chosen } = this.chosen.parameters;
    const isAsked = (store) => chosen === '' || String(store) === chosen || guids.length > 1;
    return toldOf(state, (store, guid) => isAsked(store) && guids.includes(guid));
  }

  signOf(state) {
    const { raw } = this;
    const told = this.toldOf(state, raw ? [raw.run, raw.against?.run] : []);
    return signOf(state, told, raw?.hosts.state === 'finished');
  }

  take(state) {
    this.latest = state;
    keepText(byId('name'), state.title ?? 'Velora TS');
    this.tell();
    this.catchUp();
  }

  /** Asks for what was recorded since: at once where the run has stopped or finished, and not while nobody looks. */
  catchUp() {
    const isUrgent = this.stateNow !== this.raw?.hosts.state;
    if (this.signOf(this.latest) !== this.signOf(this.asked) && (isUrgent || !document.hidden)) {
      this.updates.want(isUrgent);
    }
  }

  async ask() {
    const { latest } = this;
    try {
      this.show(await ask('api/run/data', this.chosen.parameters));
      Object.assign(this, { asked: latest, trouble: '' });
    } catch (error) {
      this.trouble = error.message;
    }
    this.tell();
    this.catchUp();
    return this.trouble === '';
  }

  show(raw) {
    this.raw = raw;
    this.chosen.know(raw);
    if (!this.page) {
      document.body.classList.remove('waiting');
      this.page = new RunPage(raw);
      byId('to-file').href = addressOf('report', this.chosen.parameters);
      byId('to-compare').href = addressOf('compare', this.chosen.parameters);
      show('to-file');
    } else if (!this.page.take(raw)) {
      window.location.reload(); // another store has taken the place of this one
    }
  }

  get stateNow() {
    return this.toldOf(this.latest, [this.raw?.run])[0]?.state ?? this.raw?.hosts.state;
  }

  /** Says how the run is, in the title as well. */
  tell() {
    if (!this.page) {
      this.showTrouble();
      return;
    }
    const { recorded } = this.page;
    const isOver = this.raw.hosts.state === 'finished';
    const word = isOver ? statusOf(recorded, recorded.root) : stateName(this.stateNow);
    const state = byId('run-state');
    state.setAttribute('role', word === 'STOPPED' ? 'alert' : 'status');
    state.className = `state ${isOver ? 'finished' : this.stateNow}`;
    keepText(state, word);
    const title = `${word} · ${titleOf(recorded)}`;
    if (document.title !== title) {
      document.title = title;
    }
    this.showConnection(this.live.lost);
  }

  /** Why there is nothing to see. */
  showTrouble() {
    const alarm = byId('alarm');
    alarm.hidden = this.trouble === '';
    if (!alarm.hidden) {
      alarm.replaceChildren(make('p', '', this.trouble));
    }
  }

  showConnection(lost) {
    const from = this.raw && `; what is shown is from then`;
    const since = lost === null ? '' : momentText(new Date(lost).toISOString());
    const words = [
      lost === null ? 'live' : `not connected since ${since}${from ?? ''}`,
      ...(lost === null && this.page && this.trouble ? [this.trouble] : []),
    ];
    keepText(byId('connection'), words.join(': '));
    byId('connection').classList.toggle('lost', lost !== null || words.length > 1);
  }
}

document.body.classList.add('waiting');
byId('alarm').hidden = true;
byId('recorded').remove();
new LiveRun();
