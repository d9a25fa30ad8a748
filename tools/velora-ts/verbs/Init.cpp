#include "output/FreshFile.h"
#include "output/Output.h"
#include "verbs/InitialSettings.h"
#include "verbs/Verb.h"

#include "store/Error.h"

#include <VeloraSystem/Path.h>

#include <filesystem>
#include <string>
#include <system_error>

namespace Velora::Ts {

using namespace Store;

namespace fs = std::filesystem;

namespace {

std::string AsAttribute(const std::string& value) {
  std::string escaped;
  for (const char character : value) {
    switch (character) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        escaped += character;
    }
  }
  return escaped;
}

std::string NamedFor(std::string_view settings, const std::string& instrument) {
  static constexpr std::string_view root = "<TSAL>";
  std::string named(settings);
  return named.replace(named.find(root), root.size(), "<TSAL Instrument=\"" + AsAttribute(instrument) + "\">");
}

/// Writes a file if none has its name. @return whether it was written.
bool WriteNew(const fs::path& path, std::string_view content) {
  if (std::error_code unknown; fs::exists(fs::symlink_status(path, unknown))) {
    return false;
  }
  const std::string file = System::TextOf(path);
  FreshFile fresh("file '" + file + "'", file, 0666U);
  fresh.Write(content);
  fresh.TakeName(FreshFile::Existing::Keep);
  return true;
}

class InitVerb : public Verb {
 public:
  explicit InitVerb(Options& options) {
    options.AddRequiredText("FOLDER", folder, "The folder in which hosts will run; it is made if it does not exist");
    options.AddText("--instrument", instrument, "Name of the instrument in the records. Default: the computer's name",
                    "NAME");
  }

  ExitCode Execute() override {
    std::error_code failed;
    fs::create_directories(System::PathOf(folder), failed);
    if (failed) {
      throw Error("folder '" + folder + "' cannot be made: " + failed.message());
    }
    ExitCode result = Done;
    for (const InitialFile& file : initialFiles) {
      const bool isNamed = &file == initialFiles.data() && !instrument.empty();
      const fs::path path = System::PathOf(folder) / file.name;
      if (WriteNew(path, isNamed ? NamedFor(file.content, instrument) : std::string(file.content))) {
        Say("written: " + System::TextOf(path));
      } else {
        Say("kept as it is: " + System::TextOf(path));
        result = isNamed ? Found : result;
      }
    }
    if (result == Found) {
      Complain(
          "the instrument was not named, because TSAL.config exists; set the attribute Instrument of its element TSAL");
    }
    return result;
  }

 private:
  std::string folder, instrument;
};

}  // namespace

extern const Registration registeredInit = {
    "init", "Writes the three files that a host needs into FOLDER, with comments. Existing files are kept.",
    "init /data/scope-7 --instrument \"Scope 7\"", &Make<InitVerb>};

}  // namespace Velora::Ts
