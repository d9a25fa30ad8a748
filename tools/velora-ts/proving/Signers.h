#pragma once

#include "proving/NoteKey.h"
#include "proving/SshSignature.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Velora::Ts {

/// Somebody whose signatures count.
struct Signer {
  std::string name;
  std::string until = "";  ///< A stored time from which on the key is withdrawn; empty for none.
};

/// A file of those whose signatures count, one key a line: "NAME+ID+KEY", as `seal --key` says it, or a line of an
/// allowed signers file of OpenSSH. Behind the first, and as the option `valid-before` of the second, can stand the
/// time from which on a key is withdrawn. Lines that begin with "#" are remarks. No key stands in two lines, so that
/// none of them can be without effect.
class Signers {
 public:
  /// @throws Error, naming the line, when the file cannot be read or has something else.
  explicit Signers(const std::string& file);

  /// Who made a signature of a text; nothing if no key of the file did.
  std::optional<Signer> Of(std::string_view text, const NoteSignature& signature) const;
  std::optional<Signer> Of(std::string_view text, const SshSignature& signature) const;
  /// Whether the file has the key that a signature names.
  bool HasKeyOf(const NoteSignature& signature) const;

 private:
  struct OfNotes {
    NoteKey key;
    Signer signer;
  };
  struct OfSsh {
    std::string publicKey;
    Signer signer;
  };
  using Lines = std::map<std::string, int>;  // of keys
  void Take(std::string_view line, int number, Lines& lines);
  void TakeOfSsh(const std::vector<std::string_view>& words, int number, Lines& lines);

  std::vector<OfNotes> ofNotes;
  std::vector<OfSsh> ofSsh;
};

}  // namespace Velora::Ts
