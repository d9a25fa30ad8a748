#pragma once

#include <functional>
#include <string>

namespace Velora::Store {

/// If it is set, called with each query to a store. Tests use it to look at the plans of the queries.
inline std::function<void(const std::string& question)> questionListener;

}  // namespace Velora::Store
