// The colours of the page, which page.css names.

import { done, running } from './statuses.js';

export const colour = (name) => getComputedStyle(document.documentElement).getPropertyValue(`--${name}`).trim();

const names = new Map([
  [running, 'running'],
  [done, 'done'],
]);
export const statusVariable = (code) => names.get(code) ?? `other-${Math.abs(Number(code)) % 3}`;
export const statusColour = (code) => colour(statusVariable(code));
