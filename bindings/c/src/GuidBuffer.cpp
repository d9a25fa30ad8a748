#include "GuidBuffer.h"

#include "Boundary.h"

#include <algorithm>

namespace Velora::CInterface {

GuidBuffer::GuidBuffer(char* data, std::size_t capacity, std::size_t* size)
    : data(data), capacity(capacity), size(size) {
  if (data == nullptr) {
    throw Misuse("guid is null");
  }
  if (capacity < VELORA_TS_GUID_CAPACITY) {
    throw Misuse("guid_capacity is " + std::to_string(capacity) + ", expected at least " +
                 std::to_string(VELORA_TS_GUID_CAPACITY));
  }
}

void GuidBuffer::Take(const char* created, const std::string& guid) const {
  if (guid.size() >= capacity) {
    throw Failure(VELORA_TS_TOO_LONG, std::string(created) + ", but its guid is longer than the buffer: " + guid);
  }
  Write(guid);
}

void GuidBuffer::Write(const std::string& guid) const {
  *std::copy(guid.begin(), guid.end(), data) = '\0';
  if (size != nullptr) {
    *size = guid.size();
  }
}

}  // namespace Velora::CInterface
