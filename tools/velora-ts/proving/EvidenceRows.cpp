#include "proving/EvidenceRows.h"

#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/record/Base64.h"
#include "store/record/StoredTree.h"
#include "store/schema/Tables.h"

#include <optional>

namespace Velora::Ts {

using namespace Store;

EvidenceRows::EvidenceRows(const Reader& store, const KnownStore& origin) : origin(OriginOf(origin.guid)) {
  if (store.SchemaVersion() < TableNamed("signatures").since) {
    return;
  }
  const KeyRange keys = KeysOf(origin.number).front();
  const long long shift = ShiftOf(origin.number);
  Rows rows(store,
            "SELECT signature_id, seal, kind, text FROM signatures WHERE signature_id > ?1 AND signature_id <= ?2 "
            "ORDER BY signature_id");
  for (rows.Ask(keys.after, keys.upTo); rows.Next();) {
    signatures[rows.Integer(1)].push_back({"signature " + std::to_string(rows.Integer(0) - shift),
                                           std::string(rows.Whole(2)), std::string(rows.Whole(3))});
  }
  Rows tokens(store,
              "SELECT timestamp_id, seal, token FROM timestamps WHERE timestamp_id > ?1 AND timestamp_id <= ?2 ORDER "
              "BY timestamp_id");
  for (tokens.Ask(keys.after, keys.upTo); tokens.Next();) {
    stamps[tokens.Integer(1)].push_back(
        {"time stamp " + std::to_string(tokens.Integer(0) - shift), FromBase64(tokens.Whole(2)).value_or("")});
  }
}

long long EvidenceRows::NewestSigned(long long upTo) const {
  const auto later = signatures.upper_bound(upTo);
  return later == signatures.begin() ? 0 : std::prev(later)->first;
}

Evidence EvidenceRows::Of(long long seal, long long size, const Hash& root) const {
  const auto ofSeal = signatures.find(seal);
  const auto stampsOfSeal = stamps.find(seal);
  return {{origin, size, root},
          ofSeal == signatures.end() ? std::vector<Signature>() : ofSeal->second,
          stampsOfSeal == stamps.end() ? std::vector<Stamp>() : stampsOfSeal->second};
}

std::set<long long> EvidenceRows::OfNoSeal(long long newest) const {
  std::set<long long> seals;
  for (const auto& [seal, unused] : signatures) {
    seals.insert(seal);
  }
  for (const auto& [seal, unused] : stamps) {
    seals.insert(seal);
  }
  std::erase_if(seals, [&](long long seal) { return seal >= 1 && seal <= newest; });
  return seals;
}

std::optional<Evidence> EvidenceOf(const EvidenceRows& rows, StoredTree& tree, long long seal) {
  const std::optional<SealLeaves> leaves = tree.LeavesOf(seal);
  if (!leaves) {
    return std::nullopt;
  }
  const long long size = leaves->End();
  return rows.Of(seal, size, RootOf(size, [&](long long first, int level) { return tree.RootOfPart(first, level); }));
}

}  // namespace Velora::Ts
