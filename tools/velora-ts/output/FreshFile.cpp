#include "output/FreshFile.h"

#include "store/Error.h"

#include <array>
#include <cstdio>
#include <random>
#include <utility>

namespace Velora::Ts {

namespace {

std::string RandomDigits() {
  std::random_device random;
  std::array<char, 17> digits{};
  static_cast<void>(std::snprintf(digits.data(), digits.size(), "%08x%08x", random(), random()));
  return digits.data();
}

template <typename Work>
auto Naming(const std::string& words, const Work& work) {
  try {
    return work();
  } catch (const System::Failure& failure) {
    throw Store::Error(words + " cannot be written: " + failure.what());
  }
}

}  // namespace

FreshFile::FreshFile(std::string words, const std::string& target, unsigned mode)
    : words(std::move(words)),
      target(target),
      file(Naming(this->words, [&] { return System::NewFile(target + '.' + RandomDigits() + ".part", mode); })) {}

void FreshFile::Write(std::string_view content) const {
  Naming(words, [&] { file.Write(content); });
}

void FreshFile::TakeName(Existing existing) {
  Naming(words, [&] { file.MoveTo(target, existing); });
}

}  // namespace Velora::Ts
