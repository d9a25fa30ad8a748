#include "verbs/TreeWriter.h"

#include "store/database/Connection.h"
#include "store/reading/Reader.h"
#include "store/record/TreeRows.h"
#include "store/schema/StoreNumbers.h"

#include "store/Error.h"

#include <optional>

namespace Velora::Ts {

using namespace Store;

TreeWriter::TreeWriter(const Reader& store, long long seals) : stored(store), sealed(stored.NewestSeal()) {
  if (sealed > seals) {
    throw Error("the tree has hashes of seal " + std::to_string(sealed) + ", but the newest seal is seal " +
                std::to_string(seals) + "; velora-ts verify lists all findings");
  }
  if (sealed > 0) {
    const std::optional<SealLeaves> leaves = stored.LeavesOf(sealed);
    if (!leaves) {
      throw Error("the hashes of seal " + std::to_string(sealed) +
                  " are not whole; velora-ts verify lists all findings");
    }
    tree = GrowingTree(leaves->End(), [this](long long first, int level) { return stored.RootOfPart(first, level); });
  }
  if (stored.RowsBehind(tree.Size()) > 0) {
    throw Error("the tree has rows behind those of all seals; velora-ts verify lists all findings");
  }
}

void TreeWriter::Add(Connection& sql, long long seal, const std::string& leaves) {
  if (sql.Find<long long>("SELECT COALESCE(MAX(leaf_id), 0) FROM tree_leaves WHERE leaf_id < ?1", numbersOfAStore) !=
      tree.Size()) {
    throw Error("another program sealed the TS store at the same time; run velora-ts seal again");
  }
  const TreeRows rows = AddLeaves(tree, seal, leaves);
  for (const LeafRow& row : rows.leaves) {
    sql.Run("INSERT INTO tree_leaves (leaf_id, seal, hashes) VALUES (?1, ?2, ?3)", row.last, row.seal, row.hashes);
  }
  for (const PartRow& row : rows.parts) {
    sql.Run("INSERT INTO tree_parts (part_id, hash) VALUES (?1, ?2)", row.number, row.hash);
  }
  sealed = seal;
}

}  // namespace Velora::Ts
