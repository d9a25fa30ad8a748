#include "records/Anchor.h"

#include "WholeFile.h"

#include <TSAL/Error.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <regex>
#include <system_error>

#include <unistd.h>

using Quor::TolvaServices::TsError;

namespace {

constexpr std::uintmax_t largestFile = 1024;

}  // namespace

Anchor ReadAnchor(const std::string& file) {
  const std::string content = Quor::TolvaServices::Local::ReadWholeFile(file, largestFile);
  static const std::regex form("seal (\\d{1,18}) ([0-9a-f]{64})\n");
  std::smatch parts;
  if (!std::regex_match(content, parts, form)) {
    throw TsError("file '" + file + "' is no anchor; expected 'seal', a number and 64 hexadecimal digits");
  }
  return {std::stoll(parts[1]), parts[2]};
}

void WriteAnchor(const std::string& file, const Anchor& anchor) {
  const std::string fresh = file + ".new";
  const std::string content = "seal " + std::to_string(anchor.number) + ' ' + anchor.hash + '\n';
  std::unique_ptr<FILE, int (*)(FILE*)> stream(std::fopen(fresh.c_str(), "w"), &std::fclose);
  if (!stream || std::fputs(content.c_str(), stream.get()) < 0 || std::fflush(stream.get()) != 0 ||
      fsync(fileno(stream.get())) != 0 || std::rename(fresh.c_str(), file.c_str()) != 0) {
    throw TsError("anchor '" + file + "' cannot be written: " + std::system_category().message(errno));
  }
}

std::string AnchorFinding(const Anchor& anchor, const std::vector<Seal>& seals) {
  if (anchor.number == 0) {
    return anchor.hash == noHash ? "" : "the anchor names a seal 0, and there is none before the first";
  }
  const auto seal = std::find_if(seals.begin(), seals.end(),
                                 [&anchor](const Seal& candidate) { return candidate.number == anchor.number; });
  const std::string name = "seal " + std::to_string(anchor.number);
  if (seal == seals.end()) {
    return name + " of the anchor is missing: the end of the seals was cut off";
  }
  return seal->ownHash == anchor.hash ? "" : name + " is not that of the anchor: the seals were computed anew";
}
