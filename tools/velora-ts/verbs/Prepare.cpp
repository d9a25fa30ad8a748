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
    options.AddText(
        "--hosts", hosts,
        "Let this role of the PostgreSQL server add rows and read them, and revoke all other rights of the role and of "
        "everybody on the store",
        "ROLE");
  }

  ExitCode Execute() override {
    PrepareStore(Database(), hosts);
    // For example, a partition is missing because another program has a table of its name.
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
    "prepare", "Makes the store or upgrades it to this version. On a server, the owner of the database must run it.",
    "prepare --hosts microscopes", &Make<PrepareVerb>};

}  // namespace Velora::Ts
