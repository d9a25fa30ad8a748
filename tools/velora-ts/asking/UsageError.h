#pragma once

#include <stdexcept>

namespace Velora::Ts {

/// What was asked for is wrong; the text says what was expected.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace Velora::Ts
