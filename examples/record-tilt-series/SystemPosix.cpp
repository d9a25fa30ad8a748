#include "System.h"

#include <cstdio>
#include <cstdlib>

namespace {

std::string Quoted(const std::string& word) {
  std::string quoted = "'";
  for (const char character : word) {
    quoted += character == '\'' ? "'\\''" : std::string(1, character);
  }
  return quoted + '\'';
}

}  // namespace

void SetUnlessSet(const char* variable, const std::string& value) { setenv(variable, value.c_str(), 0); }

std::optional<std::string> OutputOf(const std::vector<std::string>& command) {
  std::string line;
  for (const std::string& word : command) {
    line += Quoted(word) + ' ';
  }
  std::FILE* const pipe = popen((line + "2> /dev/null").c_str(), "r");
  if (pipe == nullptr) {
    return std::nullopt;
  }
  std::string output;
  for (int byte = 0; (byte = std::fgetc(pipe)) != EOF;) {
    output += static_cast<char>(byte);
  }
  return pclose(pipe) == 0 ? std::optional(output) : std::nullopt;
}
