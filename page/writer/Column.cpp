#include "page/writer/Column.h"

#include "page/writer/Base64.h"

#include <bit>
#include <cstdint>

namespace Velora::Page {

void Column::AddWhole(std::optional<long long> value) {
  if (!value || *value - whole != difference) {
    EndRepetition();
  }
  if (value) {
    difference = *value - whole;
    whole = *value;
    ++times;
  } else {
    Add("null");
  }
}

void Column::AddText(std::string_view text) {
  Add(text == last ? "0" : text);
  last = text;
}

void Column::AddNumber(double number, std::string_view text) {
  Add(text);
  numbers.push_back(number);
}

void Column::AddOther(std::string_view text) { Add(text); }

void Column::MoveTo(std::string& to) {
  EndRepetition();
  constexpr std::size_t lengthAsBase64 = 11;  // of eight bytes
  if (count > 0 && numbers.size() == count && json.size() > lengthAsBase64 * count) {
    std::string bytes;
    for (const double number : numbers) {
      for (unsigned shift = 0; shift < 64; shift += 8) {
        bytes += static_cast<char>(std::bit_cast<std::uint64_t>(number) >> shift & 255U);
      }
    }
    to += '"' + Base64(bytes) + '"';
  } else {
    to += '[' + json + ']';
  }
  *this = Column();
}

void Column::Add(std::string_view text) {
  if (count++ > 0) {
    json += ',';
  }
  json += text;
}

void Column::EndRepetition() {
  constexpr std::size_t worthIt = 4;
  const std::string text = std::to_string(difference);
  if (times >= worthIt) {
    Add('[' + text + ',' + std::to_string(times) + ']');
    times = 0;
  }
  for (; times > 0; --times) {
    Add(text);
  }
}

}  // namespace Velora::Page
