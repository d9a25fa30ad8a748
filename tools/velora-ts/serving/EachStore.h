#pragma once

#include "serving/Served.h"
#include "serving/http/Question.h"
#include "store/reading/Reader.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace Velora::Ts {

/// The number of the store that the parameter `store`, or another one, names; nothing without it.
std::optional<long long> StoreNumber(const Served& served, Http::Question& question,
                                     const std::string& parameter = "store");

/// Opens a store, or all of them.
/// @param number of the one; nothing for all.
/// @param visit is called for each; what it throws says that the store cannot be read.
/// @return the stores that could not be read, and why, as a JSON list.
/// @throws Error when the one store that is asked for cannot be read.
std::string EachStore(
    const Served& served, std::optional<long long> number,
    const std::function<void(const ServedStore& place, const std::shared_ptr<const Store::Reader>& store)>& visit);

}  // namespace Velora::Ts
