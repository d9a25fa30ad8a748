#pragma once

#include "asking/ListedRun.h"
#include "serving/Served.h"
#include "store/reading/Notes.h"
#include "store/reading/Reader.h"

#include <cstddef>
#include <string>

namespace Velora::Ts {

/// Writes runs as JSON with limited texts and notes, so that no record makes an answer long.
class ShortenedRuns {
 public:
  /// @param longest so many characters of each text. The run has to be read with one more, which shows that a text is
  /// cut.
  /// @param mostNotes so many notes of a run, the newest.
  ShortenedRuns(const Store::Reader& store, int storeNumber, std::size_t longest, long long mostNotes);

  /// The members of the object, without braces: those of `runs --json`, then `store`, and `cut`, which says whether
  /// anything was left out.
  /// @param moreIsCut whether something was left out of what else is said of the run.
  std::string Members(ListedRun run, bool moreIsCut = false);

 private:
  const int storeNumber;
  const std::size_t longest;
  const long long mostNotes;
  Store::Rows notes;
};

}  // namespace Velora::Ts
