#include "verbs/Mistakes.h"

#include "store/reading/Rows.h"
#include "store/values/RecordedText.h"

#include <algorithm>
#include <map>
#include <set>

namespace Velora::Ts {

using namespace Store;

namespace {

#define NEWEST \
  "WITH newest AS (SELECT event_id, execution_id, name, at FROM events ORDER BY at DESC, event_id DESC LIMIT 1000) "
#define OF_NEWEST_EXECUTIONS                                                                   \
  "SELECT COUNT(*), MIN(node) FROM (SELECT node, version_id, parent_id, kind FROM executions " \
  "ORDER BY started_at DESC, execution_id DESC LIMIT 1000) AS newest "

struct Kind {
  const char* question;  // how many, and one of them
  const char* words;
};

constexpr Kind kinds[] = {
    {NEWEST "SELECT COUNT(*), MIN(event_id) FROM newest WHERE name = ''",
     "of the newest 1000 events have no name: a host saved or extended one that it had not created; the first is "
     "number "},
    {NEWEST "SELECT COUNT(*), MIN(name) FROM newest v WHERE EXISTS (SELECT 1 FROM statuses s WHERE s.execution_id = "
            "v.execution_id AND s.code = 4) AND EXISTS (SELECT 1 FROM statuses s WHERE s.execution_id = v.execution_id "
            "AND s.code = 14 AND s.at < v.at)",
     "of the newest 1000 events belong to an execution that was already done, for example "},
    {OF_NEWEST_EXECUTIONS "WHERE version_id IS NULL",
     "of the newest 1000 executions have no activity version: the activities file does not have the name that the "
     "host gave; for example the execution of node "},
    {OF_NEWEST_EXECUTIONS "WHERE parent_id IS NULL AND kind <> 5",
     "of the newest 1000 executions have no parent, although the host named one: the parent has no description; for "
     "example the execution of node "},
};

constexpr const char* namesInUse[] = {
    NEWEST "SELECT DISTINCT name FROM newest",
    NEWEST "SELECT DISTINCT p.name FROM newest v JOIN parameters p ON p.event_id = v.event_id"};

#undef NEWEST
#undef OF_NEWEST_EXECUTIONS

std::string InSmallLetters(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
  });
  return text;
}

/// Pairs of names that differ only in case.
std::vector<std::string> Twins(const Store::Reader& store, const char* question) {
  std::map<std::string, std::set<std::string>> spellings;
  for (Rows rows(store, question); rows.Next();) {
    const std::string name = Readable(rows.Text(0));
    spellings[InSmallLetters(name)].insert(name);
  }
  std::vector<std::string> twins;
  for (const auto& [small, names] : spellings) {
    if (names.size() > 1) {
      twins.push_back("'" + *names.begin() + "' and '" + *std::next(names.begin()) + "'");
    }
  }
  return twins;
}

}  // namespace

std::vector<std::string> LikelyMistakes(const Store::Reader& store) {
  std::vector<std::string> mistakes;
  for (const auto& [question, words] : kinds) {
    Rows rows(store, question);
    if (rows.Next() && rows.Integer(0) > 0) {
      mistakes.push_back(std::string(rows.Text(0)) + ' ' + words + '\'' + Readable(rows.Text(1)) + '\'');
    }
  }
  for (const char* question : namesInUse) {
    for (const std::string& twins : Twins(store, question)) {
      mistakes.push_back("two names that differ only in case: " + twins);
    }
  }
  return mistakes;
}

}  // namespace Velora::Ts
