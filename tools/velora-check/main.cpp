// velora-check: loads the TS logging library as a host does, and says whether a host that is started in the current
// directory records, and if not, why. Exit codes: 0 it records, 3 it does not, 1 the library cannot be loaded.

#include "host-check/HostCheck.h"

#include <VeloraSystem/LoadedLibrary.h>
#include <VeloraText/Printable.h>

#include <exception>
#include <iostream>
#include <string>

namespace {

using Velora::Text::WriteLine;
using namespace Velora::HostCheck;

enum ExitCode { Usable = 0, Failed = 1, NotUsable = 3 };

/// Loads the libraries one by one, the lowest first, so that an error names the one that is missing.
void LoadComponent() {
  for (const char* const file : {VELORA_LOGGING_FILE, VELORA_KIVACCESS_FILE, VELORA_TSAL_FILE, VELORA_LIBRARY_FILE}) {
    const Velora::System::LoadedLibrary loaded(file);
    WriteLine(std::cout, "ok: library " + std::string(file));
  }
}

}  // namespace

int main() {
  try {
    LoadComponent();
    const HostStart start{"", LibraryBesideProgram()};
    const bool records = CheckHost(start, [](const HostStep& step) { WriteLine(std::cout, InWords(step)); }).records;
    WriteLine(std::cout, records ? "A host that starts here records." : "A host that starts here records nothing.");
    return records ? Usable : NotUsable;
  } catch (const std::exception& reason) {
    WriteLine(std::cerr, reason.what());
    return Failed;
  }
}
