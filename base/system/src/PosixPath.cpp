#include <VeloraSystem/Failure.h>
#include <VeloraSystem/Path.h>

#include <system_error>

namespace Velora::System {

namespace fs = std::filesystem;

fs::path PathOf(const std::string& text) { return text; }

std::string TextOf(const fs::path& path) { return path; }

std::string AtAnyLength(const std::string& path) { return path; }

std::string Joined(const std::string& folder, const std::string& path) { return fs::path(folder) / path; }

std::string Absolute(const std::string& path) {
  std::error_code error;
  const fs::path absolute = fs::absolute(path, error);
  return error ? throw Failure(error.message()) : absolute;
}

std::string AsLoaded(const std::string& library) { return fs::weakly_canonical(library); }

}  // namespace Velora::System
