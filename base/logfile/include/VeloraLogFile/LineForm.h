#pragma once

#include <VeloraLogFile/Line.h>
#include <VeloraLogFile/TimeForm.h>

#include <string>
#include <string_view>
#include <vector>

namespace Velora::LogFile {

/// How the lines of a log are written: text with fields in braces. {time}, {level}, {source} and {text} are what a line
/// says, and {*} is anything else. A field ends where the text after it begins; a blank stands for one or more.
///
/// {time} is a date and a time of day with "T" or a blank between them, such as 2026-11-26T04:42:58.123+01:00 or
/// 2026-11-26 04:42:58,123; {time:FORM} is a time of a TimeForm.
class LineForm {
 public:
  /// The form of the default logger, with or without a source.
  LineForm();
  /// @throws std::invalid_argument when the form has no {time} or no {text}, an unknown field, or nothing between two
  /// fields.
  explicit LineForm(const std::string& form);

  /// Reads a line. Levels can be written in many ways: E, err, ERROR and Fatal are all an error. A level that is not
  /// known, and a line of a form without levels, is informational.
  /// @return whether it has the form.
  bool Read(std::string_view text, Line& line) const;
  const std::string& InWords() const { return words; }

 private:
  enum class Field { Fixed, Time, Level, Source, Text, Other };
  struct Part {
    Field field = Field::Fixed;
    std::string fixed{};            ///< Of Fixed.
    std::vector<TimeForm> times{};  ///< Of Time: forms to try in turn.
  };
  using Parts = std::vector<Part>;

  static Parts PartsOf(const std::string& form);
  static Part FieldNamed(const std::string& name);
  static bool Read(const Parts& parts, std::string_view text, Line& line);
  /// Takes what a part stands for from the start of a text. @param end the fixed text at which a field ends.
  static bool Take(const Part& part, std::string_view end, std::string_view& text, Line& line);

  std::string words;
  std::vector<Parts> alternatives;
};

}  // namespace Velora::LogFile
