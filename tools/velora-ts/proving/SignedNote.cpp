#include "proving/SignedNote.h"

#include "store/record/Base64.h"

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr std::string_view dash = "\xe2\x80\x94 ";  // U+2014, then a space
constexpr std::size_t bytesOfId = 4;

}  // namespace

std::string NoteSignature::Line() const { return std::string(dash) + name + ' ' + ToBase64(bytes) + '\n'; }

std::optional<NoteSignature> NoteSignatureIn(std::string_view line) {
  const std::size_t gap = line.find(' ', dash.size());
  if (!line.starts_with(dash) || !line.ends_with('\n') || gap == std::string_view::npos) {
    return std::nullopt;
  }
  const std::optional<std::string> bytes = FromBase64(line.substr(gap + 1, line.size() - gap - 2));
  const std::string_view name = line.substr(dash.size(), gap - dash.size());
  return bytes && bytes->size() > bytesOfId && IsKeyName(name) ? std::optional(NoteSignature{std::string(name), *bytes})
                                                               : std::nullopt;
}

bool IsKeyName(std::string_view name) {
  if (name.empty()) {
    return false;
  }
  for (const char letter : name) {
    const auto byte = static_cast<unsigned char>(letter);
    if (byte <= ' ' || byte == '+' || byte >= 0x7f) {  // so that no name looks like another one
      return false;
    }
  }
  return true;
}

}  // namespace Velora::Ts
