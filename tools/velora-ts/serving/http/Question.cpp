#include "serving/http/Question.h"

#include "serving/http/Answer.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <system_error>

namespace Velora::Http {

namespace {

constexpr std::size_t longestShown = 60;  // of a text that a client sent, in bytes

std::string InQuotes(std::string_view text) {
  return "'" + std::string(text.substr(0, longestShown)) + (text.size() > longestShown ? "...'" : "'");
}

[[noreturn]] void Refuse(const std::string& name, const std::string& why) {
  throw Refusal(400, "parameter " + InQuotes(name) + " " + why);
}

std::string Joined(const std::vector<std::string>& words) {
  std::string list;
  for (const std::string& word : words) {
    list += (list.empty() ? "" : &word == &words.back() ? " or " : ", ") + word;
  }
  return list;
}

}  // namespace

std::string Question::Text(const std::string& name) {
  const std::vector<std::string> values = Texts(name);
  if (values.size() > 1) {
    Refuse(name, "is given " + std::to_string(values.size()) + " times; expected it once");
  }
  return values.empty() ? "" : values.front();
}

std::string Question::RequiredText(const std::string& name) {
  std::string value = Text(name);
  if (value.empty()) {
    Refuse(name, "is missing");
  }
  return value;
}

std::vector<std::string> Question::Texts(const std::string& name) {
  known.insert(name);
  std::vector<std::string> values;
  const auto [begin, end] = parameters.equal_range(name);
  for (auto parameter = begin; parameter != end; ++parameter) {
    if (!parameter->second.empty()) {
      values.push_back(parameter->second);
    }
  }
  return values;
}

std::optional<long long> Question::Whole(const std::string& name, long long lowest, long long highest) {
  const std::string text = Text(name);
  if (text.empty()) {
    return std::nullopt;
  }
  long long value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || value < lowest || value > highest) {
    Refuse(name, "is " + InQuotes(text) + "; expected a whole number from " + std::to_string(lowest) + " to " +
                     std::to_string(highest));
  }
  return value;
}

std::string Question::OneOf(const std::string& name, const std::vector<std::string>& words) {
  std::string text = Text(name);
  if (!text.empty() && std::find(words.begin(), words.end(), text) == words.end()) {
    Refuse(name, "is " + InQuotes(text) + "; expected " + Joined(words));
  }
  return text;
}

void Question::ExpectNoOthers() const {
  for (const auto& [name, value] : parameters) {
    if (!known.contains(name)) {
      Refuse(name, known.empty() ? "is not known; expected none"
                                 : "is not known; expected " + Joined({known.begin(), known.end()}));
    }
  }
}

}  // namespace Velora::Http
