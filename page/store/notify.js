// Notifications of stops, if the reader asks for them.

import { addressOf } from './api.js';
import { KeptText } from './kept-text.js';
import { plainName } from './run-words.js';
import { keyOfStop } from './stops.js';

export class Notifications {
  constructor(asked) {
    this.button = asked;
    this.wanted = new KeptText('velora.notify');
    this.told = null; // stops of which nobody has to be told any more
    asked.addEventListener('click', () => this.toggle());
    this.draw();
  }

  get areOffered() {
    return 'Notification' in window && window.isSecureContext;
  }

  get areOn() {
    return this.areOffered && Notification.permission === 'granted' && this.wanted.get() === 'yes';
  }

  async toggle() {
    const wanted = !this.areOn;
    if (wanted) {
      await Notification.requestPermission();
    }
    this.wanted.set(wanted ? 'yes' : 'no');
    this.draw();
  }

  draw() {
    this.button.hidden = !this.areOffered;
    if (this.areOffered) {
      const isDenied = Notification.permission === 'denied';
      this.button.disabled = isDenied;
      this.button.textContent = this.areOn ? 'Do not notify me of stops' : 'Notify me of stops';
      this.button.title = isDenied ? 'The settings of the browser refuse notifications of this page' : '';
    }
  }

  /** Tells of stops that were not there when the page was opened. */
  tell(unseen) {
    const isFirst = this.told === null;
    this.told = this.told ?? new Set();
    for (const stop of unseen.filter((one) => !this.told.has(keyOfStop(one)))) {
      this.told.add(keyOfStop(stop));
      if (!isFirst && this.areOn) {
        this.notify(stop);
      }
    }
  }

  notify(stop) {
    const { instrument, store, run } = stop;
    const about = { body: plainName(run.node), tag: keyOfStop(stop), requireInteraction: true };
    try {
      const notification = new Notification(`STOPPED: ${plainName(instrument)}`, about);
      notification.addEventListener('click', () => {
        window.focus();
        notification.close();
        window.location.assign(addressOf('run', { store, run: run.run }));
      });
    } catch {
      // some browsers of telephones only let other scripts notify
    }
  }
}
