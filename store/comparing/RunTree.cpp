#include "store/comparing/RunTree.h"

#include "store/reading/Rows.h"
#include "store/values/StoredTime.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <tuple>
#include <unordered_map>

namespace Velora::Store {

namespace {

enum Column { Key, Parent, Node, Started, Status, StatusAt, VersionKey, Activity, Version };

constexpr const char* question =
    "SELECT e.execution_id, e.parent_id, e.node, e.started_at, "
    "(SELECT code FROM statuses WHERE execution_id = e.execution_id ORDER BY status_id DESC LIMIT 1), "
    "(SELECT at FROM statuses WHERE execution_id = e.execution_id ORDER BY status_id DESC LIMIT 1), "
    "e.version_id, v.name, v.version FROM executions e "
    "LEFT JOIN activity_versions v ON v.version_id = e.version_id "
    "WHERE e.root_id = ?1 ORDER BY e.execution_id";

}  // namespace

std::optional<long long> InTimeOf(const TreeNode& execution, const TreeNode& counterpart, std::optional<long long> at) {
  return execution.startedAt && counterpart.startedAt && at
             ? std::optional(*execution.startedAt + *at - *counterpart.startedAt)
             : std::nullopt;
}

RunTree::RunTree(const Reader& store, const Run& run) {
  Read(store, run);
  CountOrdinals();
}

void RunTree::Read(const Reader& store, const Run& run) {
  std::map<long long, std::size_t> known;  // activities by the key of the version
  std::vector<long long> parents;
  Rows rows(store, question);
  for (rows.Ask(run.root); rows.Next();) {
    const long long version = rows.Integer(VersionKey);
    const auto [found, isNew] = known.try_emplace(version, activities.size());
    if (isNew) {
      const auto text = [&](int column) { return std::string(rows.Text(column)); };
      activities.push_back({text(Activity), text(Version)});
    }
    TreeNode node;
    node.key = rows.Integer(Key);
    node.activity = found->second;
    node.node = rows.Text(Node);
    node.startedAt = Microseconds(rows.Text(Started));
    node.status = rows.IsNull(Status) ? std::nullopt : std::optional(rows.Integer(Status));
    node.statusAt = Microseconds(rows.Text(StatusAt));
    if (node.key == run.root) {
      root = nodes.size();
    }
    parents.push_back(rows.IsNull(Parent) ? run.root : rows.Integer(Parent));
    nodes.push_back(std::move(node));
  }
  FindParents(parents);
}

// A parent that does not belong to the run, which only another program can have recorded, is taken for the root.
void RunTree::FindParents(const std::vector<long long>& parents) {
  childrenOf.resize(nodes.size() + 1);
  for (std::size_t place = 0; place < nodes.size(); ++place) {
    const auto found =
        std::lower_bound(nodes.begin(), nodes.begin() + static_cast<std::ptrdiff_t>(place), parents[place],
                         [](const TreeNode& node, long long key) { return node.key < key; });
    const bool isBefore = found != nodes.begin() + static_cast<std::ptrdiff_t>(place) && found->key == parents[place];
    nodes[place].parent = isBefore ? static_cast<std::size_t>(found - nodes.begin()) : root;
    if (place != root) {
      ++childrenOf[nodes[place].parent + 1];
    }
  }
  std::partial_sum(childrenOf.begin(), childrenOf.end(), childrenOf.begin());
  children.resize(nodes.empty() ? 0 : nodes.size() - 1);
  std::vector<std::size_t> next = childrenOf;
  for (std::size_t place = 0; place < nodes.size(); ++place) {
    if (place != root) {
      children[next[nodes[place].parent]++] = place;
    }
  }
}

void RunTree::CountOrdinals() {
  for (std::size_t place = 0; place < nodes.size(); ++place) {
    std::map<std::pair<std::string_view, std::string_view>, std::size_t> seen;
    for (const std::size_t child : ChildrenOf(place)) {
      nodes[child].ordinal = ++seen[{ActivityOf(child).name, nodes[child].node}];
    }
  }
}

std::span<const std::size_t> RunTree::ChildrenOf(std::size_t place) const {
  return std::span(children).subspan(childrenOf[place], childrenOf[place + 1] - childrenOf[place]);
}

std::size_t RunTree::CountBelow(std::size_t place) const {
  std::size_t count = 0;
  for (std::vector<std::size_t> left{place}; !left.empty();) {
    const std::span<const std::size_t> below = ChildrenOf(left.back());
    left.pop_back();
    left.insert(left.end(), below.begin(), below.end());
    count += below.size();
  }
  return count;
}

}  // namespace Velora::Store
