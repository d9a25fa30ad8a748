#include "store/comparing/Reference.h"

#include "store/reading/Rows.h"
#include "store/reading/Unfinished.h"

namespace Velora::Store {

namespace {

constexpr const char* tables =
    "FROM executions e JOIN sessions n ON n.session_id = e.session_id "
    "LEFT JOIN activity_versions v ON v.version_id = e.version_id ";

}  // namespace

// Reads along the index of parents and times until there is one; PostgreSQL uses it for the order only if ORDER BY
// names all its columns.
Reference ReferenceOf(const Reader& storeOfRun, const Run& run, const Reader& store) {
  Rows own(storeOfRun,
           std::string("SELECT COALESCE(v.name, ''), n.instrument ") + tables + "WHERE e.execution_id = ?1");
  Reference reference;
  if (own.Ask(run.root).Next()) {
    reference.activity = own.Whole(0);
    reference.instrument = own.Whole(1);
  }
  Rows rows(store, std::string("SELECT e.execution_id, e.guid, e.node, e.started_at ") + tables +
                       "WHERE e.parent_id IS NULL AND e.started_at < ?1 AND n.instrument = ?2 "
                       "AND COALESCE(v.name, '') = ?3 AND 14 = (SELECT code FROM statuses WHERE execution_id = "
                       "e.execution_id ORDER BY status_id DESC LIMIT 1) AND NOT " +
                       UnfinishedCondition(store, "e.execution_id") +
                       " ORDER BY e.parent_id DESC, e.started_at DESC, e.execution_id DESC LIMIT 1");
  if (rows.Ask(run.startedAt, reference.instrument, reference.activity).Next()) {
    const auto text = [&rows](int column) { return std::string(rows.Whole(column)); };
    reference.run = Run{rows.Integer(0), text(1), text(2), text(3)};
  }
  return reference;
}

}  // namespace Velora::Store
