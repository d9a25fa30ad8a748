// What the state of the stores tells of runs that a view shows.

/** What it tells of each of some runs, from every store that has them. */
export const toldOf = (state, isOne) =>
  (state?.instruments ?? []).flatMap(({ store, runs, newest }) =>
    [...runs, newest].filter((run) => run && isOne(store, run.run)),
  );

/**
 * What changes when there is more to ask for. A run that is not finished and not told of can change each time.
 * @param told what is told of the runs; @param isOver whether they are finished
 */
export const signOf = (state, told, isOver) =>
  JSON.stringify(told.length > 0 || isOver ? told.map(({ mark, state: itself }) => [mark, itself]) : state?.sequence);
