#include "asking/WhereArgument.h"

#include "asking/UsageError.h"
#include "store/values/RecordedText.h"
#include "store/values/StoredText.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace Velora::Ts {

using namespace Store;
using Operator = Store::Condition::Operator;

namespace {

constexpr std::string_view blanks = " \t\r\n";
constexpr std::string_view signs = "=!<>";
constexpr std::string_view conjunction = "and";

constexpr struct {
  std::string_view sign;
  Operator meaning;
} operators[] = {{"=", Operator::Equal},        {"!=", Operator::Unequal}, {"<", Operator::Less},
                 {"<=", Operator::LessOrEqual}, {">", Operator::Greater},  {">=", Operator::GreaterOrEqual}};

std::string_view Trimmed(std::string_view text) {
  const std::size_t begin = std::min(text.find_first_not_of(blanks), text.size());
  return text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
}

class ConditionReader {
 public:
  explicit ConditionReader(std::string_view text) : text(text) {}

  std::vector<Condition> Read() {
    std::vector<Condition> conditions{ReadCondition()};
    while (!Rest().empty()) {
      if (!AtConjunction(at)) {
        Fail("\"and\" or the end");
      }
      at += conjunction.size();
      conditions.push_back(ReadCondition());
    }
    return conditions;
  }

 private:
  [[noreturn]] void Fail(const std::string& expected) const {
    const std::string_view before = Trimmed(text.substr(0, at));
    throw UsageError("where '" + std::string(text) + "': expected " + expected +
                     (before.empty() ? "" : " after '" + std::string(before) + '\'') +
                     "; a condition is NAME OPERATOR VALUE, such as 'Dose > 40'");
  }

  /// What is left, without blanks before it.
  std::string_view Rest() {
    at = std::min(text.find_first_not_of(blanks, at), text.size());
    return text.substr(at);
  }

  /// Whether "and" stands at a place, as a word of its own.
  bool AtConjunction(std::size_t place) const {
    const std::size_t end = place + conjunction.size();
    return text.substr(place, conjunction.size()) == conjunction && place > 0 &&
           (blanks.find(text[place - 1]) != std::string_view::npos || text[place - 1] == '\'' ||
            text[place - 1] == '"') &&
           (end == text.size() || blanks.find(text[end]) != std::string_view::npos);
  }

  Condition ReadCondition() {
    Condition condition;
    condition.name = ToStoredText(ReadName());
    condition.comparison = ReadOperator();
    ReadValue(condition);
    return condition;
  }

  /// A text in quotes, if there is one.
  std::optional<std::string> ReadQuoted() {
    const std::string_view rest = Rest();
    if (rest.empty() || (rest.front() != '"' && rest.front() != '\'')) {
      return std::nullopt;
    }
    std::string quoted;
    for (std::size_t place = 1; place < rest.size(); ++place) {
      if (rest[place] == rest.front()) {
        if (place + 1 == rest.size() || rest[place + 1] != rest.front()) {
          at += place + 1;
          return quoted;
        }
        ++place;
      }
      quoted += rest[place];
    }
    Fail(std::string("a second ") + rest.front() + " at the end of the text that begins");
  }

  std::string ReadName() {
    if (const std::optional<std::string> quoted = ReadQuoted()) {
      return *quoted;
    }
    const std::string_view rest = Rest();
    const std::size_t end = std::min(rest.find_first_of(signs), rest.size());
    const std::string_view name = Trimmed(rest.substr(0, end));
    if (name.empty()) {
      Fail("the name of a parameter");
    }
    at += end;
    return std::string(name);
  }

  Operator ReadOperator() {
    const std::string_view rest = Rest();
    const std::string_view sign = rest.substr(0, std::min(rest.find_first_not_of(signs), rest.size()));
    const auto* const found =
        std::find_if(std::begin(operators), std::end(operators), [&](const auto& one) { return one.sign == sign; });
    if (found == std::end(operators)) {
      Fail("one of = != < <= > >=" + (sign.empty() ? std::string() : " and not '" + std::string(sign) + '\''));
    }
    at += sign.size();
    return found->meaning;
  }

  void ReadValue(Condition& condition) {
    if (std::optional<std::string> quoted = ReadQuoted()) {
      condition.text = std::move(*quoted);
      return;
    }
    const std::string_view rest = Rest();
    std::size_t end = rest.find_first_of(signs);
    for (std::size_t place = 0; place < std::min(end, rest.size()); ++place) {
      if (AtConjunction(at + place)) {
        end = place;
      }
    }
    const std::string_view value = Trimmed(rest.substr(0, end));
    const bool isOfOrder = condition.comparison != Operator::Equal && condition.comparison != Operator::Unequal;
    condition.text = value;
    condition.number = NumberIn(value);
    if (value.empty() || (isOfOrder && !condition.number)) {
      Fail(isOfOrder ? "a number, or a text in quotes," : "a value");
    }
    at += std::min(end, rest.size());
    if (end < rest.size() && signs.find(text[at]) != std::string_view::npos) {
      Fail("\"and\" or the end");
    }
  }

  const std::string_view text;
  std::size_t at = 0;
};

}  // namespace

std::vector<Store::Condition> WhereArgument(const std::vector<std::string>& texts) {
  std::vector<Condition> conditions;
  for (const std::string& text : texts) {
    const std::vector<Condition> more = ConditionReader(text).Read();
    conditions.insert(conditions.end(), more.begin(), more.end());
  }
  return conditions;
}

}  // namespace Velora::Ts
