#include "store/record/Records.h"
#include "exporting/Writers.h"
#include "output/Output.h"

#include <map>
#include <utility>

namespace Velora::Ts {

using namespace Store;

void WriteRecords(const Store::Reader& store, const Selection& selection, const Step& step) {
  std::map<long long, Records> known;
  const auto recordsOf = [&](long long origin) -> Records& {
    return known
        .try_emplace(origin, store, origin, HighestNumbers(store, origin),
                     [&](std::string_view line) {
                       WriteData(line);
                       step();
                     })
        .first->second;
  };
  for (const Run& run : selection.runs) {
    recordsOf(StoreOf(run.root)).WriteRun(run.root);
    for (const long long origin : StoresThatAddedTo(store, run.root)) {
      recordsOf(origin).WriteRun(run.root);
    }
  }
  if (!selection.ofNoRun) {
    return;
  }
  EventRows events = QueryEventsOfNoRun(store);
  events.Ask(selection.ofNoRun->first, selection.ofNoRun->second);
  long long current = 0;
  while (events.Next()) {
    const long long origin = StoreOf(events.Event().Integer(0));
    Records& records = recordsOf(origin);
    if (std::exchange(current, origin) != origin) {
      records.BeginEventsOfNoRun();
    }
    records.WriteEvent(events);
  }
  if (current == 0) {
    recordsOf(thisStore).BeginEventsOfNoRun();
  }
}

}  // namespace Velora::Ts
