#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace Velora::Ts {

/// The options and arguments of a verb. Each has a variable, which has its value when the command line has been read,
/// and keeps its own where it is not given. A name without dashes is that of an argument.
class Options {
 public:
  explicit Options(CLI::App& line) : line(line) {}

  void AddText(const std::string& name, std::string& value, const std::string& help);
  /// A text without which the command line is wrong.
  void AddRequiredText(const std::string& name, std::string& value, const std::string& help);
  /// One of some texts.
  void AddChoice(const std::string& name, std::string& value, const std::vector<std::string>& choices,
                 const std::string& help);
  /// Texts separated by commas.
  void AddList(const std::string& name, std::vector<std::string>& values, const std::string& help);
  /// A number above zero.
  void AddCount(const std::string& name, long long& value, const std::string& help);
  void AddFlag(const std::string& name, bool& value, const std::string& help);

  /// Lets two of the options never be given together.
  void Exclude(const std::string& name, const std::string& other);
  /// Lets an option be given only together with another.
  void Require(const std::string& name, const std::string& other);

 private:
  CLI::App& line;
};

}  // namespace Velora::Ts
