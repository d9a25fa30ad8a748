#include "verbs/Anchor.h"

#include "output/OutputFile.h"
#include "store/rotating/Continuation.h"
#include "store/schema/BringUp.h"
#include "store/settings/WholeFile.h"

#include "store/Error.h"

#include <optional>
#include <string_view>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr std::uintmax_t largestFile = 1024;
constexpr std::string_view start = "seal ";

bool Consists(std::string_view text, std::string_view characters) {
  return text.find_first_not_of(characters) == std::string_view::npos;
}

// "seal 12 8f3a...", with the end of the line.
std::optional<Anchor> AnchorIn(std::string_view line) {
  const std::size_t gap = line.find(' ', start.size());
  if (!line.starts_with(start) || !line.ends_with('\n') || gap == std::string_view::npos) {
    return std::nullopt;
  }
  const std::string_view number = line.substr(start.size(), gap - start.size());
  const std::string_view hash = line.substr(gap + 1, line.size() - gap - 2);
  const bool right = !number.empty() && number.size() <= 18 && Consists(number, "0123456789") && hash.size() == 64 &&
                     Consists(hash, "0123456789abcdef");
  return right ? std::optional(Anchor{std::stoll(std::string(number)), std::string(hash)}) : std::nullopt;
}

// What the row of a store says of the one before is data like all other, and makes no anchor hold.
std::string IfOfTheOneBefore(const Store::Reader& store, long long origin) {
  const std::optional<Continued> previous = PreviousOf(store, origin);
  return previous ? ", or the anchor is of the store before, " + previous->guid + ", and must be compared with that one"
                  : "";
}

}  // namespace

Anchor ReadAnchor(const std::string& file) {
  const std::optional<Anchor> anchor = AnchorIn(Store::ReadWholeFile(file, largestFile));
  if (!anchor) {
    throw Error("file '" + file + "' is not an anchor; expected 'seal', a number and 64 hexadecimal digits");
  }
  return *anchor;
}

void WriteAnchor(const std::string& file, const Anchor& anchor) {
  OutputFile output("file", file, std::string(start));
  output.Write(std::string(start) + std::to_string(anchor.number) + ' ' + anchor.hash + '\n');
  output.Finish();
}

std::string AnchorFinding(const Anchor& anchor, const Store::Reader& store, long long origin) {
  if (anchor.number == 0) {
    return anchor.hash == noHash ? "" : "the anchor has a hash for seal 0, but the first seal is seal 1";
  }
  const std::string name = "seal " + std::to_string(anchor.number);
  SealRows seals(store, origin, anchor.number - 1, anchor.number);
  const bool isThere = seals.Next();
  if (isThere && seals.Current().ownHash == anchor.hash) {
    return "";
  }
  return name +
         (isThere ? " has another hash than in the anchor: the seals were computed again"
                  : ", which the anchor names, is missing: the newest seals were deleted") +
         IfOfTheOneBefore(store, origin);
}

}  // namespace Velora::Ts
