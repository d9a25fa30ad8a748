#include "store/record/StoredTree.h"

#include "store/reading/Reader.h"
#include "store/record/Base64.h"
#include "store/schema/Tables.h"

#include "store/Error.h"

#include <algorithm>
#include <utility>

namespace Velora::Store {

namespace {

[[noreturn]] void ThrowMissing(const std::string& what) {
  throw Error(what + " of the tree is missing in the TS store; velora-ts verify says what else is wrong");
}

}  // namespace

StoredTree::StoredTree(const Reader& store, long long origin)
    : shift(ShiftOf(origin)), last(shift + numbersOfAStore - 1) {
  if (store.SchemaVersion() < TableNamed("tree_leaves").since) {
    return;
  }
  leaves.emplace(store,
                 "SELECT leaf_id, seal, hashes FROM tree_leaves WHERE leaf_id > ?1 AND leaf_id <= ?2 ORDER BY leaf_id");
  parts.emplace(store, "SELECT part_id, hash FROM tree_parts WHERE part_id > ?1 AND part_id <= ?2 ORDER BY part_id");
  newest.emplace(store,
                 "SELECT seal FROM tree_leaves WHERE leaf_id > ?1 AND leaf_id <= ?2 ORDER BY leaf_id DESC LIMIT 1");
  rowsBehind.emplace(
      store,
      "SELECT (SELECT COUNT(*) FROM tree_leaves WHERE leaf_id > ?1 AND leaf_id <= ?3) + (SELECT COUNT(*) "
      "FROM tree_parts WHERE part_id > ?2 AND part_id <= ?3)");
}

TreeRows StoredTree::RowsBetween(long long from, long long to) {
  TreeRows rows;
  if (leaves) {
    for (leaves->Ask(shift + from, shift + to); leaves->Next();) {
      rows.leaves.push_back({leaves->Integer(0) - shift, leaves->Integer(1), std::string(leaves->Text(2))});
    }
    for (parts->Ask(shift + from / leavesOfPart, shift + to / leavesOfPart); parts->Next();) {
      rows.parts.push_back({parts->Integer(0) - shift, std::string(parts->Text(1))});
    }
  }
  return rows;
}

long long StoredTree::RowsBehind(long long size) {
  return rowsBehind && rowsBehind->Ask(shift + size, shift + size / leavesOfPart, last).Next() ? rowsBehind->Integer(0)
                                                                                               : 0;
}

/// How many leaves the seals before one have. Those of a seal are behind those of the seals before it.
long long StoredTree::SizeBefore(long long seal) {
  long long low = 0, high = numbersOfAStore;
  while (low < high) {
    const long long middle = (low + high) / 2;
    if (leaves->Ask(shift + middle, last).Next() && leaves->Integer(1) < seal) {
      low = leaves->Integer(0) - shift;
    } else {
      high = middle;
    }
  }
  return low;
}

std::optional<SealLeaves> StoredTree::LeavesOf(long long seal) {
  return leaves ? LeavesOf(seal, SizeBefore(seal)) : std::nullopt;
}

std::optional<SealLeaves> StoredTree::LeavesOf(long long seal, long long behind) {
  SealLeaves found{behind, ""};
  for (leaves->Ask(shift + found.first, last); leaves->Next() && leaves->Integer(1) == seal;) {
    const std::optional<std::string> hashes = FromBase64(leaves->Text(2));
    if (!hashes || hashes->size() % hashBytes != 0) {
      return std::nullopt;
    }
    found.hashes += *hashes;
    if (leaves->Integer(0) - shift != found.End()) {
      return std::nullopt;
    }
  }
  return found.hashes.empty() ? std::nullopt : std::optional(std::move(found));
}

long long StoredTree::NewestSeal() { return newest && newest->Ask(shift, last).Next() ? newest->Integer(0) : 0; }

Hash StoredTree::RootOfPart(long long first, int level) {
  std::string hashes =
      level < partLevel ? Leaves(first, 1LL << level) : Parts(first / leavesOfPart, 1LL << (level - partLevel));
  while (hashes.size() > hashBytes) {
    std::string above;
    for (std::size_t at = 0; at < hashes.size(); at += 2 * hashBytes) {
      const std::string_view pair = std::string_view(hashes).substr(at, 2 * hashBytes);
      above += hasher.OfNode(pair.substr(0, hashBytes), pair.substr(hashBytes));
    }
    hashes = std::move(above);
  }
  return hashes;
}

/// The hashes of leaves that follow one another, joined.
std::string StoredTree::Leaves(long long first, long long count) {
  std::string found;
  const long long end = first + count;
  long long next = first;
  if (leaves) {
    for (leaves->Ask(shift + first, last); next < end && leaves->Next();) {
      const std::string hashes = FromBase64(leaves->Text(2)).value_or("");
      const long long here = leaves->Integer(0) - shift;
      const long long begin = here - static_cast<long long>(hashes.size() / hashBytes);
      if (begin > next) {
        break;
      }
      found += hashes.substr(static_cast<std::size_t>(next - begin) * hashBytes,
                             static_cast<std::size_t>(std::min(here, end) - next) * hashBytes);
      next = std::min(here, end);
    }
  }
  if (next != end) {
    ThrowMissing("leaf " + std::to_string(next));
  }
  return found;
}

/// The roots of parts that follow one another, joined.
std::string StoredTree::Parts(long long first, long long count) {
  std::string found;
  long long next = first;
  if (parts) {
    for (parts->Ask(shift + first, shift + first + count); parts->Next();) {
      const std::string hash = FromBase64(parts->Text(1)).value_or("");
      if (parts->Integer(0) - shift != next + 1 || hash.size() != hashBytes) {
        break;
      }
      found += hash;
      ++next;
    }
  }
  if (next != first + count) {
    ThrowMissing("part " + std::to_string(next + 1));
  }
  return found;
}

}  // namespace Velora::Store
