// An event with all its parameters, as histories and the cause show it.

import { addInSteps, make, show } from './element.js';
import { showLong } from './long-text.js';
import { noName } from './text.js';
import { valueText } from './values.js';

const parametersAtOnce = 100;

/** @param timeOf says when it was. */
export function eventBlock(recorded, event, timeOf = (at) => recorded.clock.local(at)) {
  const { shape, values: columns } = event.batch;
  const title = make('h4', '', show(make('span'), shape.name || noName), make('time', 'hint', ` ${timeOf(event.at)}`));
  const list = make('dl', 'parameters');
  addInSteps(list, shape.parameters, parametersAtOnce, ([name, kind], place) => {
    const term = show(make('dt'), name);
    term.title = kind;
    const value = valueText(columns[place][event.row], kind);
    const isLong = value.length > 60 || value.includes('\n');
    const text = showLong(make('dd', kind === 'text' ? 'text' : ''), value);
    return make('div', isLong ? 'long' : '', term, text);
  });
  return make('section', 'event', title, list);
}
