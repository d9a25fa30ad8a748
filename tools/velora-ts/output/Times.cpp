#include "output/Times.h"

#include "output/Terminal.h"
#include "store/Error.h"
#include "store/values/StoredTime.h"

#include <VeloraSystem/LocalClock.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <utility>

namespace Velora::Ts {

using namespace Store;

namespace {

template <typename... Values>
std::string Formatted(const char* format, Values... values) {
  std::array<char, 64> text{};
  static_cast<void>(std::snprintf(text.data(), text.size(), format, values...));
  return text.data();
}

}  // namespace

std::chrono::seconds LocalOffset(Store::Time time) {
  return System::LocalOffset(std::chrono::floor<std::chrono::seconds>(time));
}

std::string LocalTime(std::string_view stored, bool fractions) {
  const std::optional<long long> time = Store::Microseconds(stored);
  if (!time) {
    return Printable(stored);
  }
  const Time utc{std::chrono::microseconds(*time)};
  const std::chrono::seconds offset = LocalOffset(utc);
  try {
    std::string local = ToStoredTime(utc + offset).substr(0, fractions ? 23 : 19);
    local[10] = ' ';
    const long long minutes = std::abs(offset.count()) / 60;
    return local + Formatted("%c%02lld:%02lld", offset.count() < 0 ? '-' : '+', minutes / 60, minutes % 60);
  } catch (const Store::Error&) {  // local clocks are in another year than 0 to 9999
    return Printable(stored);
  }
}

std::optional<TimeParts> PartsOf(std::string_view localTime) {
  static constexpr std::string_view shortest = "2026-11-24 21:55:03+01:00";
  const std::size_t size = localTime.size();
  if (size < shortest.size() || localTime[10] != ' ' || localTime[size - 3] != ':' ||
      localTime.find_first_not_of("0123456789-+:. ") != std::string_view::npos) {
    return std::nullopt;
  }
  return TimeParts{std::string(localTime.substr(0, 10)), std::string(localTime.substr(11, size - 17)),
                   std::string(localTime.substr(size - 6))};
}

std::optional<std::string> LaterInShort(const TimeParts& earlier, const TimeParts& later) {
  const double days = SecondsBetween(earlier.date, later.date).value_or(-1) / 86'400;
  if (earlier.offset != later.offset || days < 0) {
    return std::nullopt;
  }
  return later.ofDay + (days > 0 ? Formatted(" +%.0fd", days) : "");
}

std::string DayLines::Above(const TimeParts& time) {
  const std::string now = time.date + ' ' + time.offset;
  return std::exchange(day, now) == now ? "" : now;
}

std::string Duration(double seconds, bool fractions) {
  const long long all = std::llround(std::abs(seconds) * 1000);
  return Formatted("%s%lld:%02lld:%02lld", seconds < 0 ? "-" : "", all / 3'600'000, all / 60'000 % 60,
                   all / 1000 % 60) +
         (fractions ? Formatted(".%03lld", all % 1000) : "");
}

}  // namespace Velora::Ts
