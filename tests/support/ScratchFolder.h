#pragma once

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <utility>

/// A folder of a test's own, removed with everything in it.
class ScratchFolder {
 public:
  ScratchFolder() {
    std::random_device random;
    do {
      path = std::filesystem::temp_directory_path() / ("velora-test-" + std::to_string(random()));
    } while (!create_directory(path));
    permissions(path, std::filesystem::perms::owner_all);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }

  std::filesystem::path operator/(const std::string& name) const { return path / name; }

  std::filesystem::path Write(const std::string& name, const std::string& content) const {
    std::ofstream(path / name, std::ios::binary) << content;
    return path / name;
  }

  std::filesystem::path path;
};

inline std::string ContentOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::ostringstream content;  // takes blocks, not characters
  content << stream.rdbuf();
  return std::move(content).str();
}
