#include "store/record/Seals.h"

#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/record/Sha256.h"
#include "store/schema/Tables.h"
#include "store/values/Json.h"

#include <charconv>
#include <stdexcept>

namespace Velora::Store {

namespace {

const std::string ownHash = "seal_hash";  // what the others make

const Table& SealTable() { return TableNamed("seals"); }

/// Asks for all seals, with their columns named as the fields of a record.
std::string Question() {
  std::vector<std::string> fields;
  for (const Column& column : SealTable().columns) {
    fields.push_back(column.name + " AS " + column.Field());
  }
  return "SELECT " + Listed(fields) + " FROM seals ORDER BY " + SealTable().Key();
}

std::string BeginLine() { return "{\"record\":\"seal\""; }

void AppendField(std::string& line, const std::string& name) {
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
  if (store.SchemaVersion() < SealTable().since) {
    return seals;
  }
  Sha256 sha;
  for (Rows rows(store, Question()); rows.Next();) {
    std::map<std::string, std::string> texts;
    std::string line = BeginLine();
    for (int column = 0; column < rows.Columns(); ++column) {
      texts[rows.Name(column)] = rows.Text(column);
      if (rows.Name(column) != ownHash) {
        AppendField(line, rows.Name(column));
        rows.AppendValue(line, column);
      }
    }
    sha.Add(line + "}\n");
    seals.push_back({rows.Integer(0), texts["run"], texts["up_to"], texts["counts"], texts["content_hash"],
                     texts["previous_hash"], texts[ownHash], sha.Finish()});
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
  const auto text = [](const std::string& value) {
    std::string json;
    AppendText(json, value);
    return json;
  };
  const std::map<std::string, std::string> values = {
      {"number", std::to_string(seal.number)},
      {"run", seal.run.empty() ? "null" : text(seal.run)},
      {"sealed_at", text(sealedAt)},
      {"up_to", text(seal.upTo)},
      {"counts", text(seal.counts)},
      {"content_hash", text(seal.contentHash)},
      {"previous_hash", text(seal.previousHash)},
      {"schema_version", std::to_string(schema)},
      {"tool_version", text(tool)},
  };
  std::string line = BeginLine();
  for (const Column& column : SealTable().columns) {
    if (column.name == ownHash) {
      continue;
    }
    const auto value = values.find(column.Field());
    if (value == values.end()) {
      throw std::logic_error("a seal has no value for its column " + column.name);
    }
    AppendField(line, value->first);
    line += value->second;
  }
  return line + "}\n";
}

}  // namespace Velora::Store
