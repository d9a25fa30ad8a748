#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <utility>

namespace Quor::TolvaServices::Local {

/// Values under their guids. It keeps the 128 used last, and 256 at most.
template <typename Value>
class Recent {
 public:
  /// @return null for a guid that is not kept.
  std::shared_ptr<const Value> Find(const std::string& guid) {
    if (const auto found = newer.find(guid); found != newer.end()) {
      return found->second;
    }
    const auto found = older.find(guid);
    if (found == older.end()) {
      return nullptr;
    }
    auto value = found->second;
    Keep(guid, value);
    return value;
  }

  void Keep(const std::string& guid, std::shared_ptr<const Value> value) {
    if (newer.size() == 128) {
      older.swap(newer);
      newer.clear();
    }
    newer.insert_or_assign(guid, std::move(value));
  }

 private:
  std::unordered_map<std::string, std::shared_ptr<const Value>> newer, older;
};

}  // namespace Quor::TolvaServices::Local
