// Units of parameters: what the settings of the store say (the page's `units`), or what the name has in brackets at its
// end. A unit is a text like any that was recorded.

import { readable } from './text.js';

const inBrackets = /(?:\[([^[\]]+)\]|\(([^()]+)\))\s*$/;

const ownUnit = (name) => {
  const [, square, round] = inBrackets.exec(readable(name)) ?? [];
  return (square ?? round)?.trim() || null;
};

/** The unit of a parameter, given by its stored name; null if none is known. */
export function unitOf({ raw }, name) {
  const { units } = raw;
  return units && Object.prototype.hasOwnProperty.call(units, name) ? readable(units[name]) : ownUnit(name);
}

const behind = (recorded, name, form) => {
  const unit = unitOf(recorded, name);
  return unit && !ownUnit(name) ? form(unit) : '';
};

/** What stands behind the name of a parameter on axes and heads: " [µm]"; nothing if the name has its unit itself. */
export const unitBehind = (recorded, name) => behind(recorded, name, (unit) => ` [${unit}]`);

/** What stands behind a value beside that name: " µm". */
export const unitAfter = (recorded, name) => behind(recorded, name, (unit) => ` ${unit}`);
