#pragma once

#include <functional>
#include <string>

/// Hears every question to a store, so that a test can have their plans explained. Empty otherwise.
inline std::function<void(const std::string& question)> questionListener;
