#include "MdocReader.h"

#include <VeloraSystem/RegularFile.h>
#include <VeloraText/Printable.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>

namespace {

constexpr std::size_t longestLine = std::size_t{1024} * 1024;
constexpr std::size_t longestShown = 80;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view blanks = " \t";

std::string_view Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(blanks);
  return first == std::string_view::npos ? std::string_view()
                                         : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// A line in the form in which a message shows it: its start, without zero bytes, which would end the message. The line
// can come from any file, for example from an image that was given by mistake.
std::string Shown(std::string_view text) {
  return "'" + Velora::Text::Printable(text.substr(0, longestShown)) + (text.size() > longestShown ? "...'" : "'");
}

}  // namespace

MdocReader::MdocReader(const std::filesystem::path& path) : path(path.string()) {
  if (const std::string kind = Velora::System::KindOfNoFile(path); !kind.empty()) {
    throw MdocError(this->path + ": cannot be read: it is " + kind + "; expected a regular file");
  }
  if (file.open(path, std::ios::in | std::ios::binary) == nullptr) {
    throw MdocError(this->path + ": cannot be opened: " + std::strerror(errno));
  }
}

bool MdocReader::Next(MdocLine& line) {
  do {
    if (!ReadText()) {
      return false;
    }
  } while (Trimmed(text).empty());
  if (Trimmed(text).front() == '[') {
    ParseBracket(line);
  } else {
    ParseValue(line);
  }
  return true;
}

bool MdocReader::ReadText() {
  constexpr auto end = std::filebuf::traits_type::eof();
  text.clear();
  ++lineNumber;
  int next = ReadByte();
  if (next == end) {
    return false;
  }
  for (; next != end && next != '\n'; next = ReadByte()) {
    if (text.size() == longestLine) {
      Fail("line is longer than expected: at most " + std::to_string(longestLine) + " bytes");
    }
    text += static_cast<char>(next);
  }
  bytesRead += text.size() + 1;
  if (!text.empty() && text.back() == '\r') {
    text.pop_back();
  }
  if (lineNumber == 1 && text.compare(0, byteOrderMark.size(), byteOrderMark) == 0) {
    text.erase(0, byteOrderMark.size());
  }
  return true;
}

int MdocReader::ReadByte() {
  try {
    return file.sbumpc();
  } catch (const std::ios_base::failure& reason) {
    Fail(std::string("cannot be read: ") + reason.what());
  }
}

void MdocReader::ParseBracket(MdocLine& line) const {
  static constexpr std::array<std::string_view, 3> sections = {"ZValue", "FrameSet", "MontSection"};
  const std::string_view bracket = Trimmed(text);
  if (bracket.back() != ']') {
    Fail(Shown(text) + " has no ']' at its end; expected [Key = value]");
  }
  Split(bracket.substr(1, bracket.size() - 2), line);
  if (line.key == "T") {
    line.kind = MdocLine::Kind::Title;
  } else if (std::find(sections.begin(), sections.end(), line.key) != sections.end()) {
    line.kind = MdocLine::Kind::Section;
  } else {
    Fail(Shown(text) +
         " opens an unknown section; expected [ZValue = n], [FrameSet = n], [MontSection = n] or [T = ...]");
  }
}

void MdocReader::ParseValue(MdocLine& line) const {
  Split(text, line);
  line.kind = MdocLine::Kind::Value;
}

void MdocReader::Split(std::string_view assignment, MdocLine& line) const {
  const std::size_t equals = assignment.find('=');
  const std::string_view key = Trimmed(assignment.substr(0, equals));
  if (equals == std::string_view::npos || key.empty()) {
    Fail(Shown(text) + " is not understood; expected Key = value");
  }
  const std::string_view value = assignment.substr(equals + 1);
  line.key = key;
  line.value = value.substr(value.empty() || value.front() != ' ' ? 0 : 1);
}

void MdocReader::Fail(const std::string& what) const {
  throw MdocError(path + ":" + std::to_string(lineNumber) + ": " + what);
}
