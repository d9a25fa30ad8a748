#include "watching/Forwarding.h"

#include "asking/ForwardState.h"
#include "store/Error.h"
#include "store/forwarding/Contacts.h"
#include "store/forwarding/Marks.h"
#include "store/reading/Reader.h"
#include "store/transfer/TakenStore.h"
#include "watching/Shortened.h"

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr int firstVersion = 3;  // of the schema in which a store has a guid

}  // namespace

std::optional<ForwardingNow> ForwardingOf(const Store::Reader& store, const Database& facility) {
  using State = ForwardingNow::State;
  ForwardingNow forwarding;
  forwarding.to = Shortened(NameOf(facility));
  std::optional<ForwardState> noted;
  try {
    noted = ForwardStateFile(store.Where()).Read();
  } catch (const Error& error) {
    forwarding.error = Shortened(error.what());
  }
  if (!noted || noted->facility != NameOf(facility) || store.SchemaVersion() < firstVersion) {
    return forwarding;
  }
  // Another store had this name then, such as the one before a rotation.
  const Marks marks = noted->store == GuidOf(store.Sql()) ? noted->marks : Marks();
  const Waiting waiting = WaitingBehind(store, marks);
  forwarding.waiting = waiting.rows;
  forwarding.since = Shortened(waiting.since);
  forwarding.error = Shortened(noted->error);
  forwarding.state = !noted->IsAtWork()            ? State::NotAtWork
                     : noted->failingSince.empty() ? State::Working
                                                   : State::Failing;
  return forwarding;
}

std::map<std::string, ForwarderNow> ForwardersOf(const Store::Reader& store) {
  std::map<std::string, ForwarderNow> forwarders;
  for (const Contact& contact : Contacts(store)) {
    ForwarderNow& known = forwarders[Shortened(contact.instrument)];
    if (contact.heardAt >= known.heardAt) {
      known = {Shortened(contact.heardAt), contact.waiting, Shortened(contact.waitingSince), contact.isConnected,
               contact.IsSilent()};
    }
  }
  return forwarders;
}

}  // namespace Velora::Ts
