#include "HostOptions.h"

#include "TiltSeriesRecording.h"

#include <VeloraText/Printable.h>

#include <filesystem>
#include <iostream>
#include <sstream>

HostOptions::HostOptions(CLI::App& app) {
  app.add_option("--data", data,
                 "Folder of the record and its settings; what it lacks of them is put there. "
                 "Default: the current directory");
  app.add_option("FILE", files, "An .mdoc file")->required();
  app.footer(
      "Exit code: 0 all was recorded, 1 something was not, 2 wrong usage, 3 TS is not available and nothing was "
      "recorded.");
}

std::optional<int> HostOptions::Parse(CLI::App& app, int argc, char** argv) {
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    std::ostringstream help, complaint;
    const bool asked = app.exit(error, help, complaint) == 0;
    Velora::Text::WriteLines(std::cout, help.str());
    Velora::Text::WriteLines(std::cerr, complaint.str());
    return asked ? Recorded : WrongUsage;
  }
  for (std::string& file : files) {
    file = std::filesystem::absolute(file).string();
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
