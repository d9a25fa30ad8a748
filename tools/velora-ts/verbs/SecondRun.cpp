#include "verbs/SecondRun.h"

#include "output/Output.h"
#include "output/Times.h"
#include "output/Words.h"
#include "store/comparing/Reference.h"
#include "store/settings/Settings.h"

namespace Velora::Ts {

using namespace Store;

SecondRun::SecondRun(Options& options) {
  options.AddText("--with", folder,
                  "Folder with the TSAL.config of the store that has the second run. Default: the same store",
                  "FOLDER");
}

std::optional<Run> SecondRun::Find(const Reader& store, const Run& first, const std::string& name) {
  if (!folder.empty()) {
    own = std::make_unique<Reader>(ReadSettings(folder).database);
  }
  if (!name.empty()) {
    return TheRunNamed(StoreOf(store), name);
  }
  const Reference reference = ReferenceOf(store, first, StoreOf(store));
  const std::string like = "finished run of activity '" + Shown(reference.activity) + "' on instrument '" +
                           Shown(reference.instrument) + "' that started before " + LocalTime(first.startedAt, false);
  if (reference.run) {
    Complain("compared with " + InWords(*reference.run) + ", the newest " + like);
  } else {
    Complain("there is no " + like + " in " + StoreOf(store).Name() + "; name a run to compare with");
  }
  return reference.run;
}

}  // namespace Velora::Ts
