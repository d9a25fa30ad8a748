#include "exporting/UniqueName.h"

namespace Velora::Ts {

std::string UniqueName(std::set<std::string>& taken, const std::string& name, int occurrence) {
  const auto numbered = [&] { return name + " (" + std::to_string(occurrence) + ')'; };
  std::string unique = occurrence == 1 ? name : numbered();
  while (!taken.insert(unique).second) {
    ++occurrence;
    unique = numbered();
  }
  return unique;
}

}  // namespace Velora::Ts
