#include "asking/ListedRun.h"

#include "output/StateWords.h"
#include "output/Words.h"

namespace Velora::Ts {

std::string JsonMembers(const ListedRun& run, const std::string& notes) {
  return JsonMembers(run.root) + ",\"unfinished\":" + (run.unfinished ? "true," : "false,") +
         JsonState(run.known, run.lastRecorded) + ",\"notes\":" + notes;
}

}  // namespace Velora::Ts
