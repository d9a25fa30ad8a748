// An .mdoc file: each line that says something comes back whole and in its turn, up to the first that is wrong.

#include "Fuzz.h"
#include "MdocReader.h"

#include <algorithm>
#include <sstream>

namespace {

std::string WithoutBlanks(std::string text) {
  text.erase(std::remove_if(text.begin(), text.end(), [](char c) { return c == ' ' || c == '\t'; }), text.end());
  return text;
}

bool EndsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

/// A file's lines, cut at the ends as other programs write them.
class Lines {
 public:
  explicit Lines(const std::string& content) : stream(content.substr(EndsWith(content.substr(0, 3), mark) ? 3 : 0)) {}

  /// Goes on to the next line that is not blank.
  bool Next() {
    do {
      ++number;
      if (!std::getline(stream, text)) {
        return false;
      }
      text.erase(text.size() - (EndsWith(text, "\r") ? 1 : 0));
    } while (WithoutBlanks(text).empty());
    return true;
  }

  std::string text;
  std::size_t number = 0;

 private:
  static constexpr const char* mark = "\xEF\xBB\xBF";
  std::istringstream stream;
};

void RequireWhole(const MdocLine& line, const std::string& text) {
  const std::string assignment = line.key + "=" + line.value;
  const bool value = line.kind == MdocLine::Kind::Value;
  Require(WithoutBlanks(text) == WithoutBlanks(value ? assignment : "[" + assignment + "]"),
          "nothing is lost: " + text);
  Require(!value || EndsWith(text, "=" + line.value) || EndsWith(text, "= " + line.value), "blanks stay: " + text);
  Require(!line.key.empty(), "a value has a name: " + text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string content(data, data + size);
  const std::string file = InputFile("series.mdoc", content);
  Lines lines(content);
  try {
    MdocReader reader(file);
    for (MdocLine line; reader.Next(line);) {
      Require(lines.Next(), "a line read is a line of the file: " + line.key);
      RequireWhole(line, lines.text);
    }
    Require(!lines.Next(), "every line is read: " + lines.text);
    Require(reader.BytesRead() >= size && reader.BytesRead() <= size + 1, "the whole file is read");
  } catch (const MdocError& error) {
    Require(lines.Next() && LineIn(error.what(), file + ":") == lines.number,
            std::string("the line is the first that is wrong: ") + error.what());
  }
  return 0;
}
