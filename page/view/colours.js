// The colours of the page, which page.css names: one for each thing, wherever it is drawn.

import { contrast } from './contrast.js';
import { done, running } from './statuses.js';

export const colour = (name) => getComputedStyle(document.documentElement).getPropertyValue(`--${name}`).trim();

const names = new Map([
  [running, 'running'],
  [done, 'done'],
]);
export const statusVariable = (code) => names.get(code) ?? `other-${Math.abs(Number(code)) % 3}`;
export const statusColour = (code) => colour(statusVariable(code));

/** The colours as they are now, each read once. */
export function palette() {
  const known = new Map();
  return (name) => known.get(name) ?? known.set(name, colour(name)).get(name);
}

/** For a text on a colour, the one that can be read better. */
export const inkOn = (fill) =>
  ['#ffffff', '#0d1520'].reduce((one, other) => (contrast(other, fill) > contrast(one, fill) ? other : one));

/** Which of several things closer than two pixels gives its colour to all. */
const loudness = ['event', 'done', 'other-0', 'other-1', 'other-2', 'warning', 'running', 'error'];
export const louder = (one, other) => (one !== other && loudness.indexOf(other) > loudness.indexOf(one) ? other : one);
