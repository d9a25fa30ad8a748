#include "trace/ComposeLine.h"

#include <array>
#include <cfenv>
#include <charconv>
#include <cmath>
#include <locale>
#include <sstream>

namespace Quor::Velora::Infra::TsLogging {
namespace {

std::to_chars_result ToChars(char* first, char* last, bool value) { return std::to_chars(first, last, int{value}); }
std::to_chars_result ToChars(char* first, char* last, std::int32_t value) { return std::to_chars(first, last, value); }
std::to_chars_result ToChars(char* first, char* last, double value) {
  constexpr int streamPrecision = 6;
  return std::to_chars(first, last, value, std::chars_format::general, streamPrecision);
}

// What a stream makes of infinities and of what is not a number is up to the system, and so is rounding in a direction
// that the host has set.
bool IsRoundedToNearest(double value) { return std::isfinite(value) && std::fegetround() == FE_TONEAREST; }
bool IsRoundedToNearest(std::int32_t /*value*/) { return true; }

}  // namespace

template <LoggedNumber Number>
void AppendPiece(std::string& line, Number value) {
  if (IsRoundedToNearest(value) && std::locale() == std::locale::classic()) {
    std::array<char, 32> digits;
    line.append(digits.data(), ToChars(digits.data(), digits.data() + digits.size(), value).ptr);
    return;
  }
  std::ostringstream stream;
  stream.exceptions(std::ios_base::badbit);  // a stream would keep a failure to itself and cut the line short
  stream << value;
  line += stream.str();
}

template void AppendPiece(std::string& line, bool value);
template void AppendPiece(std::string& line, double value);
template void AppendPiece(std::string& line, std::int32_t value);

}  // namespace Quor::Velora::Infra::TsLogging
