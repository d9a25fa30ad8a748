#include "host-check/SettingsOfHost.h"

#include "store/Error.h"

#include <VeloraSystem/Path.h>

namespace Velora::HostCheck {

namespace fs = std::filesystem;

namespace {

/// Which of the two files a folder lacks, in words; empty if it has both.
std::string LackingIn(const fs::path& folder, const std::string& activities) {
  std::string lacking;
  for (const std::string& file : {std::string("TSAL.config"), activities}) {
    if (!fs::exists(folder / System::PathOf(file))) {
      lacking += (lacking.empty() ? "" : " and ") + file;
    }
  }
  return lacking;
}

}  // namespace

fs::path FolderOfSettings(const HostStart& start) {
  fs::path here = start.folder.empty() ? fs::current_path() : fs::absolute(System::PathOf(start.folder));
  const std::string lackingHere = LackingIn(here, start.activities);
  if (lackingHere.empty()) {
    return here;
  }
  std::string reason = "the current directory '" + System::TextOf(here) + "' lacks " + lackingHere;
  if (!start.library.empty()) {
    fs::path root = fs::weakly_canonical(System::PathOf(start.library)).parent_path();
    const std::string lackingThere = LackingIn(root, start.activities);
    if (lackingThere.empty()) {
      return root;
    }
    reason += ", and the library's folder '" + System::TextOf(root) + "' lacks " + lackingThere;
  }
  throw Store::Error(reason + "; expected both files in one folder: \"velora-ts init\" writes them");
}

}  // namespace Velora::HostCheck
