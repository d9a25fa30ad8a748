#include "store/transfer/RowBytes.h"

#include "store/reading/Rows.h"
#include "store/schema/Table.h"

#include <array>
#include <bit>
#include <cstdint>
#include <string_view>

namespace Velora::Store {
namespace {

template <typename Unsigned>
void AppendBytes(std::string& bytes, Unsigned value) {
  std::array<char, sizeof(Unsigned)> highestFirst{};
  for (std::size_t at = sizeof(Unsigned); at > 0; value = static_cast<Unsigned>(value >> 8)) {
    highestFirst[--at] = static_cast<char>(value & 0xFFU);
  }
  bytes.append(highestFirst.data(), highestFirst.size());
}

void AppendField(std::string& bytes, std::string_view field) {
  AppendBytes(bytes, static_cast<std::uint32_t>(field.size()));
  bytes += field;
}

void AppendField(std::string& bytes, std::uint64_t field) {
  AppendBytes(bytes, static_cast<std::uint32_t>(sizeof(field)));
  AppendBytes(bytes, field);
}

}  // namespace

// A signature, then flags and the length of an extension, which are 0.
const std::string beginOfRows{"PGCOPY\n\xFF\r\n\0\0\0\0\0\0\0\0\0", 19};
const std::string endOfRows = "\xFF\xFF";

void AppendRow(std::string& bytes, const Rows& rows, const Table& table, long long shift) {
  AppendBytes(bytes, static_cast<std::uint16_t>(table.columns.size()));
  int place = 0;
  for (const Column& column : table.columns) {
    if (rows.IsNull(place)) {
      AppendBytes(bytes, ~std::uint32_t{0});
    } else if (column.type == Type::Text) {
      AppendField(bytes, rows.Whole(place));
    } else if (column.type == Type::Number) {
      AppendField(bytes, std::bit_cast<std::uint64_t>(rows.Number(place)));
    } else {
      AppendField(bytes, static_cast<std::uint64_t>(rows.Integer(place) + (column.HoldsKey() ? shift : 0)));
    }
    ++place;
  }
}

}  // namespace Velora::Store
