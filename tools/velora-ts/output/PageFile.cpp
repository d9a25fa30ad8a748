#include "output/PageFile.h"

#include "store/Error.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace Velora::Ts {

namespace {

std::string TargetOf(const std::string& path) {
  std::error_code unknown;
  const std::filesystem::path target = std::filesystem::canonical(path, unknown);
  return unknown ? path : target.string();
}

}  // namespace

PageFile::PageFile(const std::string& path) : path(path), target(TargetOf(path)) {
  std::error_code unknown;
  if (std::filesystem::exists(path, unknown) && !std::filesystem::is_regular_file(path, unknown)) {
    fresh = target;
    stream.reset(std::fopen(fresh.c_str(), "w"));
  }
  for (int number = 1; !stream && (number == 1 || errno == EEXIST); ++number) {
    fresh = target + '.' + std::to_string(number) + ".new";
    stream.reset(std::fopen(fresh.c_str(), "wx"));
  }
  Expect(stream != nullptr);
}

PageFile::~PageFile() {
  if (stream && fresh != target) {
    static_cast<void>(std::remove(fresh.c_str()));
  }
}

void PageFile::Write(std::string_view text) {
  Expect(std::fwrite(text.data(), 1, text.size(), stream.get()) == text.size());
  bytes += text.size();
}

void PageFile::Finish() {
  Expect(std::fflush(stream.get()) == 0);
  Expect(fresh == target || std::rename(fresh.c_str(), target.c_str()) == 0);
  stream.reset();
}

void PageFile::Expect(bool good) const {
  if (!good) {
    throw Store::Error("page '" + path + "' cannot be written: " + std::system_category().message(errno));
  }
}

}  // namespace Velora::Ts
