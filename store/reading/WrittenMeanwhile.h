#pragma once

#include "store/Error.h"

namespace Velora::Store {

/// A host began to write to a file that nothing had in use, so that what was read of it can be a mixture of two states.
class WrittenMeanwhile : public Error {
 public:
  using Error::Error;
};

}  // namespace Velora::Store
