// The names of stores, short: most are long paths that differ in the last folder.

import { make } from '../view/element.js';
import { name, plainName } from './run-words.js';

/** Names by the numbers of the stores: of a path the last folder and the file, where no other store has the same. */
export function storeNames(stores) {
  const short = stores.map((store) => /^(?:\/|[A-Za-z]:).*?([^/\\]+[/\\][^/\\]+)$/.exec(store.name)?.[1] ?? store.name);
  const isAlone = (text) => short.indexOf(text) === short.lastIndexOf(text);
  return new Map(stores.map((store, at) => [store.store, isAlone(short[at]) ? short[at] : store.name]));
}

/** The name of a store, which has the whole one in its title; nothing where there is only one. */
export function storeName(stores, number) {
  const store = stores.length > 1 ? stores.find((one) => one.store === number) : undefined;
  if (!store) {
    return [];
  }
  const element = make('span', '', name(storeNames(stores).get(number)));
  element.title = plainName(store.name);
  return [element];
}

/** The stores that a reader can choose from, as values and titles of options. */
export const storeOptions = (stores) => [
  ['', 'all stores'],
  ...[...storeNames(stores)].map(([store, text]) => [String(store), plainName(text)]),
];
