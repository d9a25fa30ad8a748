#include "verbs/SecondRun.h"

#include "output/Output.h"
#include "output/Times.h"
#include "output/Words.h"
#include "store/comparing/Reference.h"
#include "verbs/StoreVerb.h"

namespace Velora::Ts {

using namespace Store;

SecondRun::SecondRun(Options& options, const std::string& otherwise) {
  options.AddText("--with", place,
                  "File of the store that has RUN2, or folder with its TSAL.config" + otherwise +
                      ". Default: the store that TSAL.config names",
                  "FILE");
}

std::optional<Run> SecondRun::Find(const Reader& store, const Run& first, const std::string& name) {
  if (!place.empty()) {
    own = std::make_unique<Reader>(StoreAt(place));
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
