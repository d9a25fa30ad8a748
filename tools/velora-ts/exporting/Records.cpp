#include "store/record/Records.h"
#include "exporting/Writers.h"
#include "output/Output.h"

namespace Velora::Ts {

using namespace Store;

void WriteRecords(const Store::Reader& store, const Selection& selection, const Step& step) {
  Records records(store, HighestNumbers(store), [&](std::string_view line) {
    WriteData(line);
    step();
  });
  for (const Run& run : selection.runs) {
    records.WriteRun(run.root);
  }
  if (selection.ofNoRun) {
    records.WriteEventsOfNoRun(selection.ofNoRun->first, selection.ofNoRun->second);
  }
}

}  // namespace Velora::Ts
