#pragma once

#include "store/asking/EventWindow.h"
#include "verbs/Verb.h"

#include <string>

namespace Velora::Ts {

/// The options that say which events are meant: --since, --until, --instrument, --activity and --name.
class WindowOptions {
 public:
  explicit WindowOptions(Options& options);

  /// @throws UsageError when a time is not understood.
  Store::EventWindow Window() const;
  bool HasSince() const { return !since.empty(); }
  const std::string& Name() const { return name; }

 private:
  std::string since, until, instrument, activity, name;
};

}  // namespace Velora::Ts
