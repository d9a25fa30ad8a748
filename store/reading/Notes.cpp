#include "store/reading/Notes.h"

#include "store/reading/Reader.h"
#include "store/reading/TableIn.h"
#include "store/schema/Tables.h"

namespace Velora::Store {

std::string NotesIn(const Reader& store) { return TableIn(store, TableNamed("notes")); }

bool HasNotes(const Reader& store) {
  Rows rows(store, "SELECT MAX(note_id) FROM " + NotesIn(store) + " n");
  return rows.Next() && !rows.IsNull(0);
}

Rows QueryNotes(const Reader& store) {
  return {store, "SELECT note_id, author, kind, text, at FROM " + NotesIn(store) +
                     " n WHERE root_id = ?1 ORDER BY at, note_id"};
}

Rows QueryNewestNotes(const Reader& store, long long most, std::size_t longest) {
  return {store, "SELECT note_id, author, kind, text, at FROM (SELECT note_id, " + Beginning("author", longest) +
                     " AS author, " + Beginning("kind", longest) + " AS kind, " + Beginning("text", longest) +
                     " AS text, at FROM " + NotesIn(store) +
                     " n WHERE root_id = ?1 ORDER BY at DESC, note_id DESC LIMIT " + std::to_string(most) +
                     ") newest ORDER BY at, note_id"};
}

Note NoteAt(const Rows& rows) {
  const auto text = [&rows](int column) { return std::string(rows.Text(column)); };
  return {rows.Integer(0), text(1), text(2), text(3), text(4)};
}

}  // namespace Velora::Store
