#include "verbs/AtFacility.h"

#include "output/Output.h"
#include "output/Progress.h"
#include "store/forwarding/Forwarder.h"
#include "store/reading/Reader.h"
#include "store/transfer/TakenStore.h"
#include "verbs/StoreContent.h"

#include <chrono>
#include <optional>
#include <thread>

namespace Velora::Ts {

using namespace Store;

namespace {

/// Another forwarder can be the one that took what was recorded so far: it lets go when it sees the new file.
Forwarder::Progress SendNext(Forwarder& forwarder) {
  constexpr std::chrono::seconds longest{10};
  const auto end = std::chrono::steady_clock::now() + longest;
  for (;;) {
    try {
      return forwarder.SendNext();
    } catch (const AnotherForwarder&) {
      if (std::chrono::steady_clock::now() > end) {
        throw;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(200));
    }
  }
}

void SendAll(const Store::Database& file, const Store::Database& facility) {
  Forwarder forwarder(file, facility);
  Progress shown("Forwarding rows", 0);
  Forwarder::Progress sent;
  do {
    sent = SendNext(forwarder);
    shown.Add(sent.rows);
  } while (sent.rows > 0 && sent.left.rows > 0);
}

}  // namespace

ExitCode SendAndCompare(const Store::Database& file, const Store::Database& facility) {
  SendAll(file, facility);
  const Reader here(file), there(facility);
  const std::optional<long long> number = NumberIn(there.Sql(), GuidOf(here.Sql()));
  const Content content = ContentOf(here, Keys::All(), number ? ShiftOf(*number) : 0);
  here.ExpectUntouched();
  if (!number || ContentOf(there, Keys::OfStore(*number)) != content) {
    Say("finding: what '" + there.Name() + "' has of '" + here.Name() + "' differs from the file; keep the file");
    return Found;
  }
  long long rows = 0;
  for (const auto& [table, ofTable] : content) {
    rows += ofTable.rows;
  }
  Say("'" + there.Name() + "' has all " + std::to_string(rows) + " rows of '" + here.Name() +
      "', compared value by value");
  return Done;
}

}  // namespace Velora::Ts
