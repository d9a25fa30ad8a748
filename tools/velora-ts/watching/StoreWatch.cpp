#include "watching/StoreWatch.h"

#include "asking/ListedRuns.h"
#include "store/Error.h"
#include "store/database/PostgreSqlConnection.h"
#include "store/reading/Rows.h"
#include "store/reading/Unfinished.h"
#include "store/values/StoredText.h"
#include "watching/Shortened.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr std::chrono::seconds longestLook{10};  // before a server is taken for silent
constexpr std::chrono::seconds betweenForwarding{2};
constexpr std::size_t mostSessionsKnown = 10'000;
constexpr int failuresToSay = 2;  // one can be that of a store that is being made, replaced or upgraded

/// A query for the instruments of sessions, each with as much of its name as counts.
constexpr const char* instrumentOfSession = "SELECT substr(instrument, 1, 405) FROM sessions WHERE session_id = ?1";

}  // namespace

StoreWatch::StoreWatch(const WatchedStore& watched, const std::vector<std::string>& values)
    : watched(watched), files(watched.settings.database), values(values) {
  shown.isAwaited = true;
  shown.number = watched.number;
  shown.name = Shortened(NameOf(watched.settings.database));
}

StoreNow StoreWatch::Look() {
  if (!CanHaveChanged()) {
    return shown;
  }
  try {
    files.Look();
    Read();
    failures = 0;
  } catch (const NoStoreYet& error) {
    Forget();
    shown.forwarding.reset();
    shown.instruments.clear();
    ShowError(error.what());
  } catch (const std::exception& error) {
    Forget();
    if (++failures >= failuresToSay || shown.isAwaited) {
      ShowError(error.what());
    }
  }
  shown.isAwaited = false;
  return shown;
}

// A log that a host left is read from its beginning each time, so a store that nobody writes is not opened. A host that
// ends writes nothing, so as long as one can live, its lock is asked for.
bool StoreWatch::CanHaveChanged() const {
  const bool canLive = shown.running + shown.notKnown > 0 || !hosts.Sessions().empty();
  const bool isForwardingDue = (facility || !forwarders.empty()) && Clock::now() - askedForwarding >= betweenForwarding;
  return !heads || canLive || isForwardingDue || !files.AreUntouched();
}

// A host that has ended can have recorded something after the state that is read. So that is read again, once.
void StoreWatch::Read() {
  Heads now;
  bool again = false;
  do {
    if (reader) {
      reader->Renew();
    } else {
      reader = std::make_unique<Reader>(watched.settings.database);
    }
    if (reader->Where().kind == Database::Kind::PostgreSql) {
      static_cast<PostgreSqlConnection&>(reader->Sql()).LimitTo(Clock::now() + longestLook);
    }
    now = HeadsOf(*reader, heads.value_or(Heads()));
    again = recorded.IsDueAgain(*reader, now);
  } while (hosts.Look(*reader, now, again));
  if (!heads || !Follows(now, *heads)) {
    Begin(now);
  } else if (again || now != *heads) {
    ReadInstruments(now);
    TakeNew(recorded.In(*reader, now));
  }
  heads = now;
  ReadForwarding();
  Show();
  reader->ExpectUntouched();
  reader->Release();
}

void StoreWatch::Begin(const Heads& now) {
  instruments.clear();
  instrumentOf.clear();
  places.clear();
  tracked.clear();
  ForgetStates();
  hosts.ChangeAll();
  recorded.Begin(*reader, now);
  values.Begin(*reader, now);
  ReadInstruments(now);
  facility = watched.settings.database.kind == Database::Kind::Sqlite ? ReadFacility(watched.folder) : std::nullopt;
  askedForwarding = {};
}

/// Finds instruments that are not known yet, and the newest run of each.
void StoreWatch::ReadInstruments(const Heads& now) {
  const auto haveSameSessions = [](const Head& one, const Head& other) { return one.sessions == other.sessions; };
  if (heads && !instruments.empty() &&
      std::equal(now.stores.begin(), now.stores.end(), heads->stores.begin(), heads->stores.end(), haveSameSessions)) {
    return;
  }
  std::vector<std::string> names;
  for (Rows rows(*reader, "SELECT DISTINCT instrument FROM sessions ORDER BY instrument"); rows.Next();) {
    names.emplace_back(rows.Text(0));
  }
  if (names.empty()) {
    names.push_back(ToStoredText(watched.settings.instrument));
  }
  shown.moreInstruments = static_cast<long long>(names.size() - std::min(names.size(), mostInstrumentsNow));
  names.resize(std::min(names.size(), mostInstrumentsNow));
  std::map<std::string, std::string> recordedAt = NewestEvents(now);
  for (const std::string& name : names) {
    const auto [instrument, isNew] = instruments.try_emplace(Shortened(name));
    if (!isNew) {
      continue;
    }
    std::string& at = recordedAt[instrument->first];
    RunFilter filter;
    filter.instrument = FromStoredText(name);
    filter.limit = 1;
    if (ListedRuns runs(*reader, filter, {}); runs.Next()) {
      instrument->second.newest = runs.Place().key;
      at = std::max(at, Shortened(LastRecorded(*reader, RunOf(*reader, *instrument->second.newest))));
    }
    instrument->second.lastRecordedAt = lastSeen[instrument->first].Of(at);
  }
}

/// When the newest event of each store was recorded, which can be outside every run: by instrument.
std::map<std::string, std::string> StoreWatch::NewestEvents(const Heads& now) {
  std::map<std::string, std::string> newest;
  Rows event(*reader, "SELECT session_id, substr(at, 1, 40) FROM events WHERE event_id = ?1");
  for (const Head& head : now.stores) {
    if (event.Ask(head.events).Next()) {
      std::string& at = newest[InstrumentOf(event.Integer(0))];
      at = std::max(at, std::string(event.Text(1)));
    }
  }
  return newest;
}

void StoreWatch::TakeNew(const NewRows& rows) {
  for (const KeyRange& keys : rows.events) {
    values.Take(*reader, keys);
  }
  for (const auto& [session, at] : rows.sessions) {
    const auto instrument = instruments.find(InstrumentOf(session));
    if (instrument != instruments.end()) {
      std::string& lastRecordedAt = instrument->second.lastRecordedAt;
      lastRecordedAt = std::max(lastRecordedAt, lastSeen[instrument->first].Of(at));
    }
  }
  for (const auto& [root, found] : rows.runs) {
    if (found.isNew) {
      const Place& place = PlaceOf(root);
      const auto instrument = instruments.find(place.instrument);
      if (instrument != instruments.end()) {
        std::optional<long long>& newest = instrument->second.newest;
        newest = newest && PlaceOf(*newest).startedAt > place.startedAt ? newest : root;
      }
    }
    if (const auto run = tracked.find(root); run != tracked.end()) {
      run->second.Take(*reader, found);
    }
  }
}

void StoreWatch::ReadForwarding() {
  if (Clock::now() - askedForwarding < betweenForwarding) {
    return;
  }
  askedForwarding = Clock::now();
  shown.forwarding = facility ? ForwardingOf(*reader, *facility) : std::nullopt;
  if (shown.forwarding) {
    shown.forwarding->since = waitingSeen.Of(shown.forwarding->since);
  }
  forwarders = ForwardersOf(*reader);
}

const std::string& StoreWatch::InstrumentOf(long long session) {
  if (instrumentOf.size() > mostSessionsKnown) {
    instrumentOf.clear();
  }
  const auto [known, isNew] = instrumentOf.try_emplace(session);
  if (isNew) {
    Rows rows(*reader, instrumentOfSession);
    known->second = rows.Ask(session).Next() ? Shortened(rows.Text(0)) : "";
  }
  return known->second;
}

const StoreWatch::Place& StoreWatch::PlaceOf(long long root) {
  const auto [known, isNew] = places.try_emplace(root);
  if (isNew) {
    Rows rows(*reader, "SELECT session_id, substr(started_at, 1, 40) FROM executions WHERE execution_id = ?1");
    if (rows.Ask(root).Next()) {
      known->second = {InstrumentOf(rows.Integer(0)), std::string(rows.Text(1))};
    }
  }
  return known->second;
}

void StoreWatch::Show() {
  shown.error.clear();
  TakeStates();
  ShowRuns();
  for (const long long session : hosts.Sessions()) {
    const std::string& name = InstrumentOf(session);
    for (InstrumentNow& instrument : shown.instruments) {
      instrument.hostsAlive += instrument.name == name ? 1 : 0;
    }
  }
  shown.values = values.Shown();
}

void StoreWatch::TakeStates() {
  const std::set<long long> changed = hosts.TakeChanged();
  if (NotesRunning(*reader)) {
    for (const long long root : changed) {
      TakeState(root, hosts.Of(root));
    }
    return;
  }
  ForgetStates();
  Hosts known(*reader);
  for (const auto& [name, instrument] : instruments) {  // of each, only the newest run is asked
    if (instrument.newest) {
      TakeState(*instrument.newest, known.Of(RunOf(*reader, *instrument.newest)));
    }
  }
}

void StoreWatch::TakeState(long long root, const KnownState& state) {
  const Place place = PlaceOf(root);
  Unfinished& ofInstrument = unfinished[place.instrument];
  if (const auto before = states.find(root); before != states.end()) {
    --*CountOf(before->second.state);
    ofInstrument.running -= before->second.state == RunState::Running ? 1 : 0;
    ofInstrument.runs.erase({place.startedAt, root});
    states.erase(before);
  }
  if (state.state == RunState::Finished) {
    places.erase(root);
    return;
  }
  states[root] = state;
  ++*CountOf(state.state);
  ofInstrument.running += state.state == RunState::Running ? 1 : 0;
  ofInstrument.runs.insert({place.startedAt, root});
}

long long* StoreWatch::CountOf(RunState state) {
  return state == RunState::Running ? &counts.running : state == RunState::Stopped ? &counts.stopped : &counts.notKnown;
}

void StoreWatch::ForgetStates() {
  states.clear();
  unfinished.clear();
  counts = {};
}

void StoreWatch::ShowRuns() {
  shown.running = counts.running;
  shown.stopped = counts.stopped;
  shown.notKnown = counts.notKnown;
  shown.instruments.clear();
  std::set<long long> kept;
  for (const auto& [name, instrument] : instruments) {
    InstrumentNow now;
    now.name = name;
    now.lastRecordedAt = instrument.lastRecordedAt;
    const Unfinished& ofInstrument = unfinished[name];
    for (auto run = ofInstrument.runs.rbegin(); run != ofInstrument.runs.rend() && now.runs.size() < mostRunsNow;
         ++run) {
      now.runs.push_back(Track(run->second));
      kept.insert(run->second);
    }
    now.moreRuns = static_cast<long long>(ofInstrument.runs.size() - now.runs.size());
    if (instrument.newest) {
      now.newest = Track(*instrument.newest);
      kept.insert(*instrument.newest);
    }
    now.state = ofInstrument.running > 0 ? RunState::Running : now.newest ? now.newest->state : RunState::Finished;
    if (const auto forwarder = forwarders.find(name); forwarder != forwarders.end()) {
      now.forwarder = forwarder->second;
    }
    shown.instruments.push_back(std::move(now));
  }
  const auto isGone = [&kept](const auto& run) { return kept.count(run.first) == 0; };
  std::erase_if(tracked, isGone);
  std::erase_if(lastSeenOf, isGone);
  std::erase_if(lastSeen, [this](const auto& one) { return instruments.count(one.first) == 0; });
  if (places.size() > states.size() + kept.size()) {
    std::erase_if(places, [&](const auto& place) { return kept.count(place.first) + states.count(place.first) == 0; });
  }
}

std::shared_ptr<const RunNow> StoreWatch::Track(long long root) {
  const auto known = states.find(root);
  const KnownState state = known == states.end() ? KnownState() : known->second;
  auto run = tracked.find(root);
  if (run == tracked.end()) {
    run = tracked.try_emplace(root, *reader, root, state, lastSeenOf[root]).first;
  }
  run->second.Take(*reader, state);
  return run->second.Shown();
}

void StoreWatch::Forget() {
  reader.reset();
  heads.reset();
  hosts = {};
}

/// What was known stays, but nothing is said to run that nobody can see.
void StoreWatch::ShowError(const std::string& error) {
  shown.error = Shortened(error);
  const auto doubted = [&](const std::shared_ptr<const RunNow>& run) {
    if (!run || run->state != RunState::Running) {
      return run;
    }
    RunNow doubtful = *run;
    doubtful.state = RunState::NotKnown;
    doubtful.why = shown.error;
    return std::make_shared<const RunNow>(std::move(doubtful));
  };
  for (InstrumentNow& instrument : shown.instruments) {
    instrument.hostsAlive = 0;
    instrument.state = instrument.state == RunState::Running ? RunState::NotKnown : instrument.state;
    std::transform(instrument.runs.begin(), instrument.runs.end(), instrument.runs.begin(), doubted);
    instrument.newest = doubted(instrument.newest);
  }
  shown.notKnown += std::exchange(shown.running, 0);
}

}  // namespace Velora::Ts
