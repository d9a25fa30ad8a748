// An event with all its parameters, as histories and the cause show it.

import { differenceOf } from './against-section.js';
import { addInSteps, make, showName } from './element.js';
import { showLong } from './long-text.js';
import { noName } from './text.js';
import { unitAfter } from './units.js';
import { briefly, briefText, valueText } from './values.js';

const parametersAtOnce = 100;

/** @param isBrief leaves out the date, and the digits behind the sixth. */
export function eventBlock(recorded, event, isBrief = false) {
  const { clock } = recorded;
  const { shape, values: columns } = event.batch;
  const title = make(
    'h4',
    '',
    showName(make('span'), shape.name || noName),
    make('time', 'hint', ` ${isBrief ? clock.day(event.at) : clock.local(event.at)}`),
  );
  if (recorded.against?.isEventAlone(event)) {
    title.append(make('span', 'difference', ' only in this run'));
  }
  const list = make('dl', 'parameters');
  addInSteps(list, shape.parameters, parametersAtOnce, ([name, kind], place) => {
    const value = columns[place][event.row];
    const element = parameterOf(name, kind, valueText(value, kind), isBrief ? briefText(value, kind) : null);
    const other = recorded.against?.otherValue(event, place);
    if (other) {
      element.lastChild.append(differenceOf(briefly([value, kind], other)[1]));
    }
    element.lastChild.append(unitAfter(recorded, name));
    return element;
  });
  return make('section', 'event', title, list);
}

function parameterOf(name, kind, text, brief) {
  const term = showName(make('dt'), name);
  term.title = [kind, term.title].filter(Boolean).join(': ');
  const value = showLong(make('dd', kind === 'text' ? 'text' : ''), brief ?? text);
  if (brief !== null && brief !== text) {
    value.title = text;
  }
  return make('div', text.length > 60 || text.includes('\n') ? 'long' : '', term, value);
}
