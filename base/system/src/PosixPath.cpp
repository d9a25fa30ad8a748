#include <VeloraSystem/Path.h>

namespace Velora::System {

std::filesystem::path PathOf(const std::string& text) { return text; }

std::string TextOf(const std::filesystem::path& path) { return path; }

std::string AtAnyLength(const std::string& text) { return text; }

}  // namespace Velora::System
