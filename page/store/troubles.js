// What is wrong with the stores themselves: one that cannot be read, or that is not forwarded.

import { make, show } from '../view/element.js';
import { count } from '../view/text.js';
import { moment } from './moment.js';

const grace = 1000; // rows that may wait without a word

/** @returns [{key, words, draw}]: words change with what is said, draw makes its elements */
export function troublesOf({ stores }) {
  return stores.flatMap(({ store, name, error, forwarding }) => {
    const stored = (text) => show(make('span'), text);
    const list = [];
    if (error) {
      const draw = () => [make('strong', '', 'Store ', stored(name), ' cannot be read: '), stored(error)];
      list.push({ key: `${store} read`, words: [name, error], draw });
    }
    if (forwarding && (forwarding.error || forwarding.waiting > grace)) {
      const { to, waiting, since, error: why } = forwarding;
      const draw = () => [
        make('strong', '', why ? 'Forwarding fails: ' : 'Forwarding is behind: '),
        `${count(waiting, 'row')} of `,
        stored(name),
        waiting === 1 ? ' waits for ' : ' wait for ',
        stored(to),
        ...(since ? [' since ', moment(since)] : []),
        ...(why ? [': ', stored(why)] : []),
      ];
      list.push({ key: `${store} forwarding`, words: [name, to, waiting, since, why], draw });
    }
    return list;
  });
}
