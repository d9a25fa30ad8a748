#include "proving/SecretFile.h"

#include "store/settings/WholeFile.h"

#include "store/Error.h"

#include <cstdint>

namespace Velora::Ts {

namespace {

constexpr std::uintmax_t largestFile = 65536;

}  // namespace

std::string ReadSecretFile(const std::string& option, const std::string& file) {
  try {
    return Store::ReadWholeFile(file, largestFile);
  } catch (const Store::Error&) {
    throw Store::Error("the file of " + option + " cannot be read; expected the name of a file of at most 64 kB");
  }
}

}  // namespace Velora::Ts
