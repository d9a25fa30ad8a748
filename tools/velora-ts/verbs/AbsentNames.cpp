#include "verbs/AbsentNames.h"

#include "output/Output.h"
#include "output/Times.h"
#include "output/Words.h"

namespace Velora::Ts {

using namespace Store;

ExitCode ExplainAbsence(const Store::Reader& store, Store::Named kind, const std::string& name) {
  const std::string what = (kind == Named::Event ? "is named '" : "has a parameter named '") + Shown(name) + '\'';
  if (const auto newest = NewestTimeOf(store, kind, name)) {
    Complain("no event of those asked for " + what + "; the newest in the store is of " + LocalTime(*newest, true));
    return Done;
  }
  std::string nearest;
  for (const std::string& one : NearestNames(store, kind, name)) {
    nearest += (nearest.empty() ? "'" : ", '") + Shown(one) + '\'';
  }
  Complain("no event " + what +
           (nearest.empty() ? "; there are no names yet" : "; expected a name, such as " + nearest));
  return Found;
}

}  // namespace Velora::Ts
