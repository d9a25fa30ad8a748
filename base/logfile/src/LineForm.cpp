#include <VeloraLogFile/LineForm.h>

#include <algorithm>
#include <array>
#include <optional>
#include <stdexcept>
#include <utility>

namespace Velora::LogFile {

namespace {

constexpr const char* ofDefaultLogger = "{time} [{level}] [{source}] {text}";

bool IsBlank(char character) { return character == ' ' || character == '\t'; }

/// The length of a fixed text at the start of another; nothing if that begins in another way.
std::optional<std::size_t> LengthOf(std::string_view fixed, std::string_view text) {
  std::size_t at = 0;
  for (const char expected : fixed) {
    if (at == text.size() || (IsBlank(expected) ? !IsBlank(text[at]) : text[at] != expected)) {
      return std::nullopt;
    }
    ++at;
    while (IsBlank(expected) && at < text.size() && IsBlank(text[at])) {
      ++at;
    }
  }
  return at;
}

std::string_view Trimmed(std::string_view text) {
  const std::size_t begin = std::min(text.find_first_not_of(" \t"), text.size());
  return text.substr(begin, text.find_last_not_of(" \t") + 1 - begin);
}

Level LevelNamed(std::string_view name) {
  static constexpr std::array<std::string_view, 12> errors{
      "error", "err", "e", "fatal", "f", "critical", "crit", "alert", "emergency", "emerg", "exception", "severe"};
  static constexpr std::array<std::string_view, 3> warnings{"warning", "warn", "w"};
  const auto isName = [name](std::string_view known) {
    return std::equal(name.begin(), name.end(), known.begin(), known.end(),
                      [](char given, char expected) { return given == expected || given == expected - 'a' + 'A'; });
  };
  return std::any_of(errors.begin(), errors.end(), isName)       ? Level::Error
         : std::any_of(warnings.begin(), warnings.end(), isName) ? Level::Warning
                                                                 : Level::Info;
}

}  // namespace

const char* InWords(Level level) {
  return level == Level::Error ? "error" : level == Level::Warning ? "warning" : "info";
}

LineForm::LineForm()
    : words(ofDefaultLogger), alternatives{PartsOf(ofDefaultLogger), PartsOf("{time} [{level}] {text}")} {}

LineForm::LineForm(const std::string& form) : words(form), alternatives{PartsOf(form)} {}

bool LineForm::Read(std::string_view text, Line& line) const {
  return std::any_of(alternatives.begin(), alternatives.end(),
                     [&](const Parts& parts) { return Read(parts, text, line); });
}

LineForm::Part LineForm::FieldNamed(const std::string& name) {
  static constexpr std::string_view timeOf = "time:";
  if (name.compare(0, timeOf.size(), timeOf) == 0) {
    return {.field = Field::Time, .times = {TimeForm(name.substr(timeOf.size()))}};
  }
  if (name == "time") {
    return {.field = Field::Time, .times = {TimeForm("%Y-%m-%dT%H:%M:%S%z"), TimeForm("%Y-%m-%d %H:%M:%S%z")}};
  }
  static constexpr std::pair<std::string_view, Field> names[] = {
      {"level", Field::Level}, {"source", Field::Source}, {"text", Field::Text}, {"*", Field::Other}};
  for (const auto& [known, field] : names) {
    if (name == known) {
      return {.field = field};
    }
  }
  throw std::invalid_argument("log format: {" + name +
                              "} is not known; expected {time}, {level}, {source}, {text}, "
                              "{*}");
}

LineForm::Parts LineForm::PartsOf(const std::string& form) {
  Parts parts;
  for (std::size_t at = 0; at < form.size();) {
    const std::size_t open = std::min(form.find('{', at), form.size());
    if (open > at) {
      parts.push_back({.fixed = form.substr(at, open - at)});
    } else if (!parts.empty() && parts.back().field != Field::Fixed && parts.back().field != Field::Time) {
      throw std::invalid_argument("log format '" + form + "': expected text between two fields");
    }
    at = open;
    if (open < form.size()) {
      const std::size_t close = std::min(form.find('}', open), form.size());
      parts.push_back(FieldNamed(form.substr(open + 1, close - open - 1)));
      at = close + 1;
    }
  }
  for (const Field needed : {Field::Time, Field::Text}) {
    if (std::none_of(parts.begin(), parts.end(), [needed](const Part& part) { return part.field == needed; })) {
      throw std::invalid_argument("log format '" + form + "': expected {time} and {text}");
    }
  }
  return parts;
}

bool LineForm::Read(const Parts& parts, std::string_view text, Line& line) {
  Line read;
  for (auto part = parts.begin(); part != parts.end(); ++part) {
    const std::string_view end = part + 1 == parts.end() ? std::string_view() : std::string_view((part + 1)->fixed);
    if (!Take(*part, end, text, read)) {
      return false;
    }
  }
  line = std::move(read);
  return true;
}

bool LineForm::Take(const Part& part, std::string_view end, std::string_view& text, Line& line) {
  if (part.field == Field::Fixed) {
    const std::optional<std::size_t> length = LengthOf(part.fixed, text);
    text.remove_prefix(length.value_or(0));
    return length.has_value();
  }
  if (part.field == Field::Time) {
    return std::any_of(part.times.begin(), part.times.end(), [&](const TimeForm& form) {
      const std::optional<long long> time = form.Read(text);
      line.at = time.value_or(0);
      return time.has_value();
    });
  }
  std::size_t length = end.empty() ? text.size() : 0;
  while (length < text.size() && !LengthOf(end, text.substr(length))) {
    ++length;
  }
  const std::string_view value = Trimmed(text.substr(0, length));
  text.remove_prefix(length);
  if (part.field == Field::Level) {
    line.level = LevelNamed(value);
  } else if (part.field == Field::Source) {
    line.source = value;
  } else if (part.field == Field::Text) {
    line.text = value;
  }
  return true;
}

}  // namespace Velora::LogFile
