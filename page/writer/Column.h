#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Velora::Page {

/// A column of the page's data, as JSON. What repeats or grows little takes little room: page/FORM.md.
class Column {
 public:
  /// A whole number, written as the difference from the one before, and where that repeats as [difference, times]; null
  /// for none.
  void AddWhole(std::optional<long long> value);
  /// A text in JSON; 0 where it is the one before.
  void AddText(std::string_view text);
  /// A value: a number, or anything else in JSON. A column of nothing but numbers becomes the Base64 of little-endian
  /// doubles where that is shorter.
  void AddNumber(double number, std::string_view text);
  void AddOther(std::string_view text);

  /// Appends the whole column and begins anew.
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
