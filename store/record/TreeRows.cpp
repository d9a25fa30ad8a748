#include "store/record/TreeRows.h"

#include "store/record/Base64.h"

#include <string_view>

namespace Velora::Store {

TreeRows AddLeaves(GrowingTree& tree, long long seal, const std::string& leaves) {
  static constexpr std::size_t bytesInARow = static_cast<std::size_t>(leavesOfPart) * hashBytes;
  TreeRows rows;
  for (std::string_view rest = leaves; !rest.empty();) {
    const std::string_view row = rest.substr(0, bytesInARow);
    rest.remove_prefix(row.size());
    for (std::size_t at = 0; at < row.size(); at += hashBytes) {
      tree.Add(Hash(row.substr(at, hashBytes)));
      if (tree.Size() % leavesOfPart == 0) {
        rows.parts.push_back({tree.Size() / leavesOfPart, ToBase64(tree.Last(partLevel))});
      }
    }
    rows.leaves.push_back({tree.Size(), seal, ToBase64(row)});
  }
  return rows;
}

}  // namespace Velora::Store
