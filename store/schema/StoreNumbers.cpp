#include "store/schema/StoreNumbers.h"

namespace Velora::Store {

std::string StoreOf(const std::string& key) { return key + " / " + std::to_string(numbersOfAStore); }

std::string IsOwn(const std::string& key) { return key + " < " + std::to_string(numbersOfAStore); }

std::string IsOfStore(const std::string& key, long long store) {
  const std::string first = std::to_string(ShiftOf(store) + 1);
  const std::string last = std::to_string(ShiftOf(store) + numbersOfAStore - 1);
  const std::string between = key + " BETWEEN " + first + " AND " + last;
  return store != thisStore ? between
                            : "(" + key + " < " + std::to_string(numbersOfAStore) + " OR " + key +
                                  " >= " + std::to_string(firstMonthlyKey) + ")";
}

}  // namespace Velora::Store
