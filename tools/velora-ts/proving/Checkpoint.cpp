#include "proving/Checkpoint.h"

#include "store/record/Base64.h"

#include <algorithm>
#include <charconv>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr std::string_view program = "velora-ts/";
constexpr std::size_t longestGuid = 64;

/// Whether a text can be the origin of a store. A key can sign checkpoints of other programs too.
bool IsOrigin(std::string_view text) {
  const std::string_view guid = text.substr(std::min(program.size(), text.size()));
  return text.starts_with(program) && !guid.empty() && guid.size() <= longestGuid &&
         guid.find_first_not_of("0123456789abcdef-") == std::string_view::npos;
}

/// Takes a line from the beginning of a text. @return the line; nothing if the text has none.
std::optional<std::string_view> TakeLine(std::string_view& text) {
  const std::size_t end = text.find('\n');
  if (end == std::string_view::npos) {
    return std::nullopt;
  }
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(end + 1);
  return line;
}

}  // namespace

std::string Checkpoint::Text() const { return origin + '\n' + std::to_string(size) + '\n' + ToBase64(root) + '\n'; }

std::string OriginOf(const std::string& guid) { return std::string(program) + guid; }

std::optional<Checkpoint> CheckpointIn(std::string_view text) {
  std::string_view rest = text;
  const auto origin = TakeLine(rest), size = TakeLine(rest), root = TakeLine(rest);
  if (!origin || !size || !root) {
    return std::nullopt;
  }
  if (!IsOrigin(*origin)) {
    return std::nullopt;
  }
  Checkpoint read{std::string(*origin), 0, FromBase64(*root).value_or("")};
  std::from_chars(size->data(), size->data() + size->size(), read.size);
  const bool right = read.size >= 0 && read.root.size() == hashBytes && read.Text() == text;
  return right ? std::optional(read) : std::nullopt;
}

}  // namespace Velora::Ts
