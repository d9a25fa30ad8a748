#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Velora::LogFile {

/// How times are written. A form is text with conversions: %Y, %m and %d for the date, %y for a year of two digits from
/// 1970 to 2069, %b for the name of the month in English; %H, %M and %S for the time of day, with or without a
/// fraction; %z for the offset from UTC, if there is one; %s for seconds since 1970 with or without a fraction; %% for
/// a percent sign. A blank stands for one or more.
class TimeForm {
 public:
  /// @throws std::invalid_argument when the form has another conversion, or lacks a part of the date or of the time.
  explicit TimeForm(std::string form);

  /// Reads the time at the start of a text and removes it from there. Without an offset it is a local time.
  /// @return microseconds since 1970, UTC; nothing for another text, which stays then.
  std::optional<long long> Read(std::string_view& text) const;

 private:
  std::string form;
};

}  // namespace Velora::LogFile
