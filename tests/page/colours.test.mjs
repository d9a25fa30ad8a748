// The colours of page.css against their ground and each other, for all eyes.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { test } from 'node:test';

import { contrast, linear } from '../../page/view/contrast.js';

const style = readFileSync(new URL('../../page/view/page.css', import.meta.url), 'utf8');

/** The colours of the light scheme, or of the dark one. */
const scheme = (place) =>
  Object.fromEntries(
    [...style.split(/^@media|^\* /m)[place].matchAll(/--([\w-]+): (#\w{6});/g)].map(([, name, colour]) => [
      name,
      colour,
    ]),
  );

/** A matrix of three rows, one behind the other, times a vector. */
const times = (matrix, vector) =>
  [0, 3, 6].map((row) => vector.reduce((sum, number, place) => sum + matrix[row + place] * number, 0));

// What remains of linear red, green and blue for those who lack one kind of cone (Machado, Oliveira, Fernandes 2009).
const eyes = [
  [1, 0, 0, 0, 1, 0, 0, 0, 1],
  [0.152286, 1.052583, -0.204868, 0.114503, 0.786281, 0.099216, -0.003882, -0.048116, 1.051998],
  [0.367322, 0.860646, -0.227968, 0.280085, 0.672501, 0.047413, -0.01182, 0.04294, 0.968881],
  [1.255528, -0.076749, -0.178779, -0.078411, 0.930809, 0.147602, 0.004733, 0.691367, 0.3039],
];

/** A colour in Oklab, in which equal distances look alike. */
function oklab(light) {
  const cones = [
    0.41222147, 0.53633254, 0.05144599, 0.2119035, 0.68069955, 0.10739696, 0.08830246, 0.28171884, 0.6299787,
  ];
  const axes = [
    0.21045426, 0.79361779, -0.00407205, 1.9779985, -2.42859221, 0.45059371, 0.02590404, 0.78277177, -0.80867577,
  ];
  const bounded = light.map((part) => Math.min(Math.max(part, 0), 1));
  return times(axes, times(cones, bounded).map(Math.cbrt));
}

const distance = (one, other, eye) => {
  const [a, b] = [one, other].map((colour) => oklab(times(eye, linear(colour))));
  return Math.hypot(...a.map((part, place) => part - b[place]));
};

const main = ['event', 'done', 'running'];
const drawn = [...main, 'other-0', 'other-1', 'other-2', 'error', 'warning', 'against'];
const pairsOf = (names) => names.flatMap((one, at) => names.slice(at + 1).map((other) => [one, other]));

function check(colours, report) {
  const least = (pairs, measure, limit) => {
    const [value, what] = pairs.map((pair) => [measure(...pair), pair.join(', ')]).sort(([a], [b]) => a - b)[0];
    report.diagnostic(`${value.toFixed(3)}: ${what}`);
    assert.ok(value >= limit, `${what}: ${value}, below ${limit}`);
  };
  const ratio = (one, other) => contrast(colours[one], colours[other]);
  const apart = (one, other) => Math.min(...eyes.map((eye) => distance(colours[one], colours[other], eye)));
  const on = (ground, names) => names.map((one) => [one, ground]);
  least(on('panel', drawn), ratio, 3);
  const written = ['text', 'muted', 'alarm', 'error', 'warning', 'accent', 'against'];
  least([...on('panel', written), ...on('alarm-back', written), ['muted', 'back']], ratio, 4.5);
  least([['event', 'done']], ratio, 2);
  least(pairsOf(main), apart, 0.2);
  least(pairsOf(drawn), apart, 0.07);
}

['light', 'dark'].forEach((name, place) =>
  test(`what is drawn stands out and apart in the ${name} scheme`, (report) => check(scheme(place), report)),
);
