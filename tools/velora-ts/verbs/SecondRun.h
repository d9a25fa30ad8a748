#pragma once

#include "store/reading/Reader.h"
#include "store/reading/Runs.h"
#include "verbs/Verb.h"

#include <memory>
#include <optional>
#include <string>

namespace Velora::Ts {

/// The run with which another one is compared, and its store.
class SecondRun {
 public:
  /// Declares the option --with.
  /// @param otherwise what it means without a second run, for its help.
  explicit SecondRun(Options& options, const std::string& otherwise = "");

  /// The value of --with.
  const std::string& Place() const { return place; }

  /// Finds the run. If there is none or several, says so on standard error.
  /// @param store of the first run; also that of the second one, without --with.
  /// @param name of the second run; empty for the newest finished run like the first one and before it.
  std::optional<Store::Run> Find(const Store::Reader& store, const Store::Run& first, const std::string& name);
  /// The store of the second run, once it was found.
  const Store::Reader& StoreOf(const Store::Reader& first) const { return own ? *own : first; }

 private:
  std::string place;
  std::unique_ptr<Store::Reader> own;
};

}  // namespace Velora::Ts
