#pragma once

#include <cstddef>
#include <string>

namespace Velora::CInterface {

/// The buffer of a caller for a guid.
class GuidBuffer {
 public:
  /// @throws Misuse if it cannot take every guid of TS. Nothing is written here: a text of the call can be in it.
  GuidBuffer(char* data, std::size_t capacity, std::size_t* size);

  /// Empties the buffer, and fills it with what `create` returns.
  /// @param created says what was done, if the guid is longer than the buffer.
  /// @throws Failure in that case, with the whole guid.
  template <typename Create>
  void Fill(const char* created, const Create& create) const {
    Write("");
    Take(created, create());
  }

 private:
  void Take(const char* created, const std::string& guid) const;
  void Write(const std::string& guid) const;

  char* data;
  std::size_t capacity;
  std::size_t* size;
};

}  // namespace Velora::CInterface
