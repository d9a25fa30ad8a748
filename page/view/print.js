// On paper the page is one sheet of A4: light, as wide as the sheet, with as much of the table as fits.

import { count } from './text.js';

const sheetHeight = 1047; // of A4 within its margins, in pixels of CSS

export function preparePrinting(table, redraw) {
  const facts = document.getElementById('all-facts');
  let wereOpen;
  window.addEventListener('beforeprint', () => {
    document.documentElement.classList.add('printing');
    wereOpen = facts.open;
    facts.open = true;
    redraw();
    fitOnSheet(table);
  });
  window.addEventListener('afterprint', () => {
    document.documentElement.classList.remove('printing');
    facts.open = wereOpen;
    redraw();
  });
}

/** Takes off columns and rows for which there is no room, and says so. */
function fitOnSheet({ element, shown, tree: { order: rows } }) {
  const more = document.getElementById('more');
  let columns = shown.length;
  while (columns > 1 && element.offsetWidth > element.parentElement.clientWidth) {
    --columns;
    [...element.rows].forEach((row) => row.cells.length > columns && row.deleteCell(-1));
  }
  const bottom = sheetHeight - more.offsetHeight - 4 - window.scrollY;
  const bodyRows = [...element.tBodies[0].rows];
  bodyRows.filter((row) => row.getBoundingClientRect().bottom > bottom).forEach((row) => row.remove());
  const left = element.querySelectorAll('tr[data-execution]').length;
  if (left < rows.length || columns < shown.length) {
    const ofColumns = columns < shown.length ? `, ${columns} of ${shown.length} columns` : '';
    more.textContent = `${left} of ${count(rows.length, 'row')}${ofColumns}; the page itself has all of them`;
  }
}
