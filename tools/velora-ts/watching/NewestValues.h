#pragma once

#include "store/reading/KnownStores.h"
#include "watching/Heads.h"
#include "watching/Now.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace Velora::Ts {

/// The newest number of each parameter that was asked for, for each instrument.
class NewestValues {
 public:
  /// @param names of the parameters, as given.
  explicit NewestValues(std::vector<std::string> names) : names(std::move(names)) {}

  /// Begins anew, with the newest events of each store: only so many that this takes a moment.
  void Begin(const Store::Reader& store, const Heads& heads);
  /// Takes events with these keys.
  void Take(const Store::Reader& store, const Store::KeyRange& events);
  /// By instrument, then in the order of the names.
  std::vector<ValueNow> Shown() const;

 private:
  const std::vector<std::string> names;
  std::map<std::pair<std::string, std::size_t>, ValueNow> newest;  // by instrument and place in `names`
};

}  // namespace Velora::Ts
