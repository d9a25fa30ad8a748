// velora-check: loads the TS logging library as a host does, and says where it looks for its settings and whether TS
// can be used, else what is missing. Where TS can be used, a session with the configuration "velora-check" is in the
// record afterwards. Exit codes: 0 usable, 3 not usable, 1 the library cannot be loaded or fails.

#include "LoadedLibrary.h"

#include <VeloraText/Printable.h>
#include <VeloraTsLogging/IFactory.h>

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

namespace {

namespace fs = std::filesystem;
using Quor::Velora::Infra::TsLogging::ITsLogging;
using Velora::Text::WriteLine;
using Velora::Text::WriteLines;

enum ExitCode { Usable = 0, Failed = 1, NotUsable = 3 };

/// A file that is gone afterwards.
struct TemporaryFile {
  explicit TemporaryFile(const std::string& name) : path((fs::temp_directory_path() / name).string()) {
    fs::remove(path);
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    std::error_code ignored;
    fs::remove(path, ignored);
  }
  const std::string path;
};

void SetLogFile(const std::string& path) {
#ifdef _WIN32
  _putenv_s("VELORA_LOG_FILE", path.c_str());
#else
  setenv("VELORA_LOG_FILE", path.c_str(), 1);
#endif
}

/// Loads them one by one, those below first, so that an error names the one that is missing.
LoadedLibrary LoadComponent() {
  for (const char* const file : {VELORA_LOGGING_FILE, VELORA_KIVACCESS_FILE, VELORA_TSAL_FILE}) {
    const LoadedLibrary below(file);
    std::cout << "Found " << file << '\n';
  }
  return LoadedLibrary(VELORA_LIBRARY_FILE);
}

void BringUp(const LoadedLibrary& component, const std::string& configurationFile) {
  std::ofstream(configurationFile) << "velora-check";
  // The factory's operation by the name that the compiler gives it.
  using Create = std::shared_ptr<ITsLogging>(const std::string&);
  component.Find<Create>(
      "_ZN4Quor6Velora5Infra9TsLogging8IFactory15CreateTsLoggingERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEE"
      "E")(configurationFile);
}

ExitCode Tell(const std::string& logFile) {
  const std::string root = "dataRootDirectory path: ";
  std::string dataRoot;
  std::string reasons;
  std::ifstream log(logFile);
  for (std::string line; std::getline(log, line);) {
    if (const std::size_t at = line.find(root); at != std::string::npos) {
      dataRoot = line.substr(at + root.size());
    } else if (line.find(" [info] ") == std::string::npos) {
      reasons += "  " + line.substr(line.find('[')) + '\n';
    }
  }
  WriteLine(std::cout, "Current directory: " + fs::current_path().string());
  WriteLine(std::cout, "Data root: " + dataRoot);
  if (reasons.empty()) {
    std::cout << "TS can be used\n";
    return Usable;
  }
  WriteLines(std::cout, "TS cannot be used:\n" + reasons);
  for (const fs::path& folder : {fs::current_path(), fs::path(dataRoot)}) {
    for (const char* const file : {"TSAL.config", "activities.xml"}) {
      WriteLine(std::cout, (exists(folder / file) ? "  there:   " : "  missing: ") + (folder / file).string());
    }
  }
  return NotUsable;
}

}  // namespace

int main() {
  try {
    const TemporaryFile log("velora-check.log");
    const TemporaryFile configuration("velora-check.xml");
    SetLogFile(log.path);
    const LoadedLibrary component = LoadComponent();
    BringUp(component, configuration.path);
    return Tell(log.path);
  } catch (const std::exception& reason) {
    WriteLine(std::cerr, reason.what());
    return Failed;
  }
}
