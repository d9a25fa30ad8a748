// Statuses of executions, as the record numbers them.

export const running = 4;
export const done = 14;

const names = new Map([
  [running, 'running'],
  [done, 'done'],
]);
export const statusName = (code) => (code === null ? 'no status' : (names.get(code) ?? `status ${code}`));
