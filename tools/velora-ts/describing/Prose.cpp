#include "describing/Prose.h"

#include "describing/Roff.h"

#include <regex>
#include <sstream>

namespace Velora::Ts::Describing {

namespace {

constexpr std::string_view indent = "    ";

const std::regex& Marked() {
  static const std::regex marked(R"(`([^`]+)`|\*\*((?:[^*\\]|\\.)+)\*\*|\*([^*]+)\*)");
  return marked;
}

std::string WithoutEscapes(const std::string& text) { return std::regex_replace(text, std::regex(R"(\\(.))"), "$1"); }

std::string Joined(const std::string& lines) {
  std::string text = lines;
  for (char& character : text) {
    character = character == '\n' ? ' ' : character;
  }
  return text;
}

std::string WithoutIndent(const std::string& lines) {
  std::string text;
  std::istringstream stream(lines);
  for (std::string line; std::getline(stream, line);) {
    text += line.substr(line.starts_with(indent) ? indent.size() : 0) + '\n';
  }
  return text;
}

Part PartOf(const std::string& lines) {
  const std::size_t second = lines.find("\n: ");
  if (lines.starts_with("# ")) {
    return {Part::Section, lines.substr(2), ""};
  }
  if (lines.starts_with("## ")) {
    return {Part::Verb, lines.substr(3), ""};
  }
  if (lines.starts_with('{') && lines.ends_with('}')) {
    return {Part::Generated, lines.substr(1, lines.size() - 2), ""};
  }
  if (lines.starts_with(indent)) {
    return {Part::Example, "", WithoutIndent(lines)};
  }
  if (second != std::string::npos) {
    return {Part::Definition, lines.substr(0, second), Joined(lines.substr(second + 3))};
  }
  return {Part::Paragraph, "", Joined(lines)};
}

}  // namespace

std::vector<Part> PartsOf(std::string_view prose) {
  std::vector<Part> parts;
  std::istringstream stream{std::string(prose)};
  std::string lines;
  for (std::string line; std::getline(stream, line);) {
    if (!line.empty()) {
      lines += (lines.empty() ? "" : "\n") + line;
    } else if (!lines.empty()) {
      parts.push_back(PartOf(lines));
      lines.clear();
    }
  }
  if (!lines.empty()) {
    parts.push_back(PartOf(lines));
  }
  return parts;
}

std::vector<std::string> CommandsIn(const std::string& text) {
  std::vector<std::string> commands;
  for (std::sregex_iterator found(text.begin(), text.end(), Marked()), end; found != end; ++found) {
    if ((*found)[1].matched) {
      commands.push_back((*found)[1]);
    }
  }
  return commands;
}

std::string AsRoff(const std::string& text) {
  std::string roff;
  auto rest = text.begin();
  for (std::sregex_iterator found(text.begin(), text.end(), Marked()), end; found != end; ++found) {
    const std::smatch& match = *found;
    roff += Roff::Plain(std::string(rest, match[0].first));
    if (match[3].matched) {
      roff += Roff::Italic(match[3].str());
    } else {
      roff += Roff::Bold(match[1].str() + WithoutEscapes(match[2].str()));
    }
    rest = match[0].second;
  }
  return Roff::Sentences(roff + Roff::Plain(std::string(rest, text.end())));
}

}  // namespace Velora::Ts::Describing
