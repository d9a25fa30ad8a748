#pragma once

#include "store/reading/Notes.h"
#include "store/reading/Rows.h"

#include <string>

namespace Velora::Ts {

// Notes about a run, for a person and as JSON.

/// One line: when it was written, by whom, as what, and the text.
std::string NoteInWords(const Store::Rows& notes);
/// A note as a JSON object.
std::string NoteAsJson(const Store::Note& note);
/// The notes of a run as a JSON list.
/// @param notes a query of QueryNotes() that was asked for the run.
std::string NotesAsJson(Store::Rows& notes);
/// The notes of a run in a few words: the newest cause or tag and how many notes there are beside it, or how many there
/// are. Empty if there are none.
std::string NotesInShort(Store::Rows& notes);

}  // namespace Velora::Ts
