// Shows the run whose data the page has.

import { RunPage } from './run-page.js';

const data = document.getElementById('recorded');
data.remove();
new RunPage(JSON.parse(data.textContent));
