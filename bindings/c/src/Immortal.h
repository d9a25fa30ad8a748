#pragma once

namespace Velora::CInterface {

/// An object of static storage that is never destroyed. Threads that still run while the process ends can use it.
template <typename Object>
union Immortal {
  Immortal() : object() {}
  Immortal(const Immortal&) = delete;
  Immortal& operator=(const Immortal&) = delete;
  ~Immortal() {}

  Object object;
};

}  // namespace Velora::CInterface
