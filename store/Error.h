#pragma once

#include <stdexcept>
#include <string>

namespace Velora::Store {

/// The store cannot do what it was asked. The text says which thing is wrong, how, and what was expected. Records that
/// were acknowledged before are not lost.
class Error : public std::runtime_error {
 public:
  /// @param what the text; it may contain zero bytes.
  explicit Error(const std::string& what);
};

}  // namespace Velora::Store
