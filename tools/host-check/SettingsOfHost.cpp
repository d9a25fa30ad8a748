#include "host-check/SettingsOfHost.h"

#include "store/Error.h"

#include <VeloraSystem/Narrow.h>
#include <VeloraSystem/Path.h>

#include <filesystem>

namespace Velora::HostCheck {

namespace {

/// Which of the two files a folder lacks, in words; empty if it has both.
std::string LackingIn(const std::string& folder, const std::string& activities) {
  std::string lacking;
  for (const std::string& file : {std::string("TSAL.config"), activities}) {
    if (!std::filesystem::exists(System::PathOf(System::Joined(folder, file)))) {
      lacking += (lacking.empty() ? "" : " and ") + file;
    }
  }
  return lacking;
}

/// The folder of the library, which asks for it before it looks anywhere.
std::string DataRoot(const std::string& library) {
  std::string root = System::TextOf(System::PathOf(System::AsLoaded(library)).parent_path());
  if (!System::IsNarrow(root)) {
    throw Store::Error("the library's folder '" + root +
                       "' has letters beyond U+00FF, and a host that does not set its locale cannot use a library "
                       "there; expected another folder");
  }
  return root;
}

}  // namespace

std::string FolderOfSettings(const HostStart& start) {
  std::string root = start.library.empty() ? "" : DataRoot(start.library);
  std::string here =
      start.folder.empty() ? System::TextOf(std::filesystem::current_path()) : System::Absolute(start.folder);
  const std::string lackingHere = LackingIn(here, start.activities);
  if (lackingHere.empty()) {
    return here;
  }
  std::string reason = "the current directory '" + here + "' lacks " + lackingHere;
  if (!root.empty()) {
    const std::string lackingThere = LackingIn(root, start.activities);
    if (lackingThere.empty()) {
      return root;
    }
    reason += ", and the library's folder '" + root + "' lacks " + lackingThere;
  }
  throw Store::Error(reason + "; expected both files in one folder: \"velora-ts init\" writes them");
}

}  // namespace Velora::HostCheck
