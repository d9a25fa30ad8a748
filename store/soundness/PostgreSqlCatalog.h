#pragma once

#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace Velora::Store {

class Connection;

/// One thing that a server's catalogs say of a schema.
struct CatalogLine {
  std::string definition;
  std::string foreign;  ///< What is wrong where no store has such a thing; empty where it does no harm.
  std::string parent;   ///< Of a table, the one in which its rows appear too.
};

/// A relation, with "YYYYMM" for the month in the names of a month's partitions, and that month; empty for functions.
struct CatalogEntry {
  std::string relation;
  std::string month;

  bool operator<(const CatalogEntry& other) const {
    return std::tie(relation, month) < std::tie(other.relation, other.month);
  }
};

/// What stands in the catalogs of each relation of a schema: "table", "column name of", "trigger x on"...
using CatalogParts = std::map<std::string, CatalogLine>;
using Catalog = std::map<CatalogEntry, CatalogParts>;

/// That of the current schema, without its name, so that two can be compared.
Catalog ReadCatalog(Connection& connection);

/// What a store lacks of another, has otherwise, or has beyond it and should not; months may be missing.
std::vector<std::string> Differences(const Catalog& found, const Catalog& expected);

}  // namespace Velora::Store
