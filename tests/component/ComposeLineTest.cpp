// Numbers in lines are what a string stream makes of them at that moment.

#include "trace/ComposeLine.h"

#include <gtest/gtest.h>

#include <bit>
#include <cfenv>
#include <limits>
#include <locale>
#include <random>
#include <sstream>

namespace Quor::Velora::Infra::TsLogging {
namespace {

class OfAHost : public std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '\''; }
  std::string do_grouping() const override { return "\3"; }
};

template <typename Number>
void ExpectAsStreamed(Number number) {
  std::ostringstream stream;
  stream << number;
  EXPECT_EQ(ComposeLine("a", number, std::string("b\0", 2)), 'a' + stream.str() + std::string("b\0", 2));
}

void ExpectEveryKindAsStreamed() {
  using Double = std::numeric_limits<double>;
  for (const double number : {0.0, -0.0, 1e5, 999999.5, 1e6, 1e-4, 9.9999949e-5, 0.1, 100.0, 1.0000001, -1.0000001,
                              1234567.0, Double::infinity(), -Double::infinity(), Double::quiet_NaN(),
                              -Double::quiet_NaN(), Double::denorm_min(), Double::max(), Double::lowest()}) {
    ExpectAsStreamed(number);
  }
  std::mt19937_64 random(1);
  for (int times = 0; times < 10'000 && !testing::Test::HasFailure(); ++times) {
    ExpectAsStreamed(std::bit_cast<double>(random()));
  }
  for (const std::int32_t number : {INT32_MIN, -1234, 0, 1'000'000, INT32_MAX}) {
    ExpectAsStreamed(number);
  }
  ExpectAsStreamed(true);
  ExpectAsStreamed(false);
}

TEST(Line, HasNumbersAsAStreamWritesThemWhateverTheHostsLocaleAndRounding) {
  for (const std::locale& locale : {std::locale::classic(), std::locale(std::locale(), new OfAHost)}) {
    const std::locale before = std::locale::global(locale);
    for (const int rounding : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO, FE_TONEAREST}) {
      SCOPED_TRACE(rounding);
      std::fesetround(rounding);
      ExpectEveryKindAsStreamed();
    }
    std::locale::global(before);
  }
}

}  // namespace
}  // namespace Quor::Velora::Infra::TsLogging
