#include "store/comparing/ExecutionContent.h"

namespace Velora::Store {

namespace {

constexpr std::size_t mostKnown = 2000;  // contents in memory
constexpr int mostParameters = 32;
constexpr int deepest = 8;  // levels below an execution without parameters of which the first ones are taken

Value NumberOf(long long number) { return {std::to_string(number), {}, static_cast<double>(number)}; }

}  // namespace

ExecutionContent::ExecutionContent(const Reader& store, const RunTree& tree)
    : tree(tree),
      rows(store,
           "SELECT p.position, p.name, p.kind, p.value_text, p.value_number FROM events v "
           "JOIN parameters p ON p.event_id = v.event_id WHERE v.execution_id = ?1 ORDER BY v.event_id, p.position "
           "LIMIT ?2") {}

const Parameters& ExecutionContent::Of(std::size_t place) {
  auto found = known.find(place);
  if (found == known.end()) {
    if (known.size() == mostKnown) {
      known.clear();
    }
    found = known.emplace(place, Read(place)).first;
  }
  return found->second;
}

Parameters ExecutionContent::Read(std::size_t place) {
  Parameters content{{"", NumberOf(tree.At(place).status.value_or(0))},
                     {"", NumberOf(static_cast<long long>(tree.ChildrenOf(place).size()))}};
  for (int depth = 0; !AppendParameters(content, place) && depth < deepest && !tree.ChildrenOf(place).empty();
       ++depth) {
    place = tree.ChildrenOf(place).front();
  }
  return content;
}

bool ExecutionContent::AppendParameters(Parameters& content, std::size_t place) {
  const std::size_t before = content.size();
  for (rows.Ask(tree.At(place).key, mostParameters); rows.Next();) {
    content.push_back({std::string(rows.Text(1)), ValueAt(rows)});
  }
  return content.size() > before;
}

}  // namespace Velora::Store
