#pragma once

#include <stdexcept>
#include <string>

namespace Velora::Store {

/// What the store raises when it cannot do what it was asked: which thing, what is wrong with it, what was expected.
/// Nothing that was acknowledged before is lost.
class Error : public std::runtime_error {
 public:
  /// @param what may quote texts with zero bytes.
  explicit Error(const std::string& what);
};

}  // namespace Velora::Store
