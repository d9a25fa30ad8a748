#pragma once

#include "asking/TrendGroups.h"

#include <list>
#include <memory>
#include <string>
#include <unordered_map>

namespace Velora::Ts {

/// A store in one state.
struct OpenStore {
  OpenStore(int number, const Store::Database& database)
      : number(number), reader(std::make_unique<Store::Reader>(database)) {}

  int number;
  std::unique_ptr<Store::Reader> reader;
  std::unordered_map<long long, std::string> runs = {};  ///< The guids of the runs of events.
};

/// A JSON object with the picture, without its closing brace.
/// @param stores all of which the picture has cells; they get the runs of the extremes.
std::string AsJson(const TrendPicture& picture, std::list<OpenStore>& stores, const TrendQuestion& question);

/// The stored form of a time in microseconds since 1970, or of the nearest one that can be stored.
std::string TimeText(long long at);

}  // namespace Velora::Ts
