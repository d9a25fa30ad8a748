#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

/// An error in an .mdoc file, with file and line.
class MdocError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A line of an .mdoc file that is not blank.
struct MdocLine {
  enum class Kind {
    Value,    ///< "Key = value"
    Title,    ///< "[T = text]"
    Section,  ///< "[ZValue = n]", "[FrameSet = n]" or "[MontSection = n]"
  };
  Kind kind = Kind::Value;
  std::string key;    ///< without the blanks around it
  std::string value;  ///< everything after the equals sign and one blank, unchanged
};

/// Reads an .mdoc file line by line and keeps one line at a time, so a file can have any size. Lines can end with
/// "\r\n", the last line need not end with a line break, and the file can begin with a UTF-8 byte-order mark. Blank
/// lines are skipped.
class MdocReader {
 public:
  /// @throws MdocError if the file cannot be opened or is not a regular file.
  explicit MdocReader(const std::filesystem::path& path);

  /// Reads the next line that is not blank.
  /// @return false at the end of the file.
  /// @throws MdocError if a line has an error or cannot be read.
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
