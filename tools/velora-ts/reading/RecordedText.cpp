#include "reading/RecordedText.h"

#include "StoredText.h"
#include "output/Terminal.h"

#include <charconv>
#include <cmath>

namespace Velora::Ts {

std::string Readable(std::string_view stored) {
  using namespace Quor::TolvaServices::Local;
  const std::string given = FromStoredText(stored);
  std::string readable;
  for (std::string_view rest = given; !rest.empty();) {
    const std::size_t length = rest.front() == '\0' ? 0 : SequenceLength(rest);
    readable += length > 0 ? rest.substr(0, length) : "\xEF\xBF\xBD";
    rest.remove_prefix(length > 0 ? length : 1);
  }
  return readable;
}

std::string Shown(std::string_view stored) { return Printable(Readable(stored)); }

std::optional<double> NumberIn(std::string_view text) {
  if (text.starts_with('+') && !text.starts_with("+-")) {
    text.remove_prefix(1);
  }
  double number = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool whole = read.ec == std::errc() && read.ptr == text.data() + text.size();
  return whole && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

}  // namespace Velora::Ts
