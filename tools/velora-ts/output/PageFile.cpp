#include "output/PageFile.h"

#include "store/Error.h"

#include <VeloraSystem/Path.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace Velora::Ts {

namespace {

// What a link leads to, so that it stays one.
std::string TargetOf(const std::string& path) {
  std::error_code unknown;
  const std::filesystem::path target = std::filesystem::canonical(System::PathOf(path), unknown);
  return unknown ? path : System::TextOf(target);
}

bool IsDevice(const std::filesystem::path& path) {
  std::error_code unknown;
  return std::filesystem::exists(path, unknown) && !std::filesystem::is_regular_file(path, unknown);
}

}  // namespace

PageFile::PageFile(const std::string& path) : words("page '" + path + "'") {
  if (IsDevice(System::PathOf(path))) {
    device.reset(std::fopen(path.c_str(), "w"));
    Expect(device != nullptr);
  } else {
    file.emplace(words, TargetOf(path), 0666U);
  }
}

void PageFile::Write(std::string_view text) {
  if (file) {
    file->Write(text);
  } else {
    Expect(std::fwrite(text.data(), 1, text.size(), device.get()) == text.size());
  }
  bytes += text.size();
}

void PageFile::Finish() {
  if (file) {
    file->TakeName(FreshFile::Existing::Replace);
  } else {
    Expect(std::fflush(device.get()) == 0);
  }
}

void PageFile::Expect(bool good) const {
  if (!good) {
    throw Store::Error(words + " cannot be written: " + std::generic_category().message(errno));
  }
}

}  // namespace Velora::Ts
