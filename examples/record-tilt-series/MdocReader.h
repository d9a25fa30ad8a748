#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

/// What is wrong with an .mdoc file, and in which line.
class MdocError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// One line of an .mdoc file that says something.
struct MdocLine {
  enum class Kind {
    Value,    ///< "Key = value"
    Title,    ///< "[T = text]"
    Section,  ///< "[ZValue = n]", "[FrameSet = n]" or "[MontSection = n]"
  };
  Kind kind = Kind::Value;
  std::string key;    ///< without blanks around it
  std::string value;  ///< everything behind the equals sign and one blank, unchanged
};

/// Reads an .mdoc file line by line and holds one line at a time, so that a file of any size can be read. Line ends may
/// be "\r\n", the last one may be missing, a UTF-8 byte-order mark may stand first, and blank lines are passed over.
class MdocReader {
 public:
  /// @throws MdocError when the file cannot be opened, or is no regular file.
  explicit MdocReader(const std::filesystem::path& path);

  /// Reads on to the next line that says something.
  /// @return false at the end of the file.
  /// @throws MdocError naming file and line when a line is not understood or cannot be read.
  bool Next(MdocLine& line);

  std::uint64_t BytesRead() const { return bytesRead; }

 private:
  bool ReadText();
  int ReadByte();
  void ParseBracket(MdocLine& line) const;
  void ParseValue(MdocLine& line) const;
  void Split(std::string_view assignment, MdocLine& line) const;
  [[noreturn]] void Fail(const std::string& what) const;

  std::string path;
  std::filebuf file;
  std::string text;
  std::uint64_t lineNumber = 0;
  std::uint64_t bytesRead = 0;
};
