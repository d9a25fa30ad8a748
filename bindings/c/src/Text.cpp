#include "Text.h"

#include "Boundary.h"

#include <cstdint>
#include <limits>

namespace Velora::CInterface {

std::string TextOf(const char* name, const char* data, std::size_t size) {
  if (data == nullptr) {
    if (size != 0) {
      throw Misuse(std::string(name) + " is null, and its size is not 0");
    }
    return {};
  }
  if (size == VELORA_TS_ZERO_TERMINATED) {
    return data;
  }
  if (size > std::numeric_limits<std::ptrdiff_t>::max()) {
    throw Misuse("the size of " + std::string(name) + " is beyond all memory");
  }
  return {data, size};
}

}  // namespace Velora::CInterface
