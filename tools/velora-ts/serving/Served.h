#pragma once

#include "store/settings/Settings.h"

#include <string>
#include <vector>

namespace Velora::Ts {

class Trends;
class Watch;

/// A store that is served.
struct ServedStore {
  int number = 1;            ///< From 1, in the order of the command line.
  std::string folder;        ///< With its TSAL.config.
  Store::Settings settings;  ///< As they were at the start.
};

/// What is served. It does not change while the program runs; every thread can read it.
struct Served {
  std::vector<ServedStore> stores;
  Watch* watch = nullptr;    ///< Looks at all of them.
  Trends* trends = nullptr;  ///< Answers questions about them, and keeps what later answers need.
};

}  // namespace Velora::Ts
