#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace Velora::CommandLine {

/// The options and arguments of a program or of a verb. Each is bound to a variable, which gets the value from the
/// command line. If the option is not given, the variable keeps its value. A name without dashes, such as "RUN", is an
/// argument.
class Options {
 public:
  explicit Options(CLI::App& line) : line(line) {}

  // Texts must not be empty: an empty one is a mistake, such as a variable of a script that is not set. Their form,
  // such as FOLDER, is what the help calls them, and says what a shell can offer. That of an argument is its name if
  // none is given.

  /// A text.
  void AddText(const std::string& name, std::string& value, const std::string& help, const std::string& form = "");
  /// A text that must be given.
  void AddRequiredText(const std::string& name, std::string& value, const std::string& help,
                       const std::string& form = "");
  /// Texts.
  void AddTexts(const std::string& name, std::vector<std::string>& values, const std::string& help);
  /// Texts of which at least one must be given.
  void AddRequiredTexts(const std::string& name, std::vector<std::string>& values, const std::string& help);
  /// A text that can be given several times.
  void AddRepeatedText(const std::string& name, std::vector<std::string>& values, const std::string& help,
                       const std::string& form = "");
  /// One of the texts in `choices`.
  void AddChoice(const std::string& name, std::string& value, const std::vector<std::string>& choices,
                 const std::string& help);
  /// Texts, separated by commas.
  /// @param form of each.
  void AddList(const std::string& name, std::vector<std::string>& values, const std::string& help,
               const std::string& form = "NAME");
  /// Names of files: one or more after the name of the option, which can also be given several times.
  void AddFiles(const std::string& name, std::vector<std::string>& values, const std::string& help);
  /// A whole number greater than zero.
  void AddCount(const std::string& name, long long& value, const std::string& help);
  /// An option without a value, which sets its variable to true.
  void AddFlag(const std::string& name, bool& value, const std::string& help);

  /// Refuses two options together.
  void Exclude(const std::string& name, const std::string& other);
  /// Refuses an option without another one.
  void Require(const std::string& name, const std::string& other);

 private:
  CLI::App& line;
};

}  // namespace Velora::CommandLine
