#include "store/record/Seals.h"

#include "store/reading/Reader.h"
#include "store/schema/Tables.h"
#include "store/values/Json.h"

#include <array>
#include <charconv>
#include <map>
#include <stdexcept>
#include <utility>

namespace Velora::Store {

namespace {

constexpr std::string_view ownHash = "seal_hash";  // what the others make

const Table& SealTable() { return TableNamed("seals"); }

/// A query for seals, with their columns named as the fields of a record.
std::string Question(const std::string& condition) {
  std::vector<std::string> fields;
  for (const Column& column : SealTable().columns) {
    fields.push_back(column.name + " AS " + column.Field());
  }
  return "SELECT " + Listed(fields) + " FROM seals" + condition;
}

/// Whether old seals know nothing of a kind, so that it is left out where there is nothing of it.
bool IsLeftOutAsZero(Kind kind) { return kind >= Notes; }

std::string BeginLine() { return "{\"record\":\"seal\""; }

void AppendField(std::string& line, std::string_view name) {
  line += ",\"";
  line += name;
  line += "\":";
}

}  // namespace

std::string ToText(const PerKind& numbers) {
  std::string text;
  for (const Kind kind : kinds) {
    if (!IsLeftOutAsZero(kind) || numbers[kind] != 0) {
      text += (kind == 0 ? "{\"" : ",\"") + std::string(kindNames[kind]) + "\":" + std::to_string(numbers[kind]);
    }
  }
  return text + '}';
}

std::optional<PerKind> FromText(std::string_view text) {
  PerKind numbers{};
  const auto take = [&text](std::string_view expected) {
    const bool found = text.starts_with(expected);
    text.remove_prefix(found ? expected.size() : 0);
    return found;
  };
  for (const Kind kind : kinds) {
    if (!take((kind == 0 ? "{\"" : ",\"") + std::string(kindNames[kind]) + "\":")) {
      if (IsLeftOutAsZero(kind)) {
        continue;
      }
      return std::nullopt;
    }
    std::from_chars(text.data(), text.data() + text.size(), numbers[kind]);
    std::array<char, 24> digits{};
    const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), numbers[kind]).ptr;
    if (!take({digits.data(), static_cast<std::size_t>(end - digits.data())})) {  // written in another way
      return std::nullopt;
    }
  }
  return text == "}" ? std::optional(numbers) : std::nullopt;
}

SealRows::SealRows(const Reader& store, long long origin, long long after, long long upTo) : shift(ShiftOf(origin)) {
  const std::vector<KeyRange> ranges = KeysOf(origin, after, upTo);
  if (store.SchemaVersion() >= SealTable().since && !ranges.empty()) {
    const std::string key = SealTable().Key();
    rows.emplace(store, Question(" WHERE " + key + " > ?1 AND " + key + " <= ?2 ORDER BY " + key))
        .Ask(ranges.front().after, ranges.front().upTo);
  }
}

bool SealRows::Next() {
  if (!rows || !rows->Next()) {
    return false;
  }
  const std::pair<std::string_view, std::string*> fields[] = {{"run", &seal.run},
                                                              {"up_to", &seal.upTo},
                                                              {"counts", &seal.counts},
                                                              {"content_hash", &seal.contentHash},
                                                              {"previous_hash", &seal.previousHash},
                                                              {ownHash, &seal.hash}};
  line = BeginLine();
  for (int column = 0; column < rows->Columns(); ++column) {
    const std::string_view name = rows->Name(column);
    for (const auto& [field, text] : fields) {
      if (name == field) {
        *text = rows->Text(column);
      }
    }
    if (name == "schema_version") {
      seal.schema = rows->Integer(column);
    }
    if (name != ownHash) {
      AppendField(line, name);
      column == 0 ? AppendInteger(line, rows->Integer(0) - shift) : rows->AppendValue(line, column);
    }
  }
  line += "}\n";
  sha.Add(line);
  seal.number = rows->Integer(0) - shift;
  seal.ownHash = sha.Finish();
  return true;
}

std::vector<std::string> Chain::Add(const Seal& seal) {
  std::vector<std::string> findings;
  const std::string name = "seal " + std::to_string(seal.number);
  const std::optional<PerKind> covered = FromText(seal.upTo), counted = FromText(seal.counts);
  if (seal.number != number + 1) {
    findings.push_back("seal " + std::to_string(number + 1) + " is missing: " + name + " follows the one before it");
  }
  if (seal.hash != seal.ownHash || !covered || !counted) {
    findings.push_back(name + " was altered");
  } else if (seal.previousHash != hash) {
    findings.push_back(name + " does not contain the hash of the seal before it");
  }
  number = seal.number;
  hash = seal.hash;
  upTo = covered.value_or(none);
  if (seal.run.empty()) {
    restUpTo = upTo;
  }
  for (std::size_t kind = 0; kind < counts.size(); ++kind) {
    counts[kind] += counted.value_or(PerKind{})[kind];
  }
  ++seals;
  return findings;
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
