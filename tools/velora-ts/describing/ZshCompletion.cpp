#include "describing/Completion.h"
#include "describing/ShellWords.h"

#include <algorithm>
#include <map>
#include <vector>

namespace Velora::Ts::Describing {

using CommandLine::Description;
using CommandLine::OptionDescription;
using CommandLine::VerbDescription;

namespace {

/// Keeps brackets and colons from ending a part of a specification.
std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char character : text) {
    escaped += std::string("\\[]:").find(character) == std::string::npos ? "" : "\\";
    escaped += character;
  }
  return escaped;
}

std::string FirstSentence(const std::string& help) {
  return help.substr(0, std::min(help.find(". "), help.size() - (help.ends_with('.') ? 1 : 0)));
}

/// What completes a value. Functions of ours get what stands behind their name alone, because of the blank before it.
std::string Action(const OptionDescription& option) {
  static const std::map<std::string, std::string> actions = {
      {"FOLDER", "_files -/"},
      {"FILE", "_files"},
      {"FILE...", "_files"},
      {"RUN", " _velora_ts_runs"},
      {"RUN2", " _velora_ts_runs second"},
      {"PARAMETER", " _velora_ts_parameters name"},
      {"PARAMETER,...", " _velora_ts_listed name"},
      {"[PARAMETER=]X,...", " _velora_ts_listed name ="},
      {"EVENT", " _velora_ts_parameters events"},
      {"INSTRUMENT", " _velora_ts_of_runs instrument"},
      {"ACTIVITY", " _velora_ts_of_runs activity"},
      {"NODE", " _velora_ts_of_runs node"},
      {"TIME", "(today yesterday)"},
  };
  if (!option.choices.empty()) {
    return '(' + Joined(option.choices) + ')';
  }
  const auto action = actions.find(option.form);
  return action == actions.end() ? " " : action->second;
}

/// The place of each argument, by its name.
std::map<std::string, std::string> PlacesOf(const VerbDescription& verb) {
  std::map<std::string, std::string> places;
  for (const OptionDescription& option : verb.options) {
    if (option.isArgument) {
      places.emplace(option.Name(), std::to_string(places.size() + 1));
    }
  }
  return places;
}

/// An option or an argument, as _arguments expects it: once for each of its names.
std::string Specifications(const OptionDescription& option, const std::map<std::string, std::string>& places) {
  std::vector<std::string> without = option.isRepeated || option.isArgument ? std::vector<std::string>() : option.names;
  for (const std::string& excluded : option.excluded) {
    const auto place = places.find(excluded);
    without.push_back(place == places.end() ? excluded : place->second);
  }
  const std::string exclusion = without.empty() ? "" : '(' + Joined(without) + ')';
  const std::string value = Escaped(option.form) + ':' + Action(option);
  if (option.isArgument) {
    return "      " + Quoted(exclusion + places.at(option.Name()) + (option.isRequired ? ":" : "::") + value) + '\n';
  }
  const std::string start = (option.isRepeated ? "*" : "") + exclusion;
  const std::string end = '[' + Escaped(FirstSentence(option.help)) + (option.form.empty() ? "]" : "]:" + value);
  std::string specifications;
  for (const std::string& name : option.names) {
    const std::string sign = option.form.empty() ? "" : name.starts_with("--") ? "=" : "+";
    specifications.append("      ")
        .append(Quoted(std::string(start).append(name).append(sign).append(end)))
        .append("\n");
  }
  return specifications;
}

std::string Case(const VerbDescription& verb) {
  std::string text = "    " + verb.name + ") specifications=(\n";
  std::vector<std::string> open;
  for (const OptionDescription& option : verb.options) {
    text += Specifications(option, PlacesOf(verb));
    open.insert(open.end(), option.names.begin(), option.isOpen ? option.names.end() : option.names.begin());
  }
  return text + "      ) open=(" + Joined(open) + ") ;;\n";
}

}  // namespace

std::string ZshCompletion(const Description& program, const std::string& script) {
  std::string verbs, cases = Case({program.program, "", "", program.options});
  for (const VerbDescription& verb : program.verbs) {
    verbs += "    " + Quoted(verb.name + ':' + FirstSentence(verb.help)) + '\n';
    cases += Case(verb);
  }
  return Filled(script, "verbs",
                "_velora_ts_verbs() {\n  local -a verbs=(\n" + verbs +
                    "  )\n  _describe -V verb verbs\n}\n\n_velora_ts_specify() {\n  case $1 in\n" + cases +
                    "  esac\n}\n");
}

}  // namespace Velora::Ts::Describing
