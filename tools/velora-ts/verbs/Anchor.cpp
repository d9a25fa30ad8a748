#include "verbs/Anchor.h"

#include "output/FreshFile.h"
#include "store/settings/WholeFile.h"

#include "store/Error.h"

#include <algorithm>
#include <regex>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr std::uintmax_t largestFile = 1024;

}  // namespace

Anchor ReadAnchor(const std::string& file) {
  const std::string content = Store::ReadWholeFile(file, largestFile);
  static const std::regex form("seal (\\d{1,18}) ([0-9a-f]{64})\n");
  std::smatch parts;
  if (!std::regex_match(content, parts, form)) {
    throw Error("file '" + file + "' is not an anchor; expected 'seal', a number and 64 hexadecimal digits");
  }
  return {std::stoll(parts[1]), parts[2]};
}

void WriteAnchor(const std::string& file, const Anchor& anchor) {
  FreshFile fresh(file, 0666);
  fresh.Write("seal " + std::to_string(anchor.number) + ' ' + anchor.hash + '\n');
  fresh.TakeName(FreshFile::Existing::Replace);
}

std::string AnchorFinding(const Anchor& anchor, const std::vector<Seal>& seals) {
  if (anchor.number == 0) {
    return anchor.hash == noHash ? "" : "the anchor has a hash for seal 0, but the first seal is seal 1";
  }
  const auto seal = std::find_if(seals.begin(), seals.end(),
                                 [&anchor](const Seal& candidate) { return candidate.number == anchor.number; });
  const std::string name = "seal " + std::to_string(anchor.number);
  if (seal == seals.end()) {
    return name + ", which the anchor names, is missing: the newest seals were deleted";
  }
  return seal->ownHash == anchor.hash ? ""
                                      : name + " has another hash than in the anchor: the seals were computed again";
}

}  // namespace Velora::Ts
