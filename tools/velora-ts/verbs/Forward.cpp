#include "asking/ForwardState.h"
#include "output/Output.h"
#include "output/Progress.h"
#include "output/Times.h"
#include "store/forwarding/Forwarder.h"
#include "store/values/StoredTime.h"
#include "verbs/StoreVerb.h"

#include "store/database/DatabaseError.h"

#include <VeloraSystem/EndRequest.h>
#include <VeloraSystem/FileStamp.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <optional>
#include <string>
#include <utility>

namespace Velora::Ts {

using namespace Store;

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Pause = std::chrono::milliseconds;

constexpr Pause betweenLooks = 200ms;
constexpr Pause longestTrust = 1s;  // in what the system says of the times of a file
constexpr Pause firstPause = 1s;    // after a failure; each further one is twice as long
constexpr Pause longestPause = 30s;
constexpr Pause betweenNotes = 30s;

/// Tells whether hosts can have written to a store since a look at it, without opening it.
class Written {
 public:
  explicit Written(std::string file) : file(std::move(file)) {}

  /// To be called before the store is read.
  void Look() {
    stamps = Stamps();
    looked = Clock::now();
  }
  bool IsDue() const { return !looked || Clock::now() - *looked >= longestTrust || Stamps() != stamps; }

 private:
  using Both = std::array<System::FileStamp, 2>;
  Both Stamps() const { return {System::StampOf(file), System::StampOf(file + "-wal")}; }

  const std::string file;
  Both stamps;
  std::optional<Clock::time_point> looked;
};

/// Keeps what is said of this forwarder, and how much it sent.
class Notes {
 public:
  Notes(const Database& store, const Database& facility) : file(store) { state.facility = NameOf(facility); }

  void Sent(const Forwarder::Progress& sent, const Forwarder& forwarder) {
    rows += sent.rows;
    events += sent.events;
    state.reachedAt = ToStoredTime(Now());
    state.store = forwarder.Guid();
    state.marks = forwarder.Reached();
    state.error.clear();
    Write(!std::exchange(state.failingSince, "").empty());
  }
  void Failed(const std::string& error) {
    const bool isNew = state.failingSince.empty();
    state.error = error;
    state.failingSince = isNew ? ToStoredTime(Now()) : state.failingSince;
    Write(isNew);
  }
  void Ended() {
    state.ended = true;
    Write(true);
  }

  const ForwardState& State() const { return state; }
  /// "12 rows, of these 3 events"
  std::string SentInWords() const {
    return std::to_string(rows) + " rows, of these " + std::to_string(events) + " events";
  }

 private:
  void Write(bool atOnce) {
    if (!atOnce && written && Clock::now() - *written < betweenNotes) {
      return;
    }
    written = Clock::now();
    state.writtenAt = ToStoredTime(Now());
    try {
      file.Write(state);
    } catch (const Error& error) {
      if (!std::exchange(told, true)) {
        Complain(std::string(error.what()) + "; so velora-ts check does not know what this forwarder does");
      }
    }
  }

  const ForwardStateFile file;
  ForwardState state;
  long long rows = 0, events = 0;
  std::optional<Clock::time_point> written;
  bool told = false;  // that the file cannot be written
};

/// Forwards until the process is asked to end. Of each trouble it tells when it begins and when it is over.
class Follower {
 public:
  Follower(const Database& store, const Database& facility)
      : store(NameOf(store)), forwarder(store, facility), notes(store, facility), written(store.where) {}

  /// @throws Refused
  void Run() {
    const System::EndRequest end;
    Complain("forwarding from '" + store + "' to '" + notes.State().facility + "'; Ctrl-C ends it");
    for (Pause pause = 0ms; !end.Await(pause);) {
      pause = again || written.IsDue() ? Send() : betweenLooks;
    }
    notes.Ended();
    Complain("asked to end; sent " + notes.SentInWords());
  }

 private:
  enum class Trouble { None, NoStore, Another, Fails };

  /// Sends a portion. @return how long to wait then.
  Pause Send() {
    written.Look();
    again = true;
    try {
      const Forwarder::Progress sent = forwarder.SendNext();
      again = sent.rows > 0 && sent.left.rows > 0;
      Works(sent.left);
      notes.Sent(sent, forwarder);
      return again ? 0ms : betweenLooks;
    } catch (const Refused& refused) {
      notes.Failed(refused.what());
      notes.Ended();
      throw;
    } catch (const NoStoreYet& reason) {
      Tell(Trouble::NoStore, std::string(reason.what()) + "; waiting for it");
      return longestTrust;
    } catch (const AnotherForwarder& reason) {
      Tell(Trouble::Another, std::string(reason.what()) + "; waiting until it ends");
      return firstPause;
    } catch (const Error& reason) {
      Tell(Trouble::Fails, std::string(reason.what()) + "; trying again until it works, while hosts record");
      notes.Failed(reason.what());
      return std::exchange(pauseOfFailure, std::min(2 * pauseOfFailure, longestPause));
    }
  }

  void Works(const Waiting& left) {
    pauseOfFailure = firstPause;
    if (std::exchange(trouble, Trouble::None) == Trouble::None) {
      return;
    }
    const auto failed = SecondsBetween(notes.State().failingSince, ToStoredTime(Now()));
    Complain("forwarding works" + (failed ? " again, after " + Duration(*failed, false) : "") + "; " +
             std::to_string(left.rows) + " rows wait");
  }
  void Tell(Trouble now, const std::string& words) {
    if (now > trouble) {
      trouble = now;
      Complain(words);
    }
  }

  const std::string store;
  Forwarder forwarder;
  Notes notes;
  Written written;
  bool again = false;  // without a change of the file
  Trouble trouble = Trouble::None;
  Pause pauseOfFailure = firstPause;
};

/// Sends what is there now. @throws Error
void SendOnce(const Database& store, const Database& facility) {
  Forwarder forwarder(store, facility);
  Notes notes(store, facility);
  Progress shown("Forwarding rows", 0);
  try {
    Forwarder::Progress sent;
    do {
      sent = forwarder.SendNext();
      notes.Sent(sent, forwarder);
      shown.Add(sent.rows);
    } while (sent.rows > 0 && sent.left.rows > 0);
  } catch (const AnotherForwarder&) {
    throw;  // the file is about the other one
  } catch (const NoStoreYet&) {
    throw;
  } catch (const Error& reason) {
    notes.Failed(reason.what());
    notes.Ended();
    throw;
  }
  notes.Ended();
  Say("sent from '" + NameOf(store) + "' to '" + NameOf(facility) + "': " + notes.SentInWords());
}

class ForwardVerb : public StoreVerb {
 public:
  explicit ForwardVerb(Options& options) : StoreVerb(options) {
    options.AddFlag("--follow", follow,
                    "Go on until Ctrl-C, or until a service is stopped: send what hosts record within two seconds, and "
                    "try again while the facility cannot be reached");
  }

  ExitCode Execute() override {
    const Store::Database store = Database();
    if (store.kind != Store::Database::Kind::Sqlite) {
      throw NotOffered("'" + NameOf(store) + "' is a store on a server; expected one in a file");
    }
    const std::optional<Store::Database> facility = ReadFacility(Folder());
    if (!facility) {
      throw NotOffered("TSAL.config names no facility; expected <Forward Connection=\"...\"/> in it");
    }
    try {
      if (follow) {
        Follower(store, *facility).Run();
      } else {
        SendOnce(store, *facility);
      }
    } catch (const Refused& reason) {
      Complain(reason.what());
      return Found;
    }
    return Done;
  }

 private:
  bool follow = false;
};

}  // namespace

extern const Registration registeredForward = {
    "forward",
    "Takes what is new in a store in a file to the store of the facility, which TSAL.config names in <Forward "
    "Connection=\"...\"/>. Hosts do not notice it.",
    "forward --config /data/scope-7\nforward --follow", &Make<ForwardVerb>};

}  // namespace Velora::Ts
