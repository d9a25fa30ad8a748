#pragma once

#include <functional>
#include <string>

namespace Velora::Store {

/// Hears every question to a store, so that a test can have their plans explained. Empty otherwise.
inline std::function<void(const std::string& question)> questionListener;

}  // namespace Velora::Store
