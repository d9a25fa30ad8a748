// The state of the stores, as the server tells it: one stream for all views. Each message holds the whole state, so
// that a computer that slept comes back to the truth with the first one.

import { millisecondsOf } from './moment.js';

const mostSilence = 15000; // milliseconds after which a stream must have died: the server gives a sign each 5 s
const mostOpening = 10000;
const longestPause = 5000;
const tick = 1000;

export class Live {
  constructor(path = './api/live') {
    Object.assign(this, { path, listeners: [], state: null, skew: 0, lost: undefined, pause: tick });
    this.reached = Date.now(); // when the server was last known to be there
  }

  /** Calls a function with the state of now, if it is known, and each time it changes. */
  onState(listener) {
    this.listeners.push(listener);
    if (this.state) {
      listener(this.state);
    }
  }

  /** Begins to listen. `onConnection` is called with null, or with the time since when nothing is known. */
  begin(onConnection) {
    this.onConnection = onConnection;
    this.open();
    setInterval(() => this.look(), tick);
    document.addEventListener('visibilitychange', () => document.hidden || this.look());
    window.addEventListener('pageshow', (event) => event.persisted && this.open());
    window.addEventListener('online', () => this.open());
    window.addEventListener('pagehide', () => this.source?.close());
  }

  /** The time of the server, in milliseconds. */
  serverTime() {
    return Date.now() + this.skew;
  }

  open() {
    clearTimeout(this.again);
    this.source?.close();
    const source = new EventSource(this.path);
    this.source = source;
    this.asked = Date.now();
    this.messages = 0;
    source.addEventListener('now', (event) => this.take(JSON.parse(event.data)));
    source.addEventListener('alive', (event) => this.hear(JSON.parse(event.data)));
    // What a browser does after an error differs: some give up for good. A new stream never does.
    source.addEventListener('error', () => source === this.source && this.fail());
  }

  hear({ at }) {
    this.reached = Date.now();
    this.pause = tick;
    this.messages += 1;
    this.skew = millisecondsOf(at) - Date.now();
    this.tell(null);
  }

  take(state) {
    this.hear(state);
    this.state = state;
    this.listeners.forEach((listener) => listener(state));
  }

  fail() {
    this.source.close();
    this.messages = 0;
    this.tell(this.reached);
    clearTimeout(this.again);
    this.again = setTimeout(() => this.open(), this.pause);
    this.pause = Math.min(longestPause, this.pause * 1.5);
  }

  tell(lost) {
    if (lost !== this.lost) {
      this.lost = lost;
      this.onConnection(lost);
    }
  }

  /** Looks each second whether the stream still lives; the clock can step, and the computer can have slept. */
  look() {
    const now = Date.now();
    if (this.messages === 0) {
      if (Math.abs(now - this.asked) > mostOpening && this.source.readyState !== EventSource.CLOSED) {
        this.fail();
      }
    } else if (Math.abs(now - this.reached) > mostSilence) {
      this.open();
    }
  }
}
