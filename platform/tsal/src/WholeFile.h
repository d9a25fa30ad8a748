#pragma once

#include <cstdint>
#include <string>

namespace Quor::TolvaServices::Local {

/// The whole content of a file, byte for byte.
/// @param limit the largest size in bytes that is accepted.
/// @throws TsError naming the file when it cannot be read or is larger.
std::string ReadWholeFile(const std::string& path, std::uintmax_t limit = UINTMAX_MAX);

}  // namespace Quor::TolvaServices::Local
