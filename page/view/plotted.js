// The points that the plot shows: of this run in a group for each status of an execution, and those of the run with
// which it is compared in one of their own.

import { statusVariable } from './colours.js';
import { Points } from './points.js';
import { slicesOf } from './slices.js';
import { done, statusName } from './statuses.js';
import { numberOf } from './values.js';

const ofStatus = (code) => ({
  name: statusName(code),
  look: statusVariable(code),
  symbol: code === done ? 'circle' : 'triangle',
});
const ofOtherRun = { name: 'the other run', look: 'against', symbol: 'diamond' };

/** The points of a parameter over time, or over another one of the same event; `appearance` is that of a status. */
function pointsIn(run, { x: quantityX, y: quantityY }, appearance) {
  const kind = run.kinds.find(({ name }) => name === quantityY.event);
  const groups = new Map();
  const noNumber = [];
  for (const event of kind.events) {
    const value = run.valueOf(event, quantityY);
    if (value === undefined) {
      continue;
    }
    const y = numberOf(value);
    const x = quantityX === null ? event.at : run.coordinateOf(event, quantityX);
    const look = appearance(run.status[event.execution]);
    if (Number.isNaN(x) || Number.isNaN(y)) {
      noNumber.push(event);
    } else {
      groups.set(look.name, groups.get(look.name) ?? new Points(run, look));
      groups.get(look.name).add(event, x, y);
    }
  }
  const isBinned = kind.slices !== null && quantityX === null;
  groups.forEach((group) => (group.slices = isBinned ? slicesOf(group, run.raw.slices) : null));
  return { kind, noNumber, isBinned, groups: [...groups.values()] };
}

/** What is chosen, of this run; `groups` are its groups, `others` those of the other run. */
export function pointsOf(recorded, chosen) {
  const others = recorded.against?.chosenThere(chosen);
  return {
    ...chosen,
    ...pointsIn(recorded, chosen, ofStatus),
    others: others ? pointsIn(recorded.against.other, others, () => ofOtherRun).groups : [],
  };
}
