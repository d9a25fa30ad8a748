#include "serving/EachStore.h"

#include "store/Error.h"
#include "store/values/Json.h"

namespace Velora::Ts {

using namespace Store;

std::optional<long long> StoreNumber(const Served& served, Http::Question& question, const std::string& parameter) {
  return question.Whole(parameter, 1, static_cast<long long>(served.stores.size()));
}

std::string EachStore(
    const Served& served, std::optional<long long> number,
    const std::function<void(const ServedStore& place, const std::shared_ptr<const Reader>& store)>& visit) {
  std::string errors = "[";
  for (const ServedStore& place : served.stores) {
    if (number && *number != place.number) {
      continue;
    }
    try {
      visit(place, std::make_shared<const Reader>(place.settings.database));
    } catch (const Error& error) {
      if (number) {
        throw;
      }
      errors += (errors.size() > 1 ? ",{\"store\":" : "{\"store\":") + std::to_string(place.number) + ",\"error\":";
      AppendText(errors, error.what());
      errors += '}';
    }
  }
  return errors + ']';
}

}  // namespace Velora::Ts
