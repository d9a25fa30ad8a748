#pragma once

#include <string>

namespace Velora::Ts {

/// Reads a file that has a secret: at most 64 kB.
/// @param option which names the file. An error has this in place of the name: somebody can give the secret itself.
/// @throws Error when it cannot be read.
std::string ReadSecretFile(const std::string& option, const std::string& file);

}  // namespace Velora::Ts
