// The keys of the table, as trees of rows have them: up and down go from row to row, right unfolds or goes to the first
// row below, left folds or goes to the row above.
import { lastOf } from './lists.js';

const keys = {
  ArrowDown: (table, at) => neighbour(table, at, 1),
  ArrowUp: (table, at) => neighbour(table, at, -1),
  Home: (table) => table.goTo(table.visible()[0]),
  End: (table) => table.goTo(lastOf(table.visible())),
  ArrowRight: (table, at) => {
    if (table.isTree && table.tree.folded.has(at)) {
      table.fold(at);
    } else if (table.isTree && table.tree.folds(at)) {
      neighbour(table, at, 1);
    }
  },
  ArrowLeft: (table, at) => {
    if (table.isTree && table.tree.folds(at) && !table.tree.folded.has(at)) {
      table.fold(at);
    } else if (table.isTree) {
      table.goTo(table.recorded.parent[at]);
    }
  },
};

function neighbour(table, at, distance) {
  const rows = table.visible();
  table.goTo(rows[rows.indexOf(at) + distance]);
}

export function listenToKeys(table) {
  table.element.addEventListener('keydown', (event) => {
    const isOnRow = event.target.classList.contains('open');
    if (isOnRow && keys[event.key] && !event.ctrlKey && !event.metaKey && !event.altKey) {
      event.preventDefault();
      keys[event.key](table, Number(event.target.closest('tr').dataset.execution));
    }
  });
}
