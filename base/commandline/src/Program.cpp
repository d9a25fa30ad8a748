#include <VeloraCommandLine/Options.h>
#include <VeloraCommandLine/Program.h>
#include <VeloraText/Printable.h>

#include <CLI/CLI.hpp>

#include <iostream>
#include <sstream>
#include <vector>

namespace Velora::CommandLine {

void Options::AddText(const std::string& name, std::string& value, const std::string& help) {
  line.add_option(name, value, help);
}

void Options::AddRequiredText(const std::string& name, std::string& value, const std::string& help) {
  line.add_option(name, value, help)->required();
}

void Options::AddRequiredTexts(const std::string& name, std::vector<std::string>& values, const std::string& help) {
  line.add_option(name, values, help)->required();
}

void Options::AddRepeatedText(const std::string& name, std::vector<std::string>& values, const std::string& help) {
  line.add_option(name, values, help)->allow_extra_args(false);
}

void Options::AddChoice(const std::string& name, std::string& value, const std::vector<std::string>& choices,
                        const std::string& help) {
  line.add_option(name, value, help)->check(CLI::IsMember(choices));
}

void Options::AddList(const std::string& name, std::vector<std::string>& values, const std::string& help) {
  line.add_option(name, values, help)->delimiter(',')->allow_extra_args(false);
}

void Options::AddFiles(const std::string& name, std::vector<std::string>& values, const std::string& help) {
  line.add_option(name, values, help)->type_name("FILE");
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

namespace {

/// Writes the help that was asked for, or what is wrong. @return whether the program has done what it was asked for.
bool Explain(const CLI::App& app, const CLI::ParseError& error) {
  std::ostringstream help, complaint;
  const bool asked = app.exit(error, help, complaint) == 0;
  Text::WriteLines(std::cout, help.str());
  Text::WriteLines(std::cerr, complaint.str());
  return asked;
}

std::string LackingVerb(const CLI::App& app) {
  const std::vector<std::string> unknown = app.remaining();
  return unknown.empty() ? "expected a verb" : "there is no verb '" + unknown.front() + '\'';
}

bool LacksVerb(const CLI::App& app) { return app.get_require_subcommand_min() > 0 && app.get_subcommands().empty(); }

}  // namespace

Program::Program(const std::string& description, const std::string& footer, const std::string& name)
    : app(std::make_unique<CLI::App>(description, name)) {
  app->footer(footer);
}

Program::~Program() = default;

Options Program::Own() { return Options(*app); }

void Program::AddVersion(const std::string& text) { app->set_version_flag("--version", text); }

Options Program::AddVerb(const std::string& name, const std::string& help, const std::string& footer) {
  app->require_subcommand(1);
  app->get_formatter()->label("SUBCOMMAND", "VERB");
  CLI::App* const verb = app->add_subcommand(name, help);
  verb->group("Verbs");
  verb->footer(footer);
  return Options(*verb);
}

std::optional<bool> Program::Read(int argc, const char* const* argv) {
  try {
    app->parse(argc, argv);
    return std::nullopt;
  } catch (const CLI::RequiredError& error) {
    return LacksVerb(*app) ? Explain(*app, CLI::ValidationError(LackingVerb(*app))) : Explain(*app, error);
  } catch (const CLI::ParseError& error) {
    return Explain(*app, error);
  }
}

std::string Program::Verb() const { return app->get_subcommands().front()->get_name(); }

void Program::Refuse(const std::string& mistake) const { Explain(*app, CLI::ValidationError(mistake)); }

}  // namespace Velora::CommandLine
