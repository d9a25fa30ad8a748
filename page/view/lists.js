// What lists lack in browsers of five years ago.

/** The last item of a list; undefined of an empty one. */
export const lastOf = (list) => list[list.length - 1];

/** The place of the last item of which something holds; -1 if it holds of none. */
export function lastIndexWhere(list, holds) {
  let at = list.length - 1;
  while (at >= 0 && !holds(list[at])) {
    --at;
  }
  return at;
}
