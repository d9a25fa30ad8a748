#include <VeloraLogFile/TimeForm.h>
#include <VeloraSystem/LocalClock.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <stdexcept>
#include <utility>

namespace Velora::LogFile {

using namespace std::chrono;

namespace {

bool IsDigit(char character) { return character >= '0' && character <= '9'; }
bool IsBlank(char character) { return character == ' ' || character == '\t'; }

/// Takes characters from the start of a text.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : rest(text) {}

  bool Take(char character) {
    if (rest.empty() || rest.front() != character) {
      return false;
    }
    rest.remove_prefix(1);
    return true;
  }
  bool TakeBlanks() {
    const std::size_t before = rest.size();
    while (!rest.empty() && IsBlank(rest.front())) {
      rest.remove_prefix(1);
    }
    return rest.size() < before;
  }
  /// A number of at most so many digits.
  bool TakeNumber(std::size_t most, long long& number) {
    const auto end = std::find_if_not(rest.begin(), rest.begin() + std::min(most, rest.size()), IsDigit);
    const auto length = static_cast<std::size_t>(end - rest.begin());
    std::from_chars(rest.data(), rest.data() + length, number);
    rest.remove_prefix(length);
    return length > 0;
  }
  /// A number of exactly so many digits.
  bool TakeDigits(std::size_t digits, long long& number) {
    const std::size_t before = rest.size();
    return TakeNumber(digits, number) && before - rest.size() == digits;
  }
  /// The digits after a point or a comma, as microseconds; further digits are left out.
  long long TakeFraction() {
    if (rest.size() < 2 || (rest[0] != '.' && rest[0] != ',') || !IsDigit(rest[1])) {
      return 0;
    }
    rest.remove_prefix(1);
    long long fraction = 0;
    int digits = 0;
    for (; !rest.empty() && IsDigit(rest.front()); rest.remove_prefix(1)) {
      fraction = digits < 6 ? fraction * 10 + (rest.front() - '0') : fraction;
      ++digits;
    }
    for (; digits < 6; ++digits) {
      fraction *= 10;
    }
    return fraction;
  }
  std::string_view Rest() const { return rest; }

 private:
  std::string_view rest;
};

struct Parts {
  long long year = 1970, month = 1, day = 1, hour = 0, minute = 0, second = 0, fraction = 0;
  std::optional<long long> secondsSince1970, offset;  // seconds
};

bool TakeMonth(Scanner& scanner, long long& month) {
  static constexpr std::array<std::string_view, 12> names{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                          "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  const auto name = std::find(names.begin(), names.end(), scanner.Rest().substr(0, 3));
  month = name - names.begin() + 1;
  return name != names.end() && scanner.Take((*name)[0]) && scanner.Take((*name)[1]) && scanner.Take((*name)[2]);
}

// "Z", "+01", "+0100" or "+01:00"; or nothing, as in local times.
bool TakeOffset(Scanner& scanner, std::optional<long long>& offset) {
  const bool negative = scanner.Take('-');
  if (!negative && !scanner.Take('+')) {
    offset = scanner.Take('Z') ? std::optional(0LL) : std::nullopt;
    return true;
  }
  long long hour = 0;
  long long minute = 0;
  if (!scanner.TakeNumber(2, hour)) {
    return false;
  }
  scanner.Take(':');
  scanner.TakeNumber(2, minute);
  offset = (negative ? -60 : 60) * (hour * 60 + minute);
  return true;
}

bool Take(Scanner& scanner, char conversion, Parts& parts) {
  switch (conversion) {
    case 'Y':
      return scanner.TakeDigits(4, parts.year);
    case 'y':
      if (!scanner.TakeDigits(2, parts.year)) {
        return false;
      }
      parts.year += parts.year < 70 ? 2000 : 1900;
      return true;
    case 'm':
      return scanner.TakeNumber(2, parts.month);
    case 'd':
      return scanner.TakeNumber(2, parts.day);
    case 'b':
      return TakeMonth(scanner, parts.month);
    case 'H':
      return scanner.TakeNumber(2, parts.hour);
    case 'M':
      return scanner.TakeNumber(2, parts.minute);
    case 'S':
      if (!scanner.TakeNumber(2, parts.second)) {
        return false;
      }
      parts.fraction = scanner.TakeFraction();
      return true;
    case 's':
      if (!scanner.TakeNumber(11, parts.secondsSince1970.emplace())) {
        return false;
      }
      parts.fraction = scanner.TakeFraction();
      return true;
    case 'z':
      return TakeOffset(scanner, parts.offset);
    default:
      return scanner.Take('%');
  }
}

/// The offset of local times at a time of day. The system is asked once for each hour that comes up.
long long LocalOffset(sys_seconds local) {
  thread_local sys_time<hours> known{hours(-1)};
  thread_local long long offset = 0;
  const auto hour = floor<hours>(local);
  if (hour != known) {
    offset = System::OffsetOfClockTime(hour).count();
    known = hour;
  }
  return offset;
}

std::optional<long long> TimeOf(const Parts& parts) {
  if (parts.secondsSince1970) {
    return *parts.secondsSince1970 * 1'000'000 + parts.fraction;
  }
  const year_month_day date{year(static_cast<int>(parts.year)), month(static_cast<unsigned>(parts.month)),
                            day(static_cast<unsigned>(parts.day))};
  if (!date.ok() || parts.hour > 23 || parts.minute > 59 || parts.second > 60) {
    return std::nullopt;
  }
  const sys_seconds time = sys_days(date) + hours(parts.hour) + minutes(parts.minute) + seconds(parts.second);
  const long long offset = parts.offset ? *parts.offset : LocalOffset(time);
  return (time.time_since_epoch().count() - offset) * 1'000'000 + parts.fraction;
}

}  // namespace

TimeForm::TimeForm(std::string given) : form(std::move(given)) {
  std::string conversions;
  for (std::size_t at = form.find('%'); at != std::string::npos; at = form.find('%', at + 2)) {
    conversions += at + 1 < form.size() ? form[at + 1] : ' ';
  }
  const auto has = [&](char conversion) { return conversions.find(conversion) != std::string::npos; };
  if (conversions.find_first_not_of("YymdbHMSsz%") != std::string::npos ||
      !(has('s') || ((has('Y') || has('y')) && (has('m') || has('b')) && has('d') && has('H') && has('M')))) {
    throw std::invalid_argument("time format '" + form +
                                "': expected %Y or %y, %m or %b, %d, %H, %M, and if there are any %S and %z; or %s");
  }
}

std::optional<long long> TimeForm::Read(std::string_view& text) const {
  Scanner scanner(text);
  Parts parts;
  for (std::size_t at = 0; at < form.size(); ++at) {
    const bool taken = form[at] == '%'     ? Take(scanner, form[++at], parts)
                       : IsBlank(form[at]) ? scanner.TakeBlanks()
                                           : scanner.Take(form[at]);
    if (!taken) {
      return std::nullopt;
    }
  }
  const std::optional<long long> time = TimeOf(parts);
  if (time) {
    text = scanner.Rest();
  }
  return time;
}

}  // namespace Velora::LogFile
