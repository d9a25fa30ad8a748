// A stop cannot be overlooked: it is said above every view, in the title of the page, by its icon, and, if the reader
// allows it, by a notification.

import { button, make } from '../view/element.js';
import { keepList } from './kept.js';
import { moment } from './moment.js';
import { Notifications } from './notify.js';
import { lastEvent, linkToRun, name, pathOf, plainName, stateBadge } from './run-words.js';
import { keyOfStop } from './stops.js';

const byId = (id) => document.getElementById(id);

export class Alarm {
  constructor(stops) {
    this.stops = stops;
    this.notifications = new Notifications(byId('notify'));
    this.title = '';
    this.lost = null;
    this.unseen = [];
  }

  /** Shows the stops that nobody has seen. */
  show(unseen) {
    this.unseen = unseen;
    keepList(byId('stops'), unseen, {
      keyOf: keyOfStop,
      make: (stop) => this.blockOf(stop),
      update: () => {},
    });
    this.notifications.tell(unseen);
    this.head();
  }

  /** @param title of the shown view; @param lost whether the state is an old one */
  showHead({ title = this.title, lost = this.lost }) {
    Object.assign(this, { title, lost });
    this.head();
  }

  head() {
    const [first, ...others] = this.unseen.map(({ instrument }) => plainName(instrument));
    const more = others.length > 0 ? ` and ${others.length} more` : '';
    const begin = first === undefined ? '' : `STOPPED: ${first}${more} – `;
    document.title = `${begin}${this.lost === null ? '' : 'not connected – '}${this.title}`;
    showIcon(first !== undefined ? 'stopped' : this.lost === null ? 'calm' : 'lost');
  }

  blockOf(stop) {
    const { instrument, store, run } = stop;
    const seen = button('', 'Seen', () => {
      this.stops.acknowledge(stop);
      (byId('stops').querySelector('button') ?? byId('view')).focus();
    });
    const title = make('h2', '', stateBadge('stopped'), ' ', name(instrument));
    const what = `that ${plainName(instrument)} stopped`;
    seen.title = `I have seen ${what}`;
    seen.setAttribute('aria-label', `Seen: ${what}`);
    return make(
      'div',
      'alarm stop',
      title,
      seen,
      make('p', 'path', linkToRun(store, run.run, ...pathOf(run))),
      make('p', 'since', 'last record ', moment(run.last_recorded_at)),
      make('p', 'event', 'The last event: ', ...lastEvent(run)),
    );
  }
}

const looks = {
  calm: ['#1f5fa8', (context) => context.fillRect(9, 6, 14, 20)],
  stopped: [
    '#b3261e',
    (context) => {
      context.fillRect(13, 5, 6, 14);
      context.fillRect(13, 22, 6, 5);
    },
  ],
  lost: ['#777777', (context) => context.fillRect(6, 13, 20, 6)],
};
const icons = new Map();

function showIcon(look) {
  if (!icons.has(look)) {
    const canvas = make('canvas');
    Object.assign(canvas, { width: 32, height: 32 });
    const context = canvas.getContext('2d');
    const [back, draw] = looks[look];
    context.fillStyle = back;
    context.fillRect(0, 0, 32, 32);
    context.fillStyle = '#ffffff';
    draw(context);
    icons.set(look, canvas.toDataURL());
  }
  const icon = byId('icon');
  if (icon.dataset.look !== look) {
    icon.dataset.look = look;
    icon.href = icons.get(look);
  }
}
