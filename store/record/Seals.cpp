#include "store/record/Seals.h"

#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/record/Sha256.h"
#include "store/schema/Tables.h"
#include "store/values/Json.h"

#include <charconv>

namespace Velora::Store {

namespace {

constexpr const char* question =
    "SELECT seal_id AS number, run, sealed_at, up_to, counts, content_hash, previous_hash, schema_version, "
    "tool_version, "
    "seal_hash FROM seals ORDER BY seal_id";
constexpr int hashColumn = 9;

std::string BeginLine() { return "{\"record\":\"seal\""; }

void AppendField(std::string& line, const char* name) {
  line += ",\"";
  line += name;
  line += "\":";
}

}  // namespace

std::string ToText(const Numbers& numbers) {
  std::string text;
  for (std::size_t kind = 0; kind < numbers.size(); ++kind) {
    text += (kind == 0 ? "{\"" : ",\"") + std::string(kindNames[kind]) + "\":" + std::to_string(numbers[kind]);
  }
  return text + '}';
}

std::optional<Numbers> FromText(const std::string& text) {
  Numbers numbers{};
  std::size_t at = 0;
  for (long long& number : numbers) {
    at = text.find(':', at);
    if (at == std::string::npos) {
      return std::nullopt;
    }
    std::from_chars(text.data() + ++at, text.data() + text.size(), number);
  }
  return ToText(numbers) == text ? std::optional(numbers) : std::nullopt;
}

std::vector<Seal> ReadSeals(const Reader& store) {
  std::vector<Seal> seals;
  if (store.SchemaVersion() < TableNamed("seals").since) {
    return seals;
  }
  Sha256 sha;
  for (Rows rows(store, question); rows.Next();) {
    const auto text = [&rows](int column) { return std::string(rows.Text(column)); };
    std::string line = BeginLine();
    for (int column = 0; column < hashColumn; ++column) {
      AppendField(line, rows.Name(column));
      rows.AppendValue(line, column);
    }
    sha.Add(line + "}\n");
    seals.push_back({rows.Integer(0), text(1), text(3), text(4), text(5), text(6), text(hashColumn), sha.Finish()});
  }
  return seals;
}

std::vector<std::string> ChainFindings(const std::vector<Seal>& seals) {
  std::vector<std::string> findings;
  long long number = 0;
  std::string previous = noHash;
  for (const Seal& seal : seals) {
    const std::string name = "seal " + std::to_string(seal.number);
    if (seal.number != ++number) {
      findings.push_back("seal " + std::to_string(number) + " is missing: " + name + " follows the one before it");
      number = seal.number;
    }
    if (seal.hash != seal.ownHash || !FromText(seal.upTo) || !FromText(seal.counts)) {
      findings.push_back(name + " was altered");
    } else if (seal.previousHash != previous) {
      findings.push_back(name + " does not contain the hash of the seal before it");
    }
    previous = seal.hash;
  }
  return findings;
}

Sealed SealedUpTo(const std::vector<Seal>& seals) {
  Sealed sealed;
  for (const Seal& seal : seals) {
    sealed[seal.run] = FromText(seal.upTo).value_or(none);
  }
  return sealed;
}

bool HasMore(const Reader& store, const Run& run, const Sealed& sealed) {
  const auto since = sealed.find(run.guid);
  if (since == sealed.end()) {
    return true;
  }
  Rows rows(store,
            "SELECT EXISTS (SELECT 1 FROM executions WHERE root_id = ?1 AND execution_id > ?2) OR "
            "EXISTS (SELECT 1 FROM executions x JOIN statuses s ON s.execution_id = x.execution_id "
            "WHERE x.root_id = ?1 AND s.status_id > ?3) OR "
            "EXISTS (SELECT 1 FROM executions x JOIN events e ON e.execution_id = x.execution_id "
            "WHERE x.root_id = ?1 AND e.event_id > ?4)");
  const Numbers& numbers = since->second;
  rows.Ask(run.root, numbers[Executions], numbers[Statuses], numbers[Events]).Next();
  return rows.Integer(0) != 0;
}

bool HasMoreOfNoRun(const Reader& store, const Sealed& sealed) {
  const auto since = sealed.find("");
  const Numbers& numbers = since == sealed.end() ? none : since->second;
  const Numbers highest = HighestNumbers(store);
  for (const Kind kind : {Schema, Sessions, Registrations, Activities, Versions, Configurations}) {
    if (highest[kind] > numbers[kind]) {
      return true;
    }
  }
  Rows rows(store, "SELECT EXISTS (SELECT 1 FROM events WHERE execution_id IS NULL AND event_id > ?1)");
  rows.Ask(numbers[Events]).Next();
  return rows.Integer(0) != 0;
}

std::string LineOf(const Seal& seal, const std::string& sealedAt, long long schema, const std::string& tool) {
  std::string line = BeginLine();
  AppendField(line, "number");
  line += std::to_string(seal.number);
  AppendField(line, "run");
  if (seal.run.empty()) {
    line += "null";
  } else {
    AppendText(line, seal.run);
  }
  for (const auto& [name, value] : {std::pair("sealed_at", &sealedAt),
                                    {"up_to", &seal.upTo},
                                    {"counts", &seal.counts},
                                    {"content_hash", &seal.contentHash},
                                    {"previous_hash", &seal.previousHash}}) {
    AppendField(line, name);
    AppendText(line, *value);
  }
  AppendField(line, "schema_version");
  line += std::to_string(schema);
  AppendField(line, "tool_version");
  AppendText(line, tool);
  return line + "}\n";
}

}  // namespace Velora::Store
