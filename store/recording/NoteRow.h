#pragma once

#include <string>

namespace Velora::Store {

class Writer;

/// A note about a run.
struct NoteRow {
  long long root = 0;  ///< Key of the root of the run.
  std::string author, kind, text;
};

/// Adds a note with the present time, in a transaction of its own.
void AddNote(Writer& store, const NoteRow& note);

}  // namespace Velora::Store
