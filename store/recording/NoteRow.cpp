#include "store/recording/NoteRow.h"

#include "store/recording/Writer.h"
#include "store/values/StoredText.h"
#include "store/values/StoredTime.h"

namespace Velora::Store {

void AddNote(Writer& store, const NoteRow& note) {
  Transaction transaction(store);
  const long long key = store.NextKey("notes", "note_id");
  store.Sql().Run("INSERT INTO notes (note_id, root_id, author, kind, text, at) VALUES (?1, ?2, ?3, ?4, ?5, ?6)", key,
                  note.root, ToStoredText(note.author), note.kind, ToStoredText(note.text), ToStoredTime(Now()));
  transaction.Commit();
}

}  // namespace Velora::Store
