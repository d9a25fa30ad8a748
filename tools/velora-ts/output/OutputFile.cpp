#include "output/OutputFile.h"

#include "store/Error.h"

#include <VeloraSystem/Path.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
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

/// Expects that a file is not there, or empty, or begins as it will. What cannot be read can be anything.
void ExpectReplaceable(const std::string& path, const std::string& beginning) {
  std::error_code unknown;
  if (!std::filesystem::exists(System::PathOf(path), unknown)) {
    return;
  }
  std::string start(beginning.size(), '\0');
  std::ifstream file(System::PathOf(path), std::ios::binary);
  file.read(start.data(), static_cast<std::streamsize>(start.size()));
  start.resize(static_cast<std::size_t>(file.gcount()));
  if (!file.is_open() || (!start.empty() && start != beginning)) {
    throw Store::Error("file '" + path +
                       "' is not replaced, because no such command wrote it; expected the name of a new file, or of "
                       "one that such a command wrote");
  }
}

}  // namespace

OutputFile::OutputFile(const std::string& kind, const std::string& path, const std::string& beginning)
    : words(kind + " '" + path + "'") {
  if (IsDevice(System::PathOf(path))) {
    device.reset(std::fopen(path.c_str(), "w"));
    Expect(device != nullptr);
  } else {
    ExpectReplaceable(path, beginning);
    file.emplace(words, TargetOf(path), 0666U);
  }
}

void OutputFile::Write(std::string_view text) {
  if (file) {
    file->Write(text);
  } else {
    Expect(std::fwrite(text.data(), 1, text.size(), device.get()) == text.size());
  }
  bytes += text.size();
}

void OutputFile::Finish() {
  if (file) {
    file->TakeName(FreshFile::Existing::Replace);
  } else {
    Expect(std::fflush(device.get()) == 0);
  }
}

void OutputFile::Expect(bool good) const {
  if (!good) {
    throw Store::Error(words + " cannot be written: " + std::generic_category().message(errno));
  }
}

}  // namespace Velora::Ts
