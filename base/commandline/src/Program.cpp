#include <VeloraCommandLine/Description.h>
#include <VeloraCommandLine/Options.h>
#include <VeloraCommandLine/Program.h>
#include <VeloraText/Nearest.h>
#include <VeloraText/Printable.h>
#include <VeloraText/Wrapped.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iostream>
#include <set>
#include <sstream>
#include <utility>
#include <vector>

namespace Velora::CommandLine {

using Text::Wrapped;

namespace {

// An empty text is a mistake, such as a variable of a script that is not set.
const CLI::Validator& NotEmpty() {
  static const CLI::Validator validator(
      [](const std::string& text) { return text.empty() ? std::string("expected a text that is not empty") : ""; }, "");
  return validator;
}

std::string FormOf(const std::string& name, const std::string& form) {
  return !form.empty() ? form : name.starts_with('-') ? "TEXT" : name;
}

}  // namespace

void Options::AddText(const std::string& name, std::string& value, const std::string& help, const std::string& form) {
  line.add_option(name, value, help)->check(NotEmpty())->type_name(FormOf(name, form));
}

void Options::AddRequiredText(const std::string& name, std::string& value, const std::string& help,
                              const std::string& form) {
  line.add_option(name, value, help)->required()->check(NotEmpty())->type_name(FormOf(name, form));
}

void Options::AddTexts(const std::string& name, std::vector<std::string>& values, const std::string& help) {
  line.add_option(name, values, help)->check(NotEmpty())->type_name(FormOf(name, ""));
}

void Options::AddRequiredTexts(const std::string& name, std::vector<std::string>& values, const std::string& help) {
  line.add_option(name, values, help)->required()->check(NotEmpty())->type_name(FormOf(name, ""));
}

void Options::AddRepeatedText(const std::string& name, std::vector<std::string>& values, const std::string& help,
                              const std::string& form) {
  line.add_option(name, values, help)->allow_extra_args(false)->check(NotEmpty())->type_name(FormOf(name, form));
}

void Options::AddChoice(const std::string& name, std::string& value, const std::vector<std::string>& choices,
                        const std::string& help) {
  const auto complain = [choices](const std::string& text) {
    return std::find(choices.begin(), choices.end(), text) != choices.end()
               ? std::string()
               : "expected " + CLI::detail::join(choices, " or ") + ", not '" + text + '\'';
  };
  line.add_option(name, value, help)->check(CLI::Validator(complain, ""))->type_name(CLI::detail::join(choices, "|"));
}

void Options::AddList(const std::string& name, std::vector<std::string>& values, const std::string& help,
                      const std::string& form) {
  line.add_option(name, values, help)
      ->delimiter(',')
      ->allow_extra_args(false)
      ->check(NotEmpty())
      ->type_name(form + ",...");
}

void Options::AddFiles(const std::string& name, std::vector<std::string>& values, const std::string& help) {
  line.add_option(name, values, help)->check(NotEmpty())->type_name("FILE...");
}

void Options::AddCount(const std::string& name, long long& value, const std::string& help) {
  const auto complain = [](const std::string& text) {
    long long count = 0;
    return CLI::detail::lexical_cast(text, count) && count > 0
               ? std::string()
               : "expected a whole number greater than 0, not '" + text + '\'';
  };
  line.add_option(name, value, help)->check(CLI::Validator(complain, ""))->type_name("N");
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

namespace {

std::vector<std::string> NamesOf(const CLI::Option& option) {
  if (option.get_positional()) {
    return {option.get_name(true)};
  }
  std::vector<std::string> names;
  for (const std::string& name : option.get_snames()) {
    names.push_back('-' + name);
  }
  for (const std::string& name : option.get_lnames()) {
    names.push_back("--" + name);
  }
  return names;
}

/// The longest name of each, in order.
std::vector<std::string> NamesOf(const std::set<CLI::Option*>& options) {
  std::vector<std::string> names;
  names.reserve(options.size());
  for (const CLI::Option* const option : options) {
    names.push_back(NamesOf(*option).back());
  }
  std::sort(names.begin(), names.end());
  return names;
}

/// What the help says of an option, with what the parser enforces.
std::string HelpOf(const CLI::Option& option) {
  std::string help = option.get_description();
  const auto add = [&help](const char* condition, const std::vector<std::string>& names) {
    help += names.empty() ? "" : ". " + (condition + CLI::detail::join(names, " or "));
  };
  help += option.get_items_expected_max() > 1 ? ". Can be given more than once" : "";
  add("Only together with ", NamesOf(option.get_needs()));
  add("Not together with ", NamesOf(option.get_excludes()));
  return help;
}

/// The layout of the help: names without remarks, and in the list of verbs the first sentence about each.
class HelpLayout : public CLI::Formatter {
 public:
  HelpLayout() {
    column_width(26);
    label("SUBCOMMAND", "VERB");
    label("Positionals", "Arguments");
  }
  std::string make_option_opts(const CLI::Option* option) const override {
    const bool hasForm = !option->get_positional() && option->get_type_size() > 0;
    return (hasForm ? ' ' + option->get_type_name() : "") + ' ';  // at least two blanks before the description
  }
  std::string make_option_desc(const CLI::Option* option) const override { return HelpOf(*option); }
  std::string make_subcommand(const CLI::App* verb) const override {
    std::ostringstream line;
    const std::string help = verb->get_description();
    CLI::detail::format_help(line, verb->get_name(), help.substr(0, std::min(help.find(". "), help.size() - 1)),
                             get_column_width());
    return line.str();
  }
};

/// Writes the help that was asked for, or what is wrong. @return whether the program has done what it was asked for.
bool Explain(const CLI::App& app, const CLI::Error& error) {
  std::ostringstream help, complaint;
  const bool asked = app.exit(error, help, complaint) == 0;
  Text::WriteLines(std::cout, Wrapped(help.str()));
  Text::WriteLines(std::cerr, complaint.str());
  return asked;
}

/// What a mistake ends with: where to read more.
std::string WithHint(const CLI::App* app, const CLI::Error& error) {
  const std::vector<CLI::App*> verbs = app->get_subcommands();
  return std::string(error.what()) + "\n\"" + app->get_name() + (verbs.empty() ? "" : ' ' + verbs.front()->get_name()) +
         " --help\" says more.\n";
}

std::string Suggestion(const std::string& given, const std::vector<std::string>& names) {
  const std::string dashes = given.substr(0, given.find_first_not_of('-'));
  const std::optional<std::string> nearest = Text::Nearest(given.substr(dashes.size()), names);
  return nearest ? "; did you mean '" + dashes + *nearest + "'?" : "";
}

/// Why a command line does not begin with a verb. Empty if it does, or asks for the help or the version.
std::string LackOfVerb(const CLI::App& app, const std::vector<std::string>& arguments) {
  if (arguments.empty()) {
    return "expected a verb";
  }
  const std::string& first = arguments.front();
  std::vector<std::string> names;
  for (const CLI::App* const verb : app.get_subcommands(nullptr)) {
    names.push_back(verb->get_name());
  }
  if (std::find(names.begin(), names.end(), first) != names.end() || app.get_option_no_throw(first) != nullptr) {
    return "";
  }
  return first.starts_with('-') ? "expected a verb before '" + first + '\''
                                : "there is no verb '" + first + '\'' + Suggestion(first, names);
}

/// What is wrong with the first argument for which there is no place, options before others.
std::string Unexpected(const CLI::App& app) {
  const std::vector<std::string> unexpected = app.remaining(true);
  const auto option =
      std::find_if(unexpected.begin(), unexpected.end(), [](const std::string& one) { return one.starts_with('-'); });
  if (option == unexpected.end()) {
    return "there is no place for the argument '" + unexpected.front() + '\'';
  }
  const std::string given = option->substr(0, option->find('='));
  const std::vector<CLI::App*> verbs = app.get_subcommands();
  std::vector<std::string> names;
  for (const CLI::Option* const known : (verbs.empty() ? &app : verbs.front())->get_options()) {
    names.insert(names.end(), known->get_lnames().begin(), known->get_lnames().end());
  }
  return "there is no option '" + given + '\'' + Suggestion(given, names);
}

std::vector<OptionDescription> OptionsOf(const CLI::App& line) {
  std::vector<OptionDescription> options;
  for (const CLI::Option* const option : line.get_options()) {
    OptionDescription one;
    one.names = NamesOf(*option);
    one.form = option->get_type_size() > 0 ? option->get_type_name() : "";
    one.choices = one.form.find('|') == std::string::npos ? one.choices : CLI::detail::split(one.form, '|');
    one.help = HelpOf(*option);
    one.excluded = NamesOf(option->get_excludes());
    one.required = NamesOf(option->get_needs());
    one.isArgument = option->get_positional();
    one.isRequired = option->get_required();
    one.isRepeated = option->get_items_expected_max() > 1;
    one.isOpen = one.isRepeated && option->get_allow_extra_args();
    options.push_back(one);
  }
  return options;
}

bool HasVerbs(const CLI::App& app) { return app.get_require_subcommand_min() > 0; }

/// "help VERB" is another form of "VERB --help".
std::vector<std::string> WithoutHelpVerb(const CLI::App& app, std::vector<std::string> arguments) {
  if (HasVerbs(app) && !arguments.empty() && arguments.front() == "help") {
    arguments.erase(arguments.begin());
    arguments.resize(std::min<std::size_t>(arguments.size(), 1));
    arguments.emplace_back("--help");
  }
  return arguments;
}

}  // namespace

Program::Program(const std::string& description, const std::string& footer, const std::string& name)
    : app(std::make_unique<CLI::App>(description, name)) {
  app->footer(footer);
  app->failure_message(WithHint);
  app->formatter(std::make_shared<HelpLayout>());
  app->set_help_flag("-h,--help", "Show this help");
}

Program::~Program() = default;

Options Program::Own() { return Options(*app); }

void Program::AddVersion(const std::string& text) { app->set_version_flag("--version", text, "Show the version"); }

Options Program::AddVerb(const std::string& name, const std::string& help, const std::string& example) {
  app->require_subcommand(1);
  CLI::App* const verb = app->add_subcommand(name, help);
  verb->group("Verbs");
  std::string footer = "Example:";
  std::istringstream lines(example);
  for (std::string line; std::getline(lines, line);) {
    footer += "\n  " + app->get_name() + ' ' + line;
  }
  verb->footer(footer);
  examples[name] = example;
  return Options(*verb);
}

std::optional<bool> Program::Read(std::vector<std::string> arguments) {
  if (app->get_name().empty()) {
    app->name(arguments.front());
  }
  arguments.erase(arguments.begin());
  arguments = WithoutHelpVerb(*app, std::move(arguments));
  const std::string mistake = HasVerbs(*app) ? LackOfVerb(*app, arguments) : "";
  if (!mistake.empty()) {
    return Explain(*app, CLI::ValidationError(mistake));
  }
  try {
    std::reverse(arguments.begin(), arguments.end());  // as CLI11 expects them
    app->parse(std::move(arguments));
    return std::nullopt;
  } catch (const CLI::ExtrasError&) {
    return Explain(*app, CLI::ValidationError(Unexpected(*app)));
  } catch (const CLI::ArgumentMismatch& error) {
    const std::string what = error.what();
    return Explain(*app, CLI::ValidationError(what.substr(0, what.find(':')) +
                                              (what.ends_with("missing") ? ": expected a value" : ": given twice")));
  } catch (const CLI::ParseError& error) {
    return Explain(*app, error);
  }
}

std::string Program::Verb() const { return app->get_subcommands().front()->get_name(); }

void Program::Refuse(const std::string& mistake) const { Explain(*app, CLI::ValidationError(mistake)); }

Description Program::Describe() const {
  Description description{app->get_name(), app->get_description(), OptionsOf(*app), {}};
  OptionDescription verb;
  verb.names = {"VERB"};
  verb.form = "VERB";
  verb.help = "The verb";
  verb.isArgument = true;
  for (const CLI::App* const one : app->get_subcommands(nullptr)) {
    const std::string& name = one->get_name();
    description.verbs.push_back({name, one->get_description(), examples.at(name), OptionsOf(*one)});
    verb.choices.push_back(name);
  }
  if (HasVerbs(*app)) {
    const std::string help = "Describes the options of a verb, with an example. Without VERB, it lists the verbs.";
    description.verbs.push_back({"help", help, "help " + verb.choices.front(), {verb}});
  }
  return description;
}

}  // namespace Velora::CommandLine
