// Runs that stopped, until the reader has seen it: what was seen is kept in the browser.

import { KeptText } from './kept-text.js';

const place = 'velora.seen';
const mostKept = 1000;

/**
 * What stopped on an instrument and where no new run began since.
 * @returns [{instrument, store, run}], of all instruments of a state; once for a run that several stores have
 */
export function stopsOf(state) {
  const stops = state.instruments.flatMap(({ store, name, runs, newest }) =>
    runs
      .filter((run) => run.state === 'stopped' && isNew(run, newest))
      .map((run) => ({ instrument: name, store, run })),
  );
  return [...new Map(stops.reverse().map((stop) => [stop.run.run, stop])).values()].reverse();
}

// The clock of its host can be ahead, so a run is not compared with itself.
const isNew = (run, newest) => !newest || newest.run === run.run || newest.started_at <= run.last_recorded_at;

/** What tells stops apart: a run that goes on can stop again. */
export const keyOfStop = ({ run }) => `${run.run} ${run.last_recorded_at}`;

export class Stops {
  /** Calls `show` with all stops that nobody has seen, each time they can have changed. */
  constructor(show) {
    Object.assign(this, { show, all: [], seenText: new KeptText(place) });
    window.addEventListener('storage', (event) => event.key === place && this.tell());
  }

  take(state) {
    this.all = stopsOf(state);
    this.tell();
  }

  get unseen() {
    const seen = this.seen();
    return this.all.filter((stop) => !seen.includes(keyOfStop(stop)));
  }

  /** Remembers that the reader has seen a stop. */
  acknowledge(stop) {
    const key = keyOfStop(stop);
    const others = this.seen().filter((one) => one !== key);
    this.seenText.set(JSON.stringify([...others, key].slice(-mostKept)));
    this.tell();
  }

  tell() {
    this.show(this.unseen);
  }

  seen() {
    try {
      const list = JSON.parse(this.seenText.get() ?? '[]');
      return Array.isArray(list) ? list : [];
    } catch {
      return []; // somebody else wrote there
    }
  }
}
