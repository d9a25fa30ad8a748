#pragma once

#include "output/Progress.h"
#include "store/copying/RowCopy.h"
#include "store/record/Sha256.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace Velora::Ts {

/// The rows of a table: how many, and the hash of them all in their order.
struct TableContent {
  long long rows = 0;
  std::string hash;

  bool operator==(const TableContent&) const = default;
};

/// What a store has, by the names of its tables.
using Content = std::map<std::string, TableContent>;

/// Computes the content of a store from its rows, and shows how far it is.
class ContentReader {
 public:
  explicit ContentReader(std::string doing) : doing(std::move(doing)) {}

  void Add(const Store::Table& table, std::string_view row);
  Content Finish();

 private:
  struct Rows {
    long long count = 0;
    Store::Sha256 sha;
  };

  const std::string doing;
  std::string current;
  std::optional<Progress> progress;
  std::map<std::string, Rows> tables;
};

/// @param shift is added to the keys, to compare them with those in another store.
Content ContentOf(const Store::Reader& store, const Store::Keys& keys, long long shift = 0);

}  // namespace Velora::Ts
