// What a screen reader is told beside stops: that the state of an instrument changed, not each event.

import { plainName, stateName } from './run-words.js';

export class ChangesSaid {
  constructor(element) {
    this.element = element;
    this.states = null;
  }

  take({ instruments }) {
    const states = new Map(instruments.map(({ store, name, state }) => [JSON.stringify([store, name]), [name, state]]));
    if (this.states) {
      const changed = [...states].filter(([key, [, state]]) => this.states.get(key)?.[1] !== state);
      const words = changed
        .filter(([, [, state]]) => state !== 'stopped') // which the alarm says
        .map(([, [name, state]]) => `${plainName(name)}: ${stateName(state)}`);
      if (words.length > 0) {
        this.element.textContent = words.join('; ');
      }
    }
    this.states = states;
  }
}
