#pragma once

#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/reading/Runs.h"

#include <cstddef>
#include <map>
#include <set>
#include <string>

namespace Velora::Ts {

/// A parameter that events have. Texts are as stored.
struct NamedParameter {
  std::set<std::string> events, kinds;  ///< Where it is.
  std::string lastAt;                   ///< The newest time that was found.
};

/// The names of parameters to choose from, found without reading a whole store: those of the newest events, and of
/// some events at each of many moments since the first one. A name that only a few events have can be missing.
class NewestNames {
 public:
  static constexpr std::size_t mostNames = 2000;
  static constexpr std::size_t mostEvents = 20;  ///< Names of events of a parameter.
  static constexpr std::size_t longest = 200;    ///< Characters; longer names are left out.

  /// Adds the names in a store.
  void Add(const Store::Reader& store);
  /// Adds those of a run: of its first and its last events.
  void Add(const Store::Reader& store, const Store::Run& run);

  const std::map<std::string, NamedParameter>& Parameters() const { return parameters; }
  /// Whether there were more names than are kept.
  bool IsCut() const { return cut; }

 private:
  void Take(Store::Rows& rows);

  std::map<std::string, NamedParameter> parameters;
  bool cut = false;
};

}  // namespace Velora::Ts
