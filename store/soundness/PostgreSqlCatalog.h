#pragma once

#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace Velora::Store {

class Connection;

/// A line of a server's catalogs about a schema.
struct CatalogLine {
  std::string definition;
  std::string foreign;  ///< What is wrong if a new store does not have it; empty if it does no harm.
  std::string parent;   ///< For a table, the table in which its rows appear too.
};

/// A relation; in the name of a partition, "YYYYMM" replaces the month. Both are empty for functions.
struct CatalogEntry {
  std::string relation;
  std::string month;

  bool operator<(const CatalogEntry& other) const {
    return std::tie(relation, month) < std::tie(other.relation, other.month);
  }
};

/// The lines about a relation: "table", "column name of", "trigger x on"...
using CatalogParts = std::map<std::string, CatalogLine>;
using Catalog = std::map<CatalogEntry, CatalogParts>;

/// The catalog of the current schema, without the name of the schema, so that two can be compared.
Catalog ReadCatalog(Connection& connection);

/// What is missing in a store, different, or should not exist, compared with a new one. Months may be missing.
std::vector<std::string> Differences(const Catalog& found, const Catalog& expected);

}  // namespace Velora::Store
