#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Velora::Ts {

/// What a time-stamping authority answered (RFC 3161).
struct TimeStamp {
  std::string time;     ///< As stored times.
  std::string imprint;  ///< The SHA-256 of what existed then, as 32 bytes.
};

/// The query for a time stamp of a text, in DER. It asks for the certificate, and has no nonce: the answer can be taken
/// in without the query.
std::string TimeStampQuery(std::string_view text);

/// The token in an answer, with the certificate of its signer alone, so that each byte of it is signed; empty if the
/// answer has none. It is what a store keeps.
std::string TokenIn(std::string_view answer);

/// Whether the certificate in a token, which nobody need trust, is that of who signed it.
bool IsSigned(std::string_view token);

/// What a token says, which is not checked; nothing if it is none as TokenIn() gives it.
std::optional<TimeStamp> TimeStampIn(std::string_view token);

/// What the certificates of authorities say of a time stamp.
struct Verdict {
  std::string finding;  ///< What is wrong; empty for nothing.
  std::string unknown;  ///< Whose time stamp it is, if it is sound, but none of the certificates issued that of its
                        ///< signer: a name of any characters. Empty if one of them did.
};

/// The certificates of authorities that somebody trusts.
class Authorities {
 public:
  /// @param file certificates in PEM. @throws Error when it has none.
  explicit Authorities(std::string file);

  /// Checks a token: that it is about this text, and that the certificate of its signer, which is one for time
  /// stamps, leads to one of these and was valid at the time that it states.
  Verdict On(std::string_view token, std::string_view text) const;

 private:
  std::string file;
};

}  // namespace Velora::Ts
