#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Velora::Ts {

/// A line under a text, with which somebody signed it (C2SP signed-note).
struct NoteSignature {
  std::string name;   ///< Of the key.
  std::string bytes;  ///< The four bytes that identify the key, then the signature.

  /// The line, with its line break.
  std::string Line() const;
};

/// The signature that a line is, with its line break; nothing for any other text.
std::optional<NoteSignature> NoteSignatureIn(std::string_view line);

/// Whether a key can have this name in a note: it is not empty, has neither spaces nor '+', and is in ASCII.
bool IsKeyName(std::string_view name);

}  // namespace Velora::Ts
