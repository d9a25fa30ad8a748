#include "store/recording/NoteRow.h"

#include "store/recording/Writer.h"
#include "store/values/StoredText.h"
#include "store/values/StoredTime.h"

namespace Velora::Store {

void AddNote(Writer& store, const NoteRow& note) {
  Transaction transaction(store);
  store.Sql().Run("INSERT INTO notes (root_id, author, kind, text, at) VALUES (?1, ?2, ?3, ?4, ?5)", note.root,
                  ToStoredText(note.author), note.kind, ToStoredText(note.text), ToStoredTime(Now()));
  transaction.Commit();
}

}  // namespace Velora::Store
