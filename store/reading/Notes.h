#pragma once

#include "store/reading/Rows.h"

#include <string>

namespace Velora::Store {

class Reader;

/// What somebody wrote about a run after its recording. Its texts are as stored.
struct Note {
  long long number = 0;
  std::string author, kind, text, at;
};

/// What a query names after FROM to ask for notes; an alias must follow. A store of an earlier version has no notes.
std::string NotesIn(const Reader& store);

/// Whether the store has any notes.
bool HasNotes(const Reader& store);

/// A query for the notes of the run whose root is ?1, in the order of writing. NoteAt() reads its rows.
Rows QueryNotes(const Reader& store);
/// The newest of them only, in the same order.
/// @param most so many notes.
/// @param longest so many characters of each text.
Rows QueryNewestNotes(const Reader& store, long long most, std::size_t longest);
/// The note at which the rows of either query stand.
Note NoteAt(const Rows& rows);

}  // namespace Velora::Store
