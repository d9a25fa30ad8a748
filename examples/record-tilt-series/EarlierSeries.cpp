#include "EarlierSeries.h"

#include "System.h"

#include <VeloraSystem/Path.h>
#include <VeloraSystem/RegularFile.h>
#include <VeloraSystem/System.h>
#include <VeloraText/Printable.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <iomanip>
#include <iostream>
#include <optional>
#include <sstream>

namespace fs = std::filesystem;

namespace {

/// The 64-bit FNV-1a hash of a file. It finds equal files, and is no proof against someone who makes others.
std::string ContentOf(const fs::path& path) try {
  const Velora::System::File file = Velora::System::OpenRegularFile(Velora::System::TextOf(path));
  std::uint64_t hash = 14695981039346656037U;
  std::array<unsigned char, 65536> bytes{};
  for (std::size_t count = 0; (count = std::fread(bytes.data(), 1, bytes.size(), file.get())) > 0;) {
    for (std::size_t at = 0; at < count; ++at) {
      hash = (hash ^ bytes[at]) * 1099511628211U;
    }
  }
  std::ostringstream digits;
  digits << "content " << std::hex << std::setfill('0') << std::setw(16) << hash;
  return std::ferror(file.get()) == 0 ? digits.str() : "";
} catch (const Velora::System::Failure&) {
  return "";
}

/// The runs of a node, one a line, as JSON; nothing if they cannot be read.
std::optional<std::string> RunsOf(const std::string& node) {
  const fs::path tool = fs::path(Velora::System::ProgramFolder()) / "velora-ts";
  return OutputOf({tool.string(), "runs", "--json", "--node=" + node});
}

}  // namespace

std::string DescriptionOf(const fs::path& file) {
  const std::string content = ContentOf(file);
  return file.string() + (content.empty() ? "" : ", " + content);
}

void SayWhatIsThere(const std::vector<fs::path>& files) {
  for (const fs::path& file : files) {
    const std::string content = ContentOf(file);
    const std::optional<std::string> runs = RunsOf(file.filename().string());
    if (!runs) {
      return;
    }
    std::istringstream lines(*runs);
    for (std::string line; std::getline(lines, line);) {
      const std::string begin = "{\"guid\":\"";
      if (!content.empty() && line.starts_with(begin) && line.find(content + '"') != std::string::npos) {
        const std::string guid = line.substr(begin.size(), line.find('"', begin.size()) - begin.size());
        const bool unfinished = line.find("\"unfinished\":true") != std::string::npos;
        Velora::Text::WriteLine(std::cerr,
                                file.string() + ": a series of this name and content is there already, as run " + guid +
                                    (unfinished ? ", which did not finish" : "") + "; it is recorded once more");
        break;
      }
    }
  }
}
