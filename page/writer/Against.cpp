#include "page/writer/Against.h"

#include "page/writer/Column.h"
#include "store/comparing/Configurations.h"
#include "store/comparing/Summary.h"
#include "store/reading/Reader.h"
#include "store/values/Json.h"
#include "store/values/StoredTime.h"

#include <utility>

namespace Velora::Page {

using namespace Store;

namespace {

using Sink = std::function<void(std::string_view)>;

constexpr std::size_t batchRows = 100000;

/// A list of batches with two whole columns: keys in the run of the page and in the other one.
class Pairs {
 public:
  Pairs(const char* name, const Sink& write) : write(write) { write(std::string(",\"") + name + "\":["); }

  void Add(long long one, long long other) {
    ofFirst.AddWhole(one);
    ofSecond.AddWhole(other);
    if (++rows == batchRows) {
      WriteBatch();
    }
  }
  void End() {
    if (rows > 0) {
      WriteBatch();
    }
    write("]");
  }

 private:
  void WriteBatch() {
    std::string json = std::exchange(separator, ",");
    json += "{\"own\":";
    ofFirst.MoveTo(json);
    json += ",\"other\":";
    ofSecond.MoveTo(json);
    write(json + '}');
    rows = 0;
  }

  const Sink& write;
  Column ofFirst, ofSecond;
  std::size_t rows = 0;
  const char* separator = "";
};

void Append(std::string& json, const char* name, std::optional<long long> number) {
  json += name + (number ? std::to_string(*number) : "null");
}

void AppendTolerance(std::string& json, const Tolerance& tolerance) {
  json += "\"absolute\":";
  AppendNumber(json, tolerance.absolute);
  json += ",\"relative\":";
  AppendNumber(json, tolerance.relative);
}

std::string AsJson(const Rules& rules) {
  std::string json = ",\"rules\":{\"ignored\":[";
  const char* separator = "";
  for (const std::string& name : rules.ignored) {
    json += std::exchange(separator, ",");
    AppendText(json, name);
  }
  json += "],\"tolerances\":[";
  separator = "";
  for (const auto& [name, tolerance] : rules.tolerances) {
    json += std::exchange(separator, ",");
    json += "{\"parameter\":";
    AppendText(json, name);
    json += ',';
    AppendTolerance(json, tolerance);
    json += '}';
  }
  json += "],\"otherwise\":{";
  AppendTolerance(json, rules.otherwise);
  return json + "}}";
}

std::string KindOf(const Compared& parting) {
  switch (parting.kind) {
    case Compared::Kind::Parameter:
      return "parameter";
    case Compared::Kind::Status:
      return "status";
    case Compared::Kind::Event:
    case Compared::Kind::EventOrder:
      return "event";
    default:
      return "execution";
  }
}

std::string AsJson(const Comparison& comparison, const Compared* parting) {
  if (parting == nullptr) {
    return ",\"parting\":null";
  }
  const auto keyOf = [](const RunTree& tree, std::size_t place) {
    return place == Matching::none ? std::nullopt : std::optional(tree.At(place).key);
  };
  std::string json = ",\"parting\":{\"kind\":\"" + KindOf(*parting) + "\",";
  Append(json, "\"execution\":", keyOf(comparison.First(), parting->first));
  Append(json, ",\"other_execution\":", keyOf(comparison.Second(), parting->second));
  Append(json, ",\"event\":", parting->firstEvent);
  Append(json, ",\"other_event\":", parting->secondEvent);
  json += ",\"parameter\":";
  if (parting->kind == Compared::Kind::Parameter) {
    AppendText(json, parting->parameter);
  } else {
    json += "null";
  }
  const long long start = Microseconds(comparison.FirstSide().run.startedAt).value_or(0);
  Append(json, ",\"at\":", parting->at ? std::optional(*parting->at - start) : std::nullopt);
  return json + '}';
}

void WriteChangedLines(const Comparison& comparison, const Sink& write) {
  write(",\"lines\":[");
  const char* separator = "";
  ForEachChangedLine(ConfigurationsOf(comparison.FirstSide().store, comparison.FirstSide().run),
                     ConfigurationsOf(comparison.SecondSide().store, comparison.SecondSide().run),
                     [&](const ChangedLine& line) {
                       std::string json = std::exchange(separator, ",");
                       json += line.first ? "{\"own\":true,\"line\":" : "{\"own\":false,\"line\":";
                       json += std::to_string(line.first ? *line.first : *line.second) + ",\"text\":";
                       AppendText(json, line.text);
                       write(json + '}');
                     });
  write("]");
}

}  // namespace

Against::Against(const Comparison& comparison)
    : comparison(comparison), kept(comparison.SecondSide().store, comparison.SecondSide().run.root) {}

void Against::WriteComparison(const Sink& write) const {
  Pairs executions("pairs", write);
  const Matching& matching = comparison.Matched();
  for (std::size_t place = 0; place < matching.ofFirst.size(); ++place) {
    if (const std::size_t other = matching.ofFirst[place]; other != Matching::none) {
      executions.Add(comparison.First().At(place).key, comparison.Second().At(other).key);
    }
  }
  executions.End();
  Pairs events("event_pairs", write);
  Summary summary;
  comparison.Visit([&](const Compared& compared) {
    summary.Add(compared);
    if (compared.kind == Compared::Kind::EventOrder) {
      events.Add(*compared.firstEvent, *compared.secondEvent);
    }
  });
  events.End();
  write(AsJson(comparison.ComparedBy()));
  write(AsJson(comparison, summary.Parting()));
  WriteChangedLines(comparison, write);
}

}  // namespace Velora::Page
