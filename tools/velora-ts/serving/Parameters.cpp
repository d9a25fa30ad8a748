#include "asking/NewestNames.h"
#include "output/Units.h"
#include "serving/EachStore.h"
#include "serving/NamedRun.h"
#include "serving/Route.h"
#include "store/values/Json.h"
#include "store/values/RecordedText.h"

namespace Velora::Ts {

using namespace Store;

namespace {

std::string ListOf(const std::set<std::string>& texts) {
  std::string json = "[";
  for (const std::string& text : texts) {
    json += json.size() > 1 ? "," : "";
    AppendText(json, text);
  }
  return json + ']';
}

/// The unit that the settings of one of the stores state, or that the name has; empty if none is known.
std::string UnitOf(const Served& served, std::optional<long long> number, const std::string& name) {
  for (const ServedStore& place : served.stores) {
    std::string unit = !number || *number == place.number ? Units(place.settings.units).Of(Readable(name)) : "";
    if (!unit.empty()) {
      return unit;
    }
  }
  return "";
}

/// Adds the names in the stores that are asked for. @return which of them cannot be read.
std::string AddNames(const Served& served, std::optional<long long> number, NewestNames& names) {
  return EachStore(served, number, [&](const ServedStore& /*place*/, const auto& store) {
    names.Add(*store);
    store->ExpectUntouched();
  });
}

Http::Answer AnswerParameters(const Served& served, Http::Question& question) {
  std::optional<long long> number = StoreNumber(served, question);
  NewestNames names;
  std::string errors = "[]";
  if (question.Text("run").empty()) {
    question.ExpectNoOthers();
    errors = AddNames(served, number, names);
  } else {
    const NamedRun named = RunNamed(served, question);
    number = named.place->number;
    names.Add(*named.store, named.run);
    named.store->ExpectUntouched();
  }
  Http::Answer answer;
  answer.body = "{\"parameters\":";
  const char* separator = "[\n";
  for (const auto& [name, parameter] : names.Parameters()) {
    answer.body += separator + std::string("{\"name\":");
    AppendText(answer.body, name);
    answer.body += ",\"unit\":";
    AppendText(answer.body, UnitOf(served, number, name));
    answer.body +=
        ",\"events\":" + ListOf(parameter.events) + ",\"kinds\":" + ListOf(parameter.kinds) + ",\"last_at\":";
    AppendText(answer.body, parameter.lastAt);
    answer.body += '}';
    separator = ",\n";
  }
  answer.body += std::string(*separator == '[' ? "[]" : "]") + ",\n\"cut\":" + (names.IsCut() ? "true" : "false") +
                 ",\"errors\":" + errors + "}\n";
  return answer;
}

}  // namespace

extern const Route routeParameters = {"/api/parameters", &AnswerParameters};

}  // namespace Velora::Ts
