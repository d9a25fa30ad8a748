// Searching in what is sorted.

/** First place in a sorted list, from `low` on, where a number is not below another. */
export function lowerBound(list, wanted, numberOfItem = (item) => item, low = 0) {
  let high = list.length;
  while (low < high) {
    const middle = (low + high) >> 1;
    [low, high] = numberOfItem(list[middle]) < wanted ? [middle + 1, high] : [low, middle];
  }
  return low;
}

/** The last of a list, in the order of their begin, that begins before a time; the first if there is none. */
export const lastBefore = (list, time) => list[Math.max(0, lowerBound(list, time, ({ from }) => from) - 1)];
