#pragma once

#include <string>
#include <string_view>

namespace Velora::Ts {

/// Reads the binary form in which OpenSSH writes keys and signatures (RFC 4251, 5). What is wrong reads as empty or 0.
class SshReader {
 public:
  /// @param bytes must stay.
  explicit SshReader(std::string_view bytes) : rest(bytes) {}

  unsigned Integer();
  std::string_view String();
  /// What was not read yet.
  std::string_view Rest() const { return rest; }
  bool IsRight() const { return isRight; }
  bool IsAtEnd() const { return isRight && rest.empty(); }

 private:
  std::string_view rest;
  bool isRight = true;
};

/// Expects a type of keys whose signatures can be checked. Those of FIDO devices are not among them: such a device
/// signs more than the message.
/// @throws Error with the types that are expected.
void ExpectSupported(std::string_view keyType);

/// Whether a key made a signature of a message.
/// @param key its binary form.
/// @param algorithm of the signature.
/// @param signature what follows the name of the algorithm in a signature.
bool SshKeySigned(std::string_view key, std::string_view algorithm, std::string_view signature,
                  std::string_view message);

}  // namespace Velora::Ts
