// Runs that stopped, until the reader has seen them: kept in the browser, for each run.

import { KeptText } from './kept-text.js';

const place = 'velora.seen';
const mostKept = 1000;

/**
 * What stopped on an instrument and where no new run began since.
 * @returns [{instrument, store, run}], of all instruments of a state
 */
export const stopsOf = (state) =>
  state.instruments.flatMap(({ store, name, runs, newest }) =>
    runs
      .filter((run) => run.state === 'stopped' && !(newest && newest.started_at > run.last_recorded_at))
      .map((run) => ({ instrument: name, store, run })),
  );

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
    return this.all.filter(({ run }) => !seen.includes(run.run));
  }

  /** Remembers that the reader has seen that a run stopped. */
  acknowledge(guid) {
    const others = this.seen().filter((one) => one !== guid);
    this.seenText.set(JSON.stringify([...others, guid].slice(-mostKept)));
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
