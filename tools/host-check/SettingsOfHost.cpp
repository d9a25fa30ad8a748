#include "host-check/SettingsOfHost.h"

#include "store/Error.h"

#include <VeloraSystem/System.h>

namespace Velora::HostCheck {

namespace fs = std::filesystem;

namespace {

/// Which of the two files a folder lacks, in words; empty if it has both.
std::string LackingIn(const fs::path& folder, const std::string& activities) {
  std::string lacking;
  for (const std::string& file : {std::string("TSAL.config"), activities}) {
    if (!fs::exists(folder / file)) {
      lacking += (lacking.empty() ? "" : " and ") + file;
    }
  }
  return lacking;
}

}  // namespace

std::string LibraryBesideProgram() {
  const fs::path library = fs::path(Velora::System::ProgramFolder()) / VELORA_LIBRARY_FROM_PROGRAM;
  std::error_code unknown;
  return fs::exists(library, unknown) ? library.string() : "";
}

fs::path FolderOfSettings(const HostStart& start) {
  fs::path here = start.folder.empty() ? fs::current_path() : fs::absolute(start.folder);
  const std::string lackingHere = LackingIn(here, start.activities);
  if (lackingHere.empty()) {
    return here;
  }
  std::string reason = "the current directory '" + here.string() + "' lacks " + lackingHere;
  if (!start.library.empty()) {
    fs::path root = fs::weakly_canonical(start.library).parent_path();
    const std::string lackingThere = LackingIn(root, start.activities);
    if (lackingThere.empty()) {
      return root;
    }
    reason += ", and the library's folder '" + root.string() + "' lacks " + lackingThere;
  }
  throw Store::Error(reason + "; expected both files in one folder: \"velora-ts init\" writes them");
}

}  // namespace Velora::HostCheck
