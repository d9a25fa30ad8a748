// The lines of the host's log in the time of the run, as far as the page has them.

import { texts, wholes } from './form.js';
import { lastIndexWhere } from './lists.js';

/** The lines in the order of their times; null if the page has no log. */
export function readLog({ log }) {
  if (!log) {
    return null;
  }
  const [levels, sources, words] = [log.level, log.source, log.text].map(texts);
  const lines = wholes(log.at).map((at, row) => ({ at, level: levels[row], source: sources[row], text: words[row] }));
  return { lines, grave: lines.filter(({ level }) => level !== 'info'), leftOut: log.left_out };
}

/** The innermost execution at a time. */
export function executionAt(recorded, time) {
  const runsThen = (at) => recorded.started[at] <= time && recorded.endOf(at) >= time;
  const lastThen = (all) => all[lastIndexWhere(all, runsThen)];
  let at = recorded.root;
  for (let below = at; below !== undefined; below = lastThen(recorded.children[at])) {
    at = below;
  }
  return at;
}

/** The lane of the log in the timeline. */
export function lanesOfLog(recorded) {
  const lines = recorded.log?.lines ?? [];
  if (lines.length === 0) {
    return [];
  }
  const signs = lines.map(({ at, level, source, text }) => ({
    at,
    look: level === 'info' ? 'event' : level,
    words: [`${level} ${recorded.clock.moment(at, 6)}`, source, ...text.split('\n', 8)].filter((line) => line !== ''),
    get execution() {
      return executionAt(recorded, at);
    },
  }));
  return [{ label: 'Log', signs }];
}

/** The warnings and errors from one time to another. */
export const graveLines = ({ log }, from, to) => (log?.grave ?? []).filter(({ at }) => at >= from && at <= to);
