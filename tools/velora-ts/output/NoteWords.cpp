#include "output/NoteWords.h"

#include "output/Times.h"
#include "output/Words.h"
#include "store/reading/Notes.h"
#include "store/values/Json.h"

namespace Velora::Ts {

using namespace Store;

std::string NoteInWords(const Rows& notes) {
  const Note note = NoteAt(notes);
  return LocalTime(note.at, false) + ' ' + Shown(note.author) + ", " + Shown(note.kind) + ": " + Shown(note.text);
}

std::string NoteAsJson(const Note& note) {
  std::string json = "{\"number\":" + std::to_string(note.number);
  for (const auto& [name, text] :
       {std::pair("author", &note.author), {"kind", &note.kind}, {"text", &note.text}, {"at", &note.at}}) {
    json += std::string(",\"") + name + "\":";
    AppendText(json, *text);
  }
  return json + '}';
}

std::string NotesAsJson(Rows& notes) {
  std::string json;
  while (notes.Next()) {
    json += (json.empty() ? "[" : ",") + NoteAsJson(NoteAt(notes));
  }
  return json.empty() ? "[]" : json + ']';
}

std::string NotesInShort(Rows& notes) {
  std::string newest;
  int count = 0;
  for (; notes.Next(); ++count) {
    if (const Note note = NoteAt(notes); note.kind == "cause" || note.kind == "tag") {
      newest = Shown(note.text);
    }
  }
  if (newest.empty()) {
    return count == 0 ? "" : count == 1 ? "1 note" : std::to_string(count) + " notes";
  }
  return newest + (count > 1 ? " (+" + std::to_string(count - 1) + ')' : "");
}

}  // namespace Velora::Ts
