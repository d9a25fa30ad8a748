// Puts the parts of the page of a store together.

import { button, make } from '../view/element.js';
import { Address } from './address.js';
import { Alarm } from './alarm.js';
import { addressOf, ask } from './api.js';
import { keepText } from './kept.js';
import { Live } from './live.js';
import { momentText } from './moment.js';
import { ChangesSaid } from './said.js';
import { Stops } from './stops.js';
import { views } from './views.js';

const byId = (id) => document.getElementById(id);
const served = JSON.parse(byId('served').textContent);
byId('served').remove();
byId('licences').textContent = byId('licence-texts').textContent;
byId('alarm').remove();

const stops = new Stops((unseen) => alarm.show(unseen));
const alarm = new Alarm(stops);
const live = new Live();
const said = new ChangesSaid(byId('said'));
const begun = new Map(); // the views that were shown, by name
const links = views.map((view) => {
  const link = make('a', '', view.title);
  link.href = addressOf(view.name);
  return link;
});
byId('views').append(...links);
const address = new Address(
  views.map((view) => view.name),
  () => showView(true),
);
const shell = { address, ask, live, stops };
let shown = null;

/** Shows the view of the address; `isMove` where the reader went there from another one. */
function showView(isMove) {
  const view = views.find((one) => one.name === address.view) ?? views[0];
  if (!begun.has(view)) {
    const section = make('section', `view ${view.title.toLowerCase()}`);
    begun.set(view, { section, part: view.begin(section, shell) });
  }
  const { section, part } = begun.get(view);
  if (shown !== view) {
    begun.get(shown)?.part.hide?.();
    byId('view').replaceChildren(section);
    links.forEach((link, at) => (views[at] === view ? link.setAttribute('aria-current', 'page') : unmark(link)));
    shown = view;
    if (isMove) {
      byId('view').focus({ preventScroll: true });
      window.scrollTo(0, 0);
    }
  }
  alarm.showHead({ title: `${view.title} – ${byId('name').textContent}` });
  part.show(address.chosen);
}

const unmark = (link) => link.removeAttribute('aria-current');

function showConnection(lost) {
  const since = lost === null ? '' : momentText(new Date(lost).toISOString());
  const words = lost === null ? 'connected' : `not connected since ${since}; what is shown is from then`;
  keepText(byId('connection'), words);
  byId('connection').classList.toggle('lost', lost !== null);
  alarm.showHead({ lost });
}

/** A program of another version serves: this page may not understand it. */
function showVersion({ version }) {
  const block = byId('outdated');
  const isOther = Boolean(served.version) && version !== served.version;
  if (isOther && block.hidden) {
    const again = button('', 'Load the page again', () => window.location.reload());
    block.append(`The server is now of version ${version}, this page of ${served.version}. `, again);
  }
  block.hidden = !isOther;
}

live.onState((state) => {
  if (state.title) {
    keepText(byId('name'), state.title);
    alarm.showHead({ title: `${shown.title} – ${state.title}` });
  }
  stops.take(state);
  said.take(state);
  showVersion(state);
});
byId('skip').addEventListener('click', (event) => {
  event.preventDefault();
  byId('view').focus();
});
showView(false);
live.begin(showConnection);
