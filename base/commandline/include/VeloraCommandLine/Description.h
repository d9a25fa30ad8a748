#pragma once

#include <string>
#include <vector>

namespace Velora::CommandLine {

/// An option or an argument of a command line.
struct OptionDescription {
  std::vector<std::string> names;     ///< With their dashes, the short one first; of an argument, its name alone.
  std::string form;                   ///< What a value is, such as FOLDER, "NAME,..." or "csv|trace"; of a flag, empty.
  std::vector<std::string> choices;   ///< All values, if they are few.
  std::string help;                   ///< Sentences, without the last full stop.
  std::vector<std::string> excluded;  ///< What cannot be given together with it.
  std::vector<std::string> required;  ///< What must be given together with it.
  bool isArgument = false;
  bool isRequired = false;
  bool isRepeated = false;  ///< It can be given more than once.
  bool isOpen = false;      ///< It takes several values, up to the next option.

  /// The longest name.
  const std::string& Name() const { return names.back(); }
};

struct VerbDescription {
  std::string name;
  std::string help;
  std::string example;  ///< Command lines without the name of the program, one a line.
  std::vector<OptionDescription> options;
};

/// The command line of a program as data, made from what reads it.
struct Description {
  std::string program;
  std::string help;
  std::vector<OptionDescription> options;  ///< Without a verb.
  std::vector<VerbDescription> verbs;      ///< In the order of the help; at their end "help" itself.
};

}  // namespace Velora::CommandLine
