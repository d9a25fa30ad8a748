#include "verbs/Options.h"

#include <CLI/CLI.hpp>

namespace Velora::Ts {

void Options::AddText(const std::string& name, std::string& value, const std::string& help) {
  line.add_option(name, value, help);
}

void Options::AddRequiredText(const std::string& name, std::string& value, const std::string& help) {
  line.add_option(name, value, help)->required();
}

void Options::AddChoice(const std::string& name, std::string& value, const std::vector<std::string>& choices,
                        const std::string& help) {
  line.add_option(name, value, help)->check(CLI::IsMember(choices));
}

void Options::AddList(const std::string& name, std::vector<std::string>& values, const std::string& help) {
  line.add_option(name, values, help)->delimiter(',')->allow_extra_args(false);
}

void Options::AddCount(const std::string& name, long long& value, const std::string& help) {
  const auto complain = [](const std::string& text) {
    long long count = 0;
    return CLI::detail::lexical_cast(text, count) && count > 0
               ? std::string()
               : "expected a whole number greater than 0, not '" + text + '\'';
  };
  line.add_option(name, value, help)->check(CLI::Validator(complain, "POSITIVE"));
}

void Options::AddFlag(const std::string& name, bool& value, const std::string& help) {
  line.add_flag(name, value, help);
}

void Options::Exclude(const std::string& name, const std::string& other) {
  line.get_option(name)->excludes(line.get_option(other));
}

void Options::Require(const std::string& name, const std::string& other) {
  line.get_option(name)->needs(line.get_option(other));
}

}  // namespace Velora::Ts
