#include "output/Times.h"

#include "output/Terminal.h"
#include "store/values/StoredTime.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr long long second = 1'000'000;  // microseconds

template <typename... Values>
std::string Formatted(const char* format, Values... values) {
  std::array<char, 64> text{};
  static_cast<void>(std::snprintf(text.data(), text.size(), format, values...));
  return text.data();
}

}  // namespace

std::chrono::seconds LocalOffset(Store::Time time) {
  const std::time_t whole = std::chrono::floor<std::chrono::seconds>(time).time_since_epoch().count();
  std::tm local{};
  return std::chrono::seconds(localtime_r(&whole, &local) == nullptr ? 0 : local.tm_gmtoff);
}

std::string LocalTime(std::string_view stored, bool fractions) {
  const std::optional<long long> time = Store::Microseconds(stored);
  const std::time_t seconds = time ? (*time - ((*time % second) + second) % second) / second : 0;
  std::tm local{};
  std::array<char, 64> text{};
  if (!time || localtime_r(&seconds, &local) == nullptr ||
      std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &local) == 0) {
    return Printable(stored);
  }
  const long minutes = local.tm_gmtoff / 60;
  return text.data() + (fractions ? Formatted(".%03lld", (*time - seconds * second) / 1000) : "") +
         Formatted("%c%02ld:%02ld", minutes < 0 ? '-' : '+', std::labs(minutes) / 60, std::labs(minutes) % 60);
}

std::string Duration(double seconds, bool fractions) {
  const long long all = std::llround(std::abs(seconds) * 1000);
  return Formatted("%s%lld:%02lld:%02lld", seconds < 0 ? "-" : "", all / 3'600'000, all / 60'000 % 60,
                   all / 1000 % 60) +
         (fractions ? Formatted(".%03lld", all % 1000) : "");
}

}  // namespace Velora::Ts
