#pragma once

#include <stdexcept>

namespace Velora::System {

/// Why something cannot be done with a file, without its name.
struct Failure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace Velora::System
