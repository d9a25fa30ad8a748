#include "page/writer/EventBatches.h"

#include "page/writer/KeptEvents.h"
#include "store/values/Json.h"

namespace Velora::Page {

using namespace Store;

namespace {

constexpr std::size_t batchValues = 100000;
constexpr std::size_t batchBytes = std::size_t{16} << 20U;

}  // namespace

EventBatches::EventBatches(const Store::Reader& store, long long root, const KeptEvents& kept, long long start,
                           Step step)
    : events(store, root), kept(kept), start(start), step(std::move(step)) {}

bool EventBatches::AppendBatch(std::string& json) {
  do {
    for (; next != shapes.end(); ++next) {
      if (next->second.rows > 0) {
        Move(next->second, json);
        return true;
      }
    }
  } while (Fill());
  return false;
}

void EventBatches::AppendShapes(std::string& json) const {
  std::vector<const std::string*> keys(shapes.size());
  for (const auto& [key, shape] : shapes) {
    keys[shape.index] = &key;
  }
  json += '[';
  const char* separator = "[";
  for (const std::string* key : keys) {
    json += separator + *key + ']';
    separator = ",[";
  }
  json += ']';
}

bool EventBatches::Fill() {
  std::size_t values = 0;
  std::size_t bytes = 0;
  while (values < batchValues && bytes < batchBytes && events.Next()) {
    step();
    if (kept.Keeps(events.Current())) {
      Add(events.Current());
      values += 3 + events.Current().readings.size();
      for (const Reading& reading : events.Current().readings) {
        bytes += reading.json.size();
      }
    }
  }
  next = shapes.begin();
  return values > 0;
}

void EventBatches::Add(const Event& event) {
  std::string key;
  AppendText(key, event.name);
  for (const Reading& reading : event.readings) {
    for (const std::string& text : {reading.name, reading.kind}) {
      key += ',';
      AppendText(key, text);
    }
  }
  const auto [found, isNew] = shapes.try_emplace(std::move(key));
  Shape& shape = found->second;
  if (isNew) {
    shape.index = shapes.size() - 1;
    shape.values.resize(event.readings.size());
  }
  ++shape.rows;
  shape.number.AddWhole(event.number);
  shape.execution.AddWhole(event.execution);
  shape.at.AddWhole(event.at ? std::optional(*event.at - start) : std::nullopt);
  for (std::size_t place = 0; place < event.readings.size(); ++place) {
    const Reading& reading = event.readings[place];
    if (reading.isNumber && reading.kind != "text") {
      shape.values[place].AddNumber(*reading.number, reading.json);
    } else if (reading.kind == "text" && reading.json != "null") {
      shape.values[place].AddText(reading.isNumber ? '"' + reading.json + '"' : reading.json);
    } else {
      shape.values[place].AddOther(reading.json);
    }
  }
}

void EventBatches::Move(Shape& shape, std::string& json) {
  json += "{\"shape\":" + std::to_string(shape.index) + ",\"number\":";
  shape.number.MoveTo(json);
  json += ",\"execution\":";
  shape.execution.MoveTo(json);
  json += ",\"at\":";
  shape.at.MoveTo(json);
  json += ",\"values\":[";
  for (std::size_t place = 0; place < shape.values.size(); ++place) {
    json += place > 0 ? "," : "";
    shape.values[place].MoveTo(json);
  }
  json += "]}";
  shape.rows = 0;
}

}  // namespace Velora::Page
