#include "host-check/LibraryOfHost.h"

#include "host-check/HostCheck.h"

#include <VeloraSystem/LoadedLibrary.h>
#include <VeloraSystem/Path.h>
#include <VeloraSystem/System.h>

#include <exception>
#include <filesystem>

namespace Velora::HostCheck {

namespace fs = std::filesystem;

namespace {

/// The libraries below the component, the lowest first, where the system does not say which of them is missing.
const std::vector<std::string> librariesBelow{VELORA_LIBRARIES_BELOW};

void AddIfNotLoaded(std::vector<std::string>& reasons, const std::string& file) {
  try {
    const System::LoadedLibrary loaded(file);
  } catch (const std::exception& reason) {
    reasons.emplace_back(reason.what());
  }
}

}  // namespace

std::string LibraryBesideProgram() {
  const fs::path library = (System::PathOf(System::ProgramFolder()) / VELORA_LIBRARY_FROM_PROGRAM).lexically_normal();
  std::error_code unknown;
  return fs::exists(library, unknown) ? System::TextOf(library) : "";
}

std::vector<std::string> WhyNotLoaded(const std::string& library) {
  const fs::path file = System::PathOf(System::Absolute(library));
  std::vector<std::string> component, reasons;
  AddIfNotLoaded(component, System::TextOf(file));
  if (!component.empty()) {
    for (const std::string& name : librariesBelow) {
      const fs::path beside = file.parent_path() / name;
      AddIfNotLoaded(reasons, fs::exists(beside) ? System::TextOf(beside) : name);
    }
  }
  reasons.insert(reasons.end(), component.begin(), component.end());
  return reasons;
}

}  // namespace Velora::HostCheck
