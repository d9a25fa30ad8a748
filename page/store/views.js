// The views of the page, in the order of the links to them. Each is an object:
//   name, title           the last part of its address; what it is called
//   begin(section, shell) makes it in an empty section, once, when it is first shown; answers an object with
//     show(chosen)        called when it is shown, and whenever the address changes then; chosen: URLSearchParams
//     hide()              called when another view is shown; may be missing
// The shell has address (address.js), ask (api.js), live (live.js) and stops (stops.js).

import { compare } from './compare.js';
import { now } from './now.js';
import { runs } from './runs.js';
import { trends } from './trends.js';

export const views = [now, runs, compare, trends];
