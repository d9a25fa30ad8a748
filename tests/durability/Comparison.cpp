#include "Comparison.h"

#include "support/Query.h"
#include "support/TestStore.h"

#include <TSAL/Methods.h>

#include <algorithm>
#include <exception>
#include <iterator>
#include <sstream>
#include <vector>

namespace {

// A record of which something is missing is NULL, or lacks a part of its text.
constexpr const char* records = R"(
  SELECT 'session ' || text1 FROM sessions
  UNION ALL
  SELECT 'registration ' || n.text1 || ' ' || group_concat(v.name, ',')
  FROM registrations r LEFT JOIN sessions n USING (session_id) LEFT JOIN activity_versions v USING (version_id)
  GROUP BY r.session_id, r.registered_at, n.text1
  UNION ALL
  SELECT 'execution ' || x.node || ' ' || v.name || ' under ' || COALESCE(p.node, 'none') || ' ' ||
         (SELECT code FROM statuses WHERE execution_id = x.execution_id ORDER BY status_id LIMIT 1)
  FROM executions x LEFT JOIN activity_versions v USING (version_id) LEFT JOIN executions p
    ON p.execution_id = x.parent_id
  UNION ALL
  SELECT 'status ' || x.node || ' ' || s.code FROM statuses s LEFT JOIN executions x USING (execution_id)
  WHERE s.status_id > (SELECT MIN(status_id) FROM statuses WHERE execution_id = s.execution_id)
  UNION ALL
  SELECT 'event ' || e.name || ' of ' || x.node || ': ' ||
         (SELECT group_concat(part, ', ') FROM
           (SELECT position || ' ' || name || ' ' || COALESCE(length(value_text) || ' ' ||
                     COALESCE(NULLIF(substr(value_text, 1, 1), ''), 'x'), printf('%g', value_number)) AS part
            FROM parameters WHERE event_id = e.event_id ORDER BY position) AS parts)
  FROM events e LEFT JOIN executions x USING (execution_id)
  UNION ALL
  SELECT 'configuration ' || configuration_text FROM configurations)";

constexpr const char* soundness = R"(
  SELECT integrity_check FROM pragma_integrity_check WHERE integrity_check <> 'ok'
  UNION ALL
  SELECT 'row without what it refers to in ' || "table" FROM pragma_foreign_key_check)";

// What is in one set and not in the other, as often as it is; the first of it in words.
std::size_t Missing(std::string& text, const char* what, const Records& all, const Records& some) {
  std::vector<std::string> missing;
  std::set_difference(all.begin(), all.end(), some.begin(), some.end(), std::back_inserter(missing));
  text += missing.empty() ? "" : what + (": " + missing.front()) + '\n';
  return missing.size();
}

}  // namespace

Findings& Findings::operator+=(const Findings& other) {
  lost += other.lost;
  half += other.half;
  damaged += other.damaged;
  text += other.text;
  return *this;
}

Records StoredRecords(Velora::Store::Connection& sql) {
  std::istringstream answer(Query(sql, records));
  Records lines;
  for (std::string line; std::getline(answer, line);) {
    lines.insert(line);
  }
  return lines;
}

Records StoredRecords(const std::filesystem::path& database) { return StoredRecords(*TestStore(database).Open()); }

Findings CompareRecords(const Records& stored, const Told& told) {
  Findings findings;
  findings.lost = Missing(findings.text, "lost", told.acknowledged, stored);
  findings.half = Missing(findings.text, "incomplete", stored, told.announced);
  return findings;
}

Findings Compare(const std::filesystem::path& folder, const Told& told) {
  using Quor::TolvaServices::Types::TSInstance;
  Findings findings;
  try {
    TSInstance::SetTsalPath(folder.string());
    if (!TSInstance::IsConnectable()) {
      return {0, 0, 1, "store cannot be opened\n"};
    }
    const SqlConnection sql = TestStore(folder / "ts.db").Open();
    if (const std::string unsound = Query(*sql, soundness); !unsound.empty()) {
      findings = {0, 0, 1, "store is not sound: " + unsound};
    }
    findings += CompareRecords(StoredRecords(*sql), told);
  } catch (const std::exception& error) {
    findings += {0, 0, 1, std::string("store cannot be used: ") + error.what() + '\n'};
  }
  return findings;
}
