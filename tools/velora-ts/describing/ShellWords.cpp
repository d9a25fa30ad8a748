#include "describing/ShellWords.h"

#include <stdexcept>

namespace Velora::Ts::Describing {

std::string Quoted(const std::string& text) {
  std::string quoted = "'";
  for (const char character : text) {
    quoted += character == '\'' ? std::string("'\\''") : std::string(1, character);
  }
  return quoted + '\'';
}

std::string Joined(const std::vector<std::string>& words) {
  std::string joined;
  for (const std::string& word : words) {
    joined += (joined.empty() ? "" : " ") + word;
  }
  return joined;
}

std::string Filled(const std::string& script, const std::string& name, const std::string& text) {
  const std::string line = "\n# {" + name + "}\n";
  const std::size_t at = script.find(line);
  if (at == std::string::npos) {
    throw std::runtime_error("expected the line '# {" + name + "}'");
  }
  return std::string(script).replace(at + 1, line.size() - 1, text);
}

}  // namespace Velora::Ts::Describing
