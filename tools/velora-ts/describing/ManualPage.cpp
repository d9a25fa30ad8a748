#include "describing/ManualPage.h"

#include "describing/KnownWords.h"
#include "describing/Prose.h"
#include "describing/Roff.h"

#include <algorithm>
#include <map>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace Velora::Ts::Describing {

using CommandLine::Description;
using CommandLine::OptionDescription;
using CommandLine::VerbDescription;

namespace {

/// A help, with the options in it in bold.
std::string HelpAsRoff(const std::string& help) {
  static const std::regex option("--[a-z][a-z-]*");
  const bool ends = help.ends_with('.');
  return AsRoff(std::regex_replace(help, option, "`$&`") + (ends ? "" : "."));
}

std::string FormAsRoff(const OptionDescription& option) {
  std::string form;
  for (const std::string& choice : option.choices) {
    form += (form.empty() ? "" : "|") + Roff::Bold(choice);
  }
  return form.empty() ? Roff::Italic(option.form) : form;
}

std::string OptionAsRoff(const OptionDescription& option) {
  std::string names;
  for (const std::string& name : option.names) {
    names += (names.empty() ? "" : ", ") + (option.isArgument ? Roff::Italic(name) : Roff::Bold(name));
  }
  if (!option.isArgument && !option.form.empty()) {
    names += ' ' + FormAsRoff(option);
  }
  return ".TP\n" + names + '\n' + HelpAsRoff(option.help);
}

std::string UsageAsRoff(const Description& program, const VerbDescription& verb) {
  std::string usage = Roff::Bold(program.program + ' ' + verb.name);
  const bool hasOptions = std::any_of(verb.options.begin(), verb.options.end(),
                                      [](const OptionDescription& option) { return !option.isArgument; });
  usage += hasOptions ? " [" + Roff::Italic("OPTION") + "]..." : "";
  for (const OptionDescription& option : verb.options) {
    if (option.isArgument) {
      usage += option.isRequired ? ' ' + Roff::Italic(option.Name()) : " [" + Roff::Italic(option.Name()) + ']';
    }
  }
  return usage + '\n';
}

/// Whether two verbs have an option in common, which then need not be described twice.
bool IsSame(const OptionDescription& one, const OptionDescription& other) {
  return !one.isArgument && one.names == other.names && one.form == other.form && one.help == other.help;
}

bool HasSame(const std::vector<OptionDescription>& options, const OptionDescription& option) {
  return std::any_of(options.begin(), options.end(), [&](const auto& other) { return IsSame(option, other); });
}

/// The options that more than half of the verbs have, and those of the program.
std::vector<OptionDescription> CommonOptions(const Description& program) {
  std::vector<OptionDescription> common = program.options;
  for (const VerbDescription& verb : program.verbs) {
    for (const OptionDescription& option : verb.options) {
      const auto verbs = std::count_if(program.verbs.begin(), program.verbs.end(),
                                       [&](const VerbDescription& one) { return HasSame(one.options, option); });
      if (2 * verbs > std::ssize(program.verbs) && !HasSame(common, option)) {
        common.push_back(option);
      }
    }
  }
  return common;
}

class Page {
 public:
  Page(const Description& program, const std::string& version, const std::string& prose)
      : program(program), parts(PartsOf(prose)), version(version), common(CommonOptions(program)) {}

  std::string Roff() {
    ReadAboutVerbs();
    std::string page = ".TH " + Roff::Plain(program.program) + " 1 \"\" \"" + Roff::Plain(program.program) + ' ' +
                       version + "\" \"Velora TS logging\"\n";
    std::string verb;
    for (const Part& part : parts) {
      verb = part.kind == Part::Section ? "" : part.kind == Part::Verb ? part.title : verb;
      page += verb.empty() ? AsRoffWithChecks(part, verb) : "";
    }
    // A section needs no empty line before its first paragraph.
    page = std::regex_replace(page, std::regex("(\\n\\.SH [^\\n]*\\n)\\.PP\\n"), "$1");
    for (const char* const made : {"synopsis", "options", "verbs"}) {
      if (std::count_if(parts.begin(), parts.end(),
                        [&](const Part& part) { return part.kind == Part::Generated && part.title == made; }) != 1) {
        throw std::runtime_error("expected {" + std::string(made) + "} once");
      }
    }
    return page;
  }

 private:
  void ReadAboutVerbs() {
    std::string verb;
    for (const Part& part : parts) {
      if (part.kind == Part::Verb) {
        verb = part.title;
        ExpectKnown(verb, program, "");
      } else if (part.kind == Part::Section) {
        verb.clear();
      } else if (!verb.empty()) {
        aboutVerbs[verb] += AsRoffWithChecks(part, verb);
      }
    }
  }

  std::string AsRoffWithChecks(const Part& part, const std::string& verb) const {
    for (const std::string& command : CommandsIn(part.title + ' ' + part.text)) {
      ExpectKnown(command, program, verb);
    }
    switch (part.kind) {
      case Part::Section:
        return ".SH " + Roff::Plain(part.title) + '\n';
      case Part::Generated:
        return Made(part.title);
      case Part::Definition:
        return ".TP\n" + AsRoff(part.title) + AsRoff(part.text);
      case Part::Example:
        return ExampleAsRoff(part.text);
      default:
        return ".PP\n" + AsRoff(part.text);
    }
  }

  std::string ExampleAsRoff(const std::string& commands) const {
    std::istringstream lines(commands);
    for (std::string line; std::getline(lines, line);) {
      if (line.starts_with(program.program)) {
        ExpectKnown(line, program, "");
      }
    }
    return Roff::Example(commands);
  }

  std::string Made(const std::string& what) const {
    if (what == "synopsis") {
      return Synopsis();
    }
    if (what == "options") {
      return Options(common, {});
    }
    if (what == "verbs") {
      return Verbs();
    }
    throw std::runtime_error("'{" + what + "}': expected {synopsis}, {options} or {verbs}");
  }

  std::string Synopsis() const {
    std::string synopsis;
    for (const VerbDescription& verb : program.verbs) {
      synopsis += (synopsis.empty() ? "" : ".br\n") + UsageAsRoff(program, verb);
    }
    return synopsis;
  }

  /// A list of options, the arguments first.
  static std::string Options(const std::vector<OptionDescription>& options,
                             const std::vector<OptionDescription>& without) {
    std::string arguments, others;
    for (const OptionDescription& option : options) {
      (option.isArgument ? arguments : others) += HasSame(without, option) ? "" : OptionAsRoff(option);
    }
    return arguments + others;
  }

  std::string Verbs() const {
    std::string text;
    for (const VerbDescription& verb : program.verbs) {
      text += ".SS " + Roff::Plain(verb.name) + '\n' + UsageAsRoff(program, verb);
      text += ".PP\n" + HelpAsRoff(verb.help);
      const auto about = aboutVerbs.find(verb.name);
      text += about == aboutVerbs.end() ? "" : about->second;
      text += Options(verb.options, common);
      std::string examples;
      std::istringstream lines(verb.example);
      for (std::string line; std::getline(lines, line);) {
        examples += program.program + ' ' + line + '\n';
      }
      text += ExampleAsRoff(examples);
    }
    return text;
  }

  const Description& program;
  const std::vector<Part> parts;
  const std::string version;
  const std::vector<OptionDescription> common;
  std::map<std::string, std::string> aboutVerbs;
};

}  // namespace

std::string ManualPage(const Description& program, const std::string& version, const std::string& prose) {
  return Page(program, version, prose).Roff();
}

}  // namespace Velora::Ts::Describing
