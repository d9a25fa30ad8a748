#include "describing/Completion.h"
#include "describing/ShellWords.h"

#include <vector>

namespace Velora::Ts::Describing {

using CommandLine::Description;
using CommandLine::OptionDescription;

namespace {

std::string Row(const std::string& table, const std::string& key, const std::string& value) {
  return "_velora_ts_" + table + "[" + Quoted(key) + "]=" + Quoted(value) + '\n';
}

std::string Rows(const std::string& verb, const std::vector<OptionDescription>& options) {
  std::string rows;
  std::vector<std::string> names, arguments;
  for (const OptionDescription& option : options) {
    const std::string key = verb + ' ' + option.Name();
    (option.isArgument ? arguments : names).push_back(option.isArgument ? option.form : option.Name());
    rows += option.isArgument || option.form.empty() ? "" : Row("forms", key, option.form);
    rows += option.excluded.empty() ? "" : Row("excluded", key, Joined(option.excluded));
    rows += option.isRepeated ? Row("repeated", key, "1") : "";
    rows += option.isOpen ? Row("open", key, "1") : "";
    for (const std::string& name : option.names) {
      if (name != option.Name()) {
        rows += Row("long", Joined({verb, name}), option.Name());
      }
    }
  }
  rows += arguments.empty() ? "" : Row("arguments", verb, Joined(arguments));
  return Row("options", verb, Joined(names)) + rows;
}

}  // namespace

std::string BashCompletion(const Description& program, const std::string& script) {
  std::vector<std::string> verbs;
  std::string tables = Rows(program.program, program.options);
  for (const auto& verb : program.verbs) {
    verbs.push_back(verb.name);
    tables += Rows(verb.name, verb.options);
  }
  return Filled(script, "tables", "_velora_ts_verbs=(" + Joined(verbs) + ")\n" + tables);
}

}  // namespace Velora::Ts::Describing
