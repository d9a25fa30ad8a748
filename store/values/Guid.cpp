#include "store/values/Guid.h"

#include "store/Error.h"

#include <array>
#include <cstdint>
#include <random>

namespace Velora::Store {
namespace {

constexpr std::string_view shape = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";

bool FitsShape(char wanted, char character) {
  const bool isDigit = (character >= '0' && character <= '9') || (character >= 'a' && character <= 'f');
  return wanted == 'x' ? isDigit : character == wanted;
}

}  // namespace

std::string NewGuid() {
  std::random_device random;  // the system's generator: no state to share between threads or to inherit by a fork
  std::string guid(shape);
  for (char& place : guid) {
    if (place == 'x') {
      place = "0123456789abcdef"[random() & 15U];
    }
  }
  guid[14] = '4';
  guid[19] = "89ab"[random() & 3U];
  return guid;
}

std::string GuidOf(const std::string& given, const char* what) {
  std::string guid = given;
  bool fits = guid.size() == shape.size();
  for (std::size_t at = 0; fits && at < guid.size(); ++at) {
    if (guid[at] >= 'A' && guid[at] <= 'F') {
      guid[at] = static_cast<char>(guid[at] - 'A' + 'a');
    }
    fits = FitsShape(shape[at], guid[at]);
  }
  if (!fits) {
    throw Error(std::string(what) + " '" + given + "' is not a guid; expected 32 hexadecimal digits in the form " +
                std::string(shape));
  }
  return guid;
}

}  // namespace Velora::Store
