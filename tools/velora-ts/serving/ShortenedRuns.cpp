#include "serving/ShortenedRuns.h"

#include "output/NoteWords.h"
#include "output/Shorten.h"

#include <utility>
#include <vector>

namespace Velora::Ts {

using namespace Store;

ShortenedRuns::ShortenedRuns(const Reader& store, int storeNumber, std::size_t longest, long long mostNotes)
    : storeNumber(storeNumber),
      longest(longest),
      mostNotes(mostNotes),
      notes(QueryNewestNotes(store, mostNotes + 1, longest + 1)) {}

std::string ShortenedRuns::Members(ListedRun run, bool moreIsCut) {
  bool cut = moreIsCut;
  Execution& root = run.root;
  for (std::string* const text : {&root.guid, &root.node, &root.description, &root.startedAt, &root.instrument,
                                  &root.host, &root.activity, &root.version, &root.statusAt, &run.lastRecorded}) {
    cut = Shorten(*text, longest) || cut;
  }
  std::vector<std::string> objects;
  for (notes.Ask(root.key); notes.Next();) {
    Note note = NoteAt(notes);
    for (std::string* const text : {&note.author, &note.kind, &note.text, &note.at}) {
      cut = Shorten(*text, longest) || cut;
    }
    objects.push_back(NoteAsJson(note));
  }
  std::string list = "[";
  const bool more = std::cmp_greater(objects.size(), mostNotes);
  for (std::size_t place = more ? 1 : 0; place < objects.size(); ++place) {
    list += (list.size() > 1 ? "," : "") + objects[place];
  }
  return JsonMembers(run, list + ']') + ",\"store\":" + std::to_string(storeNumber) +
         ",\"cut\":" + (cut || more ? "true" : "false");
}

}  // namespace Velora::Ts
