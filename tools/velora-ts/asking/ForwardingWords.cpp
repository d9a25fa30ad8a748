#include "asking/ForwardingWords.h"

#include "asking/ForwardState.h"
#include "output/StateWords.h"
#include "output/Times.h"
#include "store/Error.h"
#include "store/database/Cursor.h"
#include "store/database/DatabaseError.h"
#include "store/forwarding/Contacts.h"
#include "store/forwarding/Marks.h"
#include "store/reading/Reader.h"
#include "store/transfer/TakenStore.h"

#include <algorithm>
#include <optional>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr int firstVersion = 3;  // of the schema in which a store has a guid

std::string When(const std::string& stored) { return LocalTime(stored, false) + ", " + Ago(stored); }

std::string RowsInWords(long long rows) { return std::to_string(rows) + (rows == 1 ? " row waits" : " rows wait"); }

/// What one end or the other says: "12 rows wait for 'X', of these 3 events, since ...".
std::string InWords(const Waiting& waiting, const std::string& facility) {
  if (waiting.rows == 0) {
    return "'" + facility + "' has all that is recorded here";
  }
  return RowsInWords(waiting.rows) + " for '" + facility + "', of these " + std::to_string(waiting.events) + " events" +
         (waiting.since.empty() ? "" : "; the oldest is of " + When(waiting.since));
}

/// What the facility knows of a store.
struct AtFacility {
  Marks marks;  ///< Empty if it has nothing.
  std::optional<Contact> contact;
};

Marks MarksIn(const Reader& facility, long long store) {
  Marks marks;
  const auto row = facility.Sql().PrepareShort(MarksQuestion(facility.SchemaVersion(), store));
  row->Next();
  int column = 0;
  for (const Table& table : MarkedTables(facility.SchemaVersion())) {
    marks[table.name] = row->Integer(column++);
  }
  return marks;
}

AtFacility AskFacility(const Database& facility, const std::string& guid) {
  const Reader there(facility);
  AtFacility known;
  if (const auto number = there.SchemaVersion() < firstVersion ? std::nullopt : NumberIn(there.Sql(), guid)) {
    known.marks = MarksIn(there, *number);
  }
  for (const Contact& contact : Contacts(there)) {
    if (contact.guid == guid) {
      known.contact = contact;
    }
  }
  return known;
}

/// Collects the lines about one store and its facility.
class Lines {
 public:
  Lines(const Database& store, const Database& facility) : store(store), facility(facility), name(NameOf(facility)) {}

  std::vector<std::string> All() {
    ReadState();
    try {
      const Reader file(store);
      if (file.SchemaVersion() < firstVersion) {
        return {"forwarding: begins when a host of this version has upgraded the store"};
      }
      Compare(file);
    } catch (const NoStoreYet&) {
      return {"forwarding: to '" + name + "', when the first host has recorded"};
    }
    if (state && !state->failingSince.empty()) {
      Warn("forwarding fails since " + When(state->failingSince) + ": " + state->error);
    }
    return lines;
  }

 private:
  void Add(const std::string& words) { lines.push_back("forwarding: " + words); }
  void Warn(const std::string& words) { lines.push_back("warning: " + words); }

  void ReadState() {
    try {
      state = ForwardStateFile(store).Read();
    } catch (const Error& error) {
      Warn(error.what() + std::string("; it is ignored"));
    }
    if (state && state->facility != name) {
      state.reset();  // TSAL.config named another facility then
    }
  }

  void Compare(const Reader& file) {
    const std::string guid = GuidOf(file.Sql());
    if (state && state->store != guid) {
      state->marks.clear();  // another store had this name then, such as the one before a rotation
    }
    std::optional<AtFacility> there;
    try {
      there = AskFacility(facility, guid);
    } catch (const Error& error) {
      Warn(std::string(error.what()) + "; hosts record all the same");
    }
    there ? SayReached(file, *there) : SayNotReached(file);
  }

  void SayReached(const Reader& file, const AtFacility& there) {
    Add(InWords(WaitingBehind(file, there.marks), name));
    if (there.contact) {
      Add("by the clock of the facility, it last heard of this store at " + When(there.contact->heardAt));
    }
    SayWhetherAtWork(there.contact && there.contact->isConnected);
  }

  void SayNotReached(const Reader& file) {
    if (state && !state->reachedAt.empty()) {
      Add(InWords(WaitingBehind(file, state->marks), name) + "; it was last reached at " + When(state->reachedAt));
    } else {
      Add("no forwarder has reached '" + name + "' yet");
    }
    SayWhetherAtWork(state && state->IsAtWork());
  }

  void SayWhetherAtWork(bool isAtWork) {
    isAtWork ? Add("a forwarder is at work")
             : Warn("no forwarder is at work; velora-ts forward --follow would take to '" + name + "' what waits");
  }

  const Database& store;
  const Database& facility;
  const std::string name;
  std::optional<ForwardState> state;
  std::vector<std::string> lines;
};

/// "3 rows waited there then, since ..."
std::string WaitedInWords(const Contact& contact) {
  if (contact.waiting == 0) {
    return "nothing waited there then";
  }
  return std::to_string(contact.waiting) + (contact.waiting == 1 ? " row" : " rows") + " waited there then" +
         (contact.waitingSince.empty() ? "" : ", since " + LocalTime(contact.waitingSince, false));
}

std::string HeardInWords(const Contact& contact) {
  return "last heard at " + LocalTime(contact.heardAt, false) + ", " + Duration(std::max(contact.silence, 0.0), false) +
         " ago; " + WaitedInWords(contact);
}

}  // namespace

std::vector<std::string> ForwardingInWords(const Database& store, const Database& facility) {
  return Lines(store, facility).All();
}

std::vector<std::string> ContactsInWords(const Reader& store) {
  std::vector<std::string> lines;
  for (const Contact& contact : Contacts(store)) {
    lines.push_back((contact.IsSilent() ? "warning: " : "forwarded: ") + ("instrument '" + contact.instrument) + "', " +
                    (contact.isConnected ? "whose forwarder is connected, " : "") + HeardInWords(contact));
  }
  return lines;
}

std::vector<std::string> SilenceInWords(const Reader& store, const std::string& instrument) {
  std::vector<std::string> lines;
  for (const Contact& contact : Contacts(store)) {
    if (contact.IsSilent() && (instrument.empty() || contact.instrument == instrument)) {
      lines.push_back("instrument '" + contact.instrument + "' is silent: its forwarder was " + HeardInWords(contact));
    }
  }
  return lines;
}

}  // namespace Velora::Ts
