#include "DataFolder.h"

#include "ExampleSettings.h"

#include <fstream>
#include <stdexcept>

namespace fs = std::filesystem;

void EnterDataFolder(const fs::path& folder) {
  fs::create_directories(folder);
  fs::current_path(folder);
  for (const ExampleFile& file : exampleFiles) {
    if (fs::exists(file.name)) {
      continue;
    }
    std::ofstream copy(file.name, std::ios::binary);
    copy << file.content << std::flush;
    if (!copy) {
      throw std::runtime_error("file '" + fs::absolute(file.name).string() + "' cannot be written");
    }
  }
}
