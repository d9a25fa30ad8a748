#include "describing/Roff.h"

#include <algorithm>
#include <cctype>

namespace Velora::Ts::Describing::Roff {

namespace {

bool IsRequest(std::string_view line) { return line.starts_with('.') || line.starts_with('\''); }

bool Begins(std::string_view text, std::size_t at) {
  const std::string_view rest = text.substr(std::min(at, text.size()));
  return !rest.empty() && (std::isupper(static_cast<unsigned char>(rest.front())) != 0 || rest.starts_with("\\f"));
}

}  // namespace

std::string Plain(std::string_view text) {
  std::string shown;
  for (const char character : text) {
    switch (character) {
      case '\\':
        shown += "\\e";
        break;
      case '-':
        shown += "\\-";
        break;
      case '\'':
        shown += "\\(aq";
        break;
      case '"':
        shown += "\\(dq";
        break;
      case '`':
        shown += "\\(ga";
        break;
      case '^':
        shown += "\\(ha";
        break;
      case '~':
        shown += "\\(ti";
        break;
      default:
        shown += character;
    }
  }
  return shown;
}

std::string Bold(std::string_view text) { return "\\fB" + Plain(text) + "\\fR"; }

std::string Italic(std::string_view text) { return "\\fI" + Plain(text) + "\\fR"; }

std::string Sentences(std::string_view text) {
  std::string lines;
  for (std::size_t begin = 0, end = 0; begin < text.size(); begin = end + 1) {
    for (end = text.find(". ", begin); end != std::string_view::npos && !Begins(text, end + 2);) {
      end = text.find(". ", end + 1);
    }
    end = end == std::string_view::npos ? text.size() : end + 1;
    const std::string_view sentence = text.substr(begin, end - begin);
    lines += (IsRequest(sentence) ? "\\&" : "");
    lines.append(sentence).append(1, '\n');
  }
  return lines;
}

std::string Example(std::string_view commands) {
  std::string lines;
  for (std::size_t begin = 0; begin < commands.size();) {
    const std::size_t end = std::min(commands.find('\n', begin), commands.size());
    const std::string_view command = commands.substr(begin, end - begin);
    lines += (command.starts_with('.') ? "\\&" : "") + Plain(command) + '\n';
    begin = end + 1;
  }
  return ".PP\n.RS 4\n.EX\n" + lines + ".EE\n.RE\n";
}

}  // namespace Velora::Ts::Describing::Roff
