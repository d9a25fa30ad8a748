#include "HostOptions.h"

#include "TiltSeriesRecording.h"

#include <VeloraSystem/Console.h>
#include <VeloraSystem/Path.h>

#include <filesystem>

HostOptions::HostOptions(const std::string& description)
    : program(
          description,
          "Exit code: 0 all was recorded, 1 something was not, 2 wrong usage, 3 TS is not available and nothing was "
          "recorded.") {}

std::optional<int> HostOptions::Read(int argc, char** argv) {
  program.Own().AddText("--data", data,
                        "Folder of the record and its settings; what it lacks of them is put there. "
                        "Default: the current directory");
  program.Own().AddCount("--pace", pace, "Milliseconds that each section takes, as at an instrument. Default: 0");
  program.Own().AddRequiredTexts("FILE", files, "An .mdoc file");
  if (const std::optional<bool> helped = program.Read(Velora::System::Arguments(argc, argv))) {
    return *helped ? Recorded : WrongUsage;
  }
  for (std::string& file : files) {
    file = Velora::System::TextOf(std::filesystem::absolute(Velora::System::PathOf(file)));
  }
  return std::nullopt;
}

std::vector<const char*> HostOptions::Files() const {
  std::vector<const char*> texts;
  for (const std::string& file : files) {
    texts.push_back(file.c_str());
  }
  return texts;
}
