#pragma once

#include <VeloraCommandLine/Description.h>
#include <VeloraCommandLine/Options.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Velora::CommandLine {

/// The command line of a program, which has options, or verbs with options of their own.
class Program {
 public:
  /// @param description one or two sentences about what the program does.
  /// @param footer the end of the help.
  /// @param name the name in the help; empty for the one that it is called by.
  explicit Program(const std::string& description, const std::string& footer = "", const std::string& name = "");
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  /// The program's own options.
  Options Own();
  /// Adds --version, which writes a text.
  void AddVersion(const std::string& text);
  /// Adds a verb. The command line must then name one.
  /// @param example command lines without the name of the program, one a line, with which the help ends.
  /// @return the options of the verb.
  Options AddVerb(const std::string& name, const std::string& help, const std::string& example);

  /// Gives the variables of the options their values. Writes the help to standard output if it is asked for, and what
  /// is wrong with the command line to standard error.
  /// @param arguments those of the program, whose name is the first.
  /// @return nothing if the program goes on; else whether it was asked for help or the version, and has ended well.
  std::optional<bool> Read(std::vector<std::string> arguments);
  /// The verb that was named.
  std::string Verb() const;
  /// Writes to standard error what is wrong, as Read does.
  void Refuse(const std::string& mistake) const;

  /// What Read understands.
  Description Describe() const;

 private:
  const std::unique_ptr<CLI::App> app;
  std::map<std::string, std::string> examples;  // of the verbs
};

}  // namespace Velora::CommandLine
