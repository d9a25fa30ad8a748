// The state of the stores, as the server tells it: one stream for all views. Each message holds the whole state, so
// that a computer that slept comes back to the truth with the first one.

import { millisecondsOf } from './moment.js';

const mostSilence = 45000; // milliseconds without a message after which a stream may have died without a sign
const mostOpening = 10000;
const longestPause = 5000;
const tick = 1000;

export class Live {
  constructor(path = './api/live') {
    Object.assign(this, { path, listeners: [], state: null, skew: 0, lost: undefined, pause: tick });
    this.reached = Date.now(); // when the server was last known to be there
    this.ticked = Date.now();
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
    source.addEventListener('now', (event) => this.take(event));
    // What a browser does after an error differs: some give up for good. A new stream never does.
    source.addEventListener('error', () => source === this.source && this.fail());
  }

  take(event) {
    const state = JSON.parse(event.data);
    this.heard = this.reached = Date.now();
    this.pause = tick;
    this.messages += 1;
    this.skew = millisecondsOf(state.at) - Date.now();
    this.tell(null);
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

  /** Looks each second whether the stream still lives; a longer step means that the computer slept. */
  look() {
    const now = Date.now();
    const slept = now - this.ticked > 10 * tick;
    this.ticked = now;
    if (this.messages === 0) {
      if (now - this.asked > mostOpening && this.source.readyState !== EventSource.CLOSED) {
        this.fail();
      }
    } else if (slept || now - this.heard > mostSilence) {
      this.open();
    } else {
      this.reached = now;
    }
  }
}
