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

// Infinities and NaN have a form that depends on the system. Numbers also depend on a rounding direction that the host
// has set. In these cases a stream must write the number.
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
  stream.exceptions(std::ios_base::badbit);  // otherwise a failing stream truncates the line silently
  stream << value;
  line += stream.str();
}

template void AppendPiece(std::string& line, bool value);
template void AppendPiece(std::string& line, double value);
template void AppendPiece(std::string& line, std::int32_t value);

}  // namespace Quor::Velora::Infra::TsLogging
