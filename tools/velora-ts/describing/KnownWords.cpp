#include "describing/KnownWords.h"

#include <algorithm>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace Velora::Ts::Describing {

using CommandLine::Description;
using CommandLine::OptionDescription;
using CommandLine::VerbDescription;

namespace {

using Options = std::vector<OptionDescription>;

template <typename Container, typename Value>
bool Has(const Container& container, const Value& value) {
  return std::find(container.begin(), container.end(), value) != container.end();
}

const OptionDescription* Find(const Options& options, const std::string& name) {
  const auto found =
      std::find_if(options.begin(), options.end(), [&](const auto& option) { return Has(option.names, name); });
  return found == options.end() ? nullptr : &*found;
}

const VerbDescription* Find(const Description& program, const std::string& verb) {
  const auto found = std::find_if(program.verbs.begin(), program.verbs.end(),
                                  [&](const VerbDescription& one) { return one.name == verb; });
  return found == program.verbs.end() ? nullptr : &*found;
}

/// An option of a verb; without one, or if the text is about one but the option is of others, an option of any.
const OptionDescription* Find(const Description& program, const VerbDescription* verb, const std::string& name) {
  if (verb != nullptr) {
    return Find(verb->options, name);
  }
  if (const OptionDescription* const own = Find(program.options, name)) {
    return own;
  }
  for (const VerbDescription& one : program.verbs) {
    if (const OptionDescription* const option = Find(one.options, name)) {
      return option;
    }
  }
  return nullptr;
}

}  // namespace

void ExpectKnown(const std::string& words, const Description& program, const std::string& verb) {
  const auto refuse = [&](const std::string& what) {
    throw std::runtime_error("'" + words + "': " + program.program + " has no " + what);
  };
  static const std::regex isOption("--?[a-z].*");
  const VerbDescription* of = nullptr;
  const std::vector<std::string>* choices = nullptr;
  std::istringstream stream(words);
  std::string word;
  stream >> word;
  if (word == program.program) {
    stream >> word;
  }
  if (!word.starts_with('-')) {
    of = Find(program, word);
    of == nullptr ? refuse("verb '" + word + '\'') : void();
    stream >> word;
  } else if (const VerbDescription* const own = Find(program, verb); own && Find(own->options, word)) {
    of = own;
  }
  for (; stream; stream >> word) {
    if (std::regex_match(word, isOption)) {
      const OptionDescription* const option = Find(program, of, word.substr(0, word.find('=')));
      option == nullptr ? refuse("option '" + word + '\'' + (of ? " of " + of->name : "")) : void();
      choices = option->choices.empty() ? nullptr : &option->choices;
      continue;
    }
    if (choices != nullptr && !Has(*choices, word)) {
      refuse("choice '" + word + '\'');
    }
    choices = nullptr;
  }
}

}  // namespace Velora::Ts::Describing
