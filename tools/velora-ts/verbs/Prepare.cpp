#include "output/Output.h"
#include "store/reading/Reader.h"
#include "store/recording/Preparation.h"
#include "store/soundness/Soundness.h"
#include "verbs/StoreVerb.h"

namespace Velora::Ts {

using namespace Store;

namespace {

class PrepareVerb : public StoreVerb {
 public:
  explicit PrepareVerb(Options& options) : StoreVerb(options) {
    options.AddText("--hosts", hosts, "Let this role of the PostgreSQL server record, and nothing else");
  }

  ExitCode Execute() override {
    PrepareStore(Database(), hosts);
    // What hosts miss after all, for example since a table of another one's has the name of a partition.
    const std::vector<std::string> missing = MissingRoom(Reader(Database()));
    for (const std::string& finding : missing) {
      Say("finding: " + finding);
    }
    if (!missing.empty()) {
      return Found;
    }
    Say("the store is ready" + (hosts.empty() ? "" : " for the role " + hosts));
    return Done;
  }

 private:
  std::string hosts;
};

}  // namespace

extern const Registration registeredPrepare = {
    "prepare", "Makes the store or brings it up to this version. Run as the owner of a server's database.",
    "prepare --hosts microscopes", &Make<PrepareVerb>};

}  // namespace Velora::Ts
