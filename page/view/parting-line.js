// Where this run and the one with which it is compared first part, in the timeline.

import { colour } from './colours.js';

/** In the timeline: a line where both first part. */
export function partingLine({ against }, height) {
  const at = against?.raw.parting?.at ?? null;
  if (at === null) {
    return [];
  }
  const ink = colour('against');
  return [
    {
      type: 'line',
      silent: true,
      data: [],
      markLine: {
        silent: true,
        symbol: 'none',
        lineStyle: { color: ink, type: 'dashed', width: 2 },
        label: { formatter: 'first differs', position: 'end', distance: 2, color: ink, fontSize: 11 },
        data: [[{ coord: [at, 0] }, { coord: [at, height] }]],
      },
    },
  ];
}
