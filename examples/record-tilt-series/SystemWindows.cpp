#include "System.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

// No name of a file has a quotation mark.
std::string Quoted(const std::string& word) { return '"' + word + '"'; }

}  // namespace

void SetUnlessSet(const char* variable, const std::string& value) {
  if (std::getenv(variable) == nullptr) {
    _putenv_s(variable, value.c_str());
  }
}

std::optional<std::string> OutputOf(const std::vector<std::string>& command) {
  std::string line;
  for (const std::string& word : command) {
    line += Quoted(word) + ' ';
  }
  line = '"' + line + "2> NUL\"";
  // A narrow line would be one in the code page.
  std::FILE* const pipe = _wpopen(fs::path(std::u8string(line.begin(), line.end())).c_str(), L"r");
  if (pipe == nullptr) {
    return std::nullopt;
  }
  std::string output;
  for (int byte = 0; (byte = std::fgetc(pipe)) != EOF;) {
    output += static_cast<char>(byte);
  }
  return _pclose(pipe) == 0 ? std::optional(output) : std::nullopt;
}
