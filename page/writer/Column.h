#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Velora::Page {

/// A column of the page's data as JSON, in a form in which repeated and slowly growing values are short: page/FORM.md.
class Column {
 public:
  /// Appends a whole number, or null. It is written as the difference from the one before; a repeated difference as
  /// [difference, times].
  void AddWhole(std::optional<long long> value);
  /// Appends a text as JSON; 0 if it is equal to the one before.
  void AddText(std::string_view text);
  /// Appends a value: a number, or other JSON. If a column contains only numbers, it becomes the Base64 encoding of
  /// little-endian doubles, if that is shorter.
  void AddNumber(double number, std::string_view text);
  void AddOther(std::string_view text);

  /// Appends the column to a text and empties it.
  void MoveTo(std::string& json);

 private:
  void Add(std::string_view text);
  void EndRepetition();

  std::string json;
  std::size_t count = 0;
  long long whole = 0, difference = 0;
  std::size_t times = 0;
  std::string last;
  std::vector<double> numbers;
};

}  // namespace Velora::Page
