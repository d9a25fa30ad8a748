#include "asking/Trends.h"

#include "asking/TrendAnswer.h"
#include "asking/TrendReading.h"
#include "store/reading/KnownStores.h"
#include "store/reading/Rows.h"
#include "store/values/Json.h"
#include "store/values/StoredTime.h"

#include <limits>
#include <utility>

namespace Velora::Ts {

using namespace Store;

namespace {

/// Whether there are more events in a window of times than are quickly read one by one.
bool IsLarge(const Reader& store, const EventWindow& window) {
  static constexpr int quicklyRead = 100000;
  Rows after(store, "SELECT 1 FROM events WHERE at >= ?1 AND at < ?2 LIMIT 1 OFFSET " + std::to_string(quicklyRead));
  return after.Ask(window.from, window.before).Next();
}

void ReadEach(const OpenStore& store, const TrendQuestion& question, std::vector<TrendPart>& parts) {
  const TrendSummary summary = ReadWindow(*store.reader, question.window, question.parameter);
  parts.push_back(
      {store.number, summary.Width(), summary.AllCells(), GroupsOf(*store.reader, summary.Sources(), question, false)});
}

/// Takes the cells that are all in the window, and reads what is before and behind them.
void TakeCells(const OpenStore& store, const TrendSummary& summary, const TrendQuestion& question,
               std::vector<TrendPart>& parts) {
  const long long width = summary.Width();
  long long first = std::numeric_limits<long long>::min(), end = std::numeric_limits<long long>::max();
  if (const auto from = Microseconds(question.window.from)) {
    first = PartOf(*from - 1, width) + 1;
    TrendQuestion before = question;
    before.window.before = TimeText(first * width);
    ReadEach(store, before, parts);
  }
  if (const auto until = Microseconds(question.window.before); until && question.window.before != afterAllTimes) {
    end = PartOf(*until, width);
    TrendQuestion behind = question;
    behind.window.from = TimeText(end * width);
    ReadEach(store, behind, parts);
  }
  TrendPart part{store.number, width};
  for (const auto& [place, cell] : summary.AllCells()) {
    if (place.first >= first && place.first < end) {
      part.cells.emplace(place, cell);
    }
  }
  part.groups = GroupsOf(*store.reader, summary.Sources(), question, true);
  parts.push_back(std::move(part));
}

/// Stores that are not in an answer, and why.
using LeftOut = std::map<int, std::string>;

/// Leaves out a store whose records are also in another.
void KeepEachOnce(std::list<OpenStore>& stores, LeftOut& leftOut) {
  std::map<std::string, int> takenIn;
  for (const OpenStore& store : stores) {
    for (const KnownStore& known : KnownStores(*store.reader)) {
      if (known.number != thisStore && !known.guid.empty()) {
        takenIn[known.guid] = store.number;
      }
    }
  }
  for (const OpenStore& store : stores) {
    const auto other = takenIn.find(KnownStores(*store.reader).front().guid);
    if (other != takenIn.end() && other->second != store.number && !leftOut.contains(other->second)) {
      leftOut[store.number] = "its records are also in store " + std::to_string(other->second);
    }
  }
}

void Open(const std::vector<TrendStore>& asked, std::list<OpenStore>& stores, LeftOut& leftOut) {
  for (const TrendStore& store : asked) {
    try {
      stores.emplace_back(store.number, store.database);
    } catch (const Error& error) {
      if (asked.size() == 1) {
        throw;
      }
      leftOut[store.number] = error.what();
    }
  }
  if (stores.empty()) {
    throw Error("no store can be read: " + leftOut.begin()->second);
  }
  if (stores.size() > 1) {
    KeepEachOnce(stores, leftOut);
    std::erase_if(stores, [&](const OpenStore& store) { return leftOut.contains(store.number); });
  }
}

}  // namespace

bool Trends::ReadKept(OpenStore& store, const TrendQuestion& question, std::vector<TrendPart>& parts) {
  if (!IsLarge(*store.reader, question.window)) {
    return false;
  }
  const std::lock_guard lock(mutex);
  const TrendSummary& summary = kept.Of(store.number, *store.reader, question.parameter);
  if (summary.IsWhole()) {
    TakeCells(store, summary, question, parts);
  }
  return summary.IsWhole();
}

bool Trends::ReadAhead(const TrendStore& store, const std::string& parameter) {
  Reader reader(store.database);
  if (!IsLarge(reader, {})) {
    return false;
  }
  const std::lock_guard lock(mutex);
  return kept.ReadSome(store.number, reader, parameter);
}

std::string Trends::Answer(const std::vector<TrendStore>& asked, const TrendQuestion& question) {
  std::list<OpenStore> stores;
  LeftOut leftOut;
  Open(asked, stores, leftOut);
  std::vector<TrendPart> parts;
  for (OpenStore& store : stores) {
    if (!ReadKept(store, question, parts)) {
      ReadEach(store, question, parts);
    }
  }
  const TrendPicture picture(parts);
  std::string json = AsJson(picture, stores, question);
  for (const OpenStore& store : stores) {
    store.reader->ExpectUntouched();
  }
  json += ",\"left_out\":[";
  for (const auto& [store, why] : leftOut) {
    json += (json.ends_with('[') ? "{\"store\":" : ",{\"store\":") + std::to_string(store) + ",\"why\":";
    AppendText(json, why);
    json += '}';
  }
  return json + ']';
}

}  // namespace Velora::Ts
