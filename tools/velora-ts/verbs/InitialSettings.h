#pragma once

#include <array>
#include <string_view>

namespace Velora::Ts {

/// A file that a host needs, with its first content.
struct InitialFile {
  const char* name;
  std::string_view content;
};

/// The first is TSAL.config, whose root element is "<TSAL>" without attributes.
extern const std::array<InitialFile, 3> initialFiles;

}  // namespace Velora::Ts
