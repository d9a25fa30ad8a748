// When conditions begin and end, and what is said of them.

#include "watching/Alerts.h"

#include "asking/RangeArgument.h"
#include "asking/UsageError.h"
#include "watching/AlertCalls.h"
#include "watching/AlertConditions.h"
#include "watching/Now.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace Velora;
using namespace Velora::Ts;
using namespace std::string_literals;
using namespace std::chrono_literals;
using Holds = AlertCondition::Holds;

AlertCondition Of(AlertKind kind, Holds holds, bool hasLasted, std::size_t look) {
  AlertCondition condition;
  condition.subject = {kind, 1, kind == AlertKind::Stopped ? "Scope 7" : "", ""};
  condition.holds = holds;
  condition.hasLasted = hasLasted;
  condition.since = std::to_string(look);
  return condition;
}

// Looks at each second: '!' it holds, 'L' it holds for long, '.' it does not, 'o' it is not known, ' ' it is left out,
// 'x' the store cannot be read, '?' it was not looked at. What comes of it: 'b' begins, 'e' ends; in capitals for the
// store.
std::string Told(const std::string& looks, Alerts::AtStart atStart) {
  Alerts alerts(3s, atStart);
  std::string told;
  for (std::size_t look = 0; look < looks.size(); ++look) {
    const char at = looks[look];
    std::vector<AlertCondition> conditions;
    if (at != '?') {
      conditions.push_back(Of(AlertKind::Unreadable, at == 'x' ? Holds::Yes : Holds::No, false, look));
    }
    if (at != 'x' && at != ' ' && at != '?') {
      const Holds holds = at == '.' ? Holds::No : at == 'o' ? Holds::NotKnown : Holds::Yes;
      conditions.push_back(Of(AlertKind::Stopped, holds, at == 'L', look));
    }
    std::string signs;
    for (const Alert& alert : alerts.Look(conditions, Alerts::Clock::time_point(std::chrono::seconds(look)))) {
      const bool isOfStore = alert.condition.subject.kind == AlertKind::Unreadable;
      signs += isOfStore ? (alert.begins ? "B" : "E") : (alert.begins ? "b" : "e");
      signs += alert.condition.since;
    }
    told += signs.empty() ? "-" : signs;
  }
  return told;
}

TEST(Alerts, BeginAndEndOnce) {
  static const struct {
    const char *what, *looks, *told;  // the number is the look since when it holds
  } rows[] = {
      {"a stop that lasts", "..!!!!!!", "-----b2--"},
      {"a restart within the time", "!!!....!!.!.!!!..", "-----------------"},
      {"a restart after it", "!!!!!.....!!!!!", "---b0----e0----b10-"},
      {"flickers after it has begun", "!!!!!..!.!..!!..!!", "---b0--------------"},
      {"then ends", "!!!!..!...!....", "---b0----------e0"},
      {"not known meanwhile", "!!!!oooooooo!!!", "---b0-----------"},
      {"begins while it is not known", "!oo!", "---b0"},
      {"never known", "ooooooooo", "---------"},
      {"has lasted", ".L......", "-b1---e1--"},
      {"is left out", "!!!!     ", "---b0---e0-"},
      {"the store cannot be read for a moment", "!!!!xx!!", "---b0----"},
      {"or for long", "!!!!xxxxxx!!!!", "---b0---B4-----E4"},
      {"and it stopped meanwhile", "..xxxx.!!!!", "-----B2---E2b7"},
  };
  for (const auto& [what, looks, told] : rows) {
    EXPECT_EQ(Told(looks, Alerts::AtStart::Tell), told) << what;
  }
}

TEST(Alerts, OfTheStartCanBeLeftOut) {
  static const struct {
    const char *what, *looks, *told;
  } rows[] = {
      {"stopped before", "!!!!!!", "------"},
      {"and ends", "!!!!!......", "-----------"},
      {"and stops again", "!!....!!!!", "---------b6"},
      {"stops later", ".!!!!", "----b1"},
      {"long before", "LLLL", "----"},
      {"the store could not be read", "xxxxxx!!!!!", "-----------"},
      {"and cannot again", "xx....xxxx", "---------B6"},
      {"and was looked at late", "??xxxxxx!!!!!", "-------------"},
      {"a flicker of the start", "!!..!!..!!!!!", "-------------"},
  };
  for (const auto& [what, looks, told] : rows) {
    EXPECT_EQ(Told(looks, Alerts::AtStart::OnlyNew), told) << what;
  }
}

TEST(RangeArgument, TakesOneLimitOrTwo) {
  static const struct {
    const char *given, *parameter;
    std::vector<double> inside, outside;
  } rows[] = {
      {"Defocus=-6..-3", "Defocus", {-6, -4.5, -3}, {-6.001, -2.99, 4, NAN, INFINITY}},
      {"Dose=..40", "Dose", {40, 0, -INFINITY}, {40.5, NAN}},
      {"Dose=0..", "Dose", {0, 1e9, INFINITY}, {-1e-9, NAN}},
      {"a=b=.5..1.5", "a=b", {0.5, 1}, {0.4}},
      {"x=+1e2..1e3", "x", {100}, {99}},
      {"x..y=1..1", "x..y", {1}, {1.1}},
  };
  for (const auto& row : rows) {
    const ExpectedRange range = RangeArgument("--outside", row.given);
    EXPECT_EQ(range.parameter, row.parameter) << row.given;
    for (const double number : row.inside) {
      EXPECT_TRUE(range.Contains(number)) << row.given << ": " << number;
    }
    for (const double number : row.outside) {
      EXPECT_FALSE(range.Contains(number)) << row.given << ": " << number;
    }
  }
  for (const char* const given :
       {"", "Defocus", "=1..2", "Defocus=", "Defocus=..", "Defocus=3", "Defocus=3..2", "Defocus=a..b",
        "Defocus=1..2..3", "Defocus=nan..", "Defocus=1.5", "Defocus=1 .. 2"}) {
    EXPECT_THROW(RangeArgument("--outside", given), UsageError) << given;
  }
}

constexpr const char* present = "2026-11-26T04:00:00.000000Z";
constexpr const char* before = "2026-11-26T03:50:00.000000Z";  // ten minutes ago

std::shared_ptr<const RunNow> RunThatIs(Store::RunState state) {
  RunNow run;
  run.guid = "3f2a9c01-0000-4000-8000-000000000001";
  run.node = "night 3";
  run.state = state;
  run.lastRecordedAt = before;
  run.path.resize(2);
  run.path.back().node = "hole 11";
  return std::make_shared<const RunNow>(run);
}

InstrumentNow Instrument(const std::string& name, Store::RunState state) {
  InstrumentNow instrument;
  instrument.name = name;
  instrument.state = state;
  instrument.lastRecordedAt = before;
  instrument.newest = RunThatIs(state);
  if (state != Store::RunState::Finished) {
    instrument.runs.push_back(instrument.newest);
  }
  return instrument;
}

/// What is said of the conditions, by what is wanted.
std::map<std::string, std::string> Said(const StoreNow& store, const WantedAlerts& wanted) {
  Now now;
  now.stores.push_back(std::make_shared<const StoreNow>(store));
  std::map<std::string, std::string> said;
  for (const AlertCondition& condition : ConditionsOf(now, wanted, Store::FromStoredTime(present))) {
    const char holds = condition.holds == Holds::Yes ? '+' : condition.holds == Holds::No ? '-' : '?';
    const AlertSubject& subject = condition.subject;
    said[NameOf(subject.kind) + (' ' + subject.instrument) + subject.range] = holds + InWords({true, condition});
  }
  return said;
}

TEST(AlertConditions, AreOfWhatRuns) {
  static const struct {
    Store::RunState state;
    const char *stopped, *silentFor10, *silentFor11;
    std::map<double, std::string> outside;
  } rows[] = {
      {Store::RunState::Running,
       "-Scope 7 is no longer stopped: run 3f2a9c01 'night 3' is running",
       "+Scope 7 has recorded nothing since ",
       "-Scope 7 is no longer silent",
       {{-7, "+Defocus of Scope 7 is -7; expected -6..-3"}, {-4, "-Defocus of Scope 7 is -4, again in -6..-3"}}},
      {Store::RunState::Stopped,
       "+Scope 7 has stopped: run 3f2a9c01 'night 3' in 'hole 11' last recorded at ",
       "-",
       "-",
       {{-7, "-the run that recorded Defocus of Scope 7 has ended"}}},
      {Store::RunState::NotKnown,
       "?",
       "+Scope 7 has recorded nothing since ",
       "-",
       {{NAN, "+Defocus of Scope 7 is nan; expected -6..-3"}}},
      {Store::RunState::Finished, "-Scope 7 is no longer stopped", "-", "-", {{-7, "-the run"}}},
  };
  for (const auto& row : rows) {
    for (const auto& [value, words] : row.outside) {
      StoreNow store;
      store.error.clear();
      store.instruments.push_back(Instrument("Scope 7", row.state));
      store.values.push_back({"Scope 7", "Defocus", before, value, RunThatIs(row.state)->guid});
      WantedAlerts wanted{true, 10min, 1h, {RangeArgument("", "Defocus=-6..-3"), RangeArgument("", "Dose=..40")}};
      auto said = Said(store, wanted);
      EXPECT_EQ(said.size(), 4U);
      const auto begins = [&, value = value](const char* name, const std::string& expected) {
        EXPECT_EQ(said[name].substr(0, expected.size()), expected) << static_cast<int>(row.state) << ' ' << value;
      };
      begins("stopped Scope 7", row.stopped);
      begins("silent Scope 7", row.silentFor10);
      begins("outside Scope 7Defocus=-6..-3", words);
      wanted = {false, 11min, {}, {}};
      said = Said(store, wanted);
      EXPECT_EQ(said.size(), 2U);
      begins("silent Scope 7", row.silentFor11);
    }
  }
}

TEST(AlertConditions, AreOfWhatStoppedBesideWhatRuns) {
  static const struct {
    const char *what, *newestStarted;
    char stopped;
  } rows[] = {{"another host records", "2026-11-26T03:00:00.000000Z", '+'},
              {"a new run began since", "2026-11-26T03:55:00.000000Z", '-'}};
  for (const auto& [what, newestStarted, stopped] : rows) {
    InstrumentNow instrument = Instrument("Scope 7", Store::RunState::Running);
    RunNow newest = *instrument.newest;
    newest.root = 2;
    newest.startedAt = newestStarted;
    instrument.newest = std::make_shared<const RunNow>(newest);
    instrument.runs = {instrument.newest, RunThatIs(Store::RunState::Stopped)};
    StoreNow store;
    store.error.clear();
    store.instruments = {instrument};
    EXPECT_EQ(Said(store, {true, {}, {}, {}})["stopped Scope 7"][0], stopped) << what;
  }
}

TEST(AlertConditions, AreNoneOfAStoreThatWasNotLookedAtYet) {
  StoreNow store;
  store.isAwaited = true;
  EXPECT_EQ(Said(store, {true, 1s, 1s, {}}).size(), 0U);
}

TEST(AlertConditions, AreOfForwardingAndOfTheStore) {
  StoreNow store;
  store.name = "ts.db";
  store.error.clear();
  store.forwarding = {"facility", 12, before, ForwardingNow::State::Failing, "no route to it"};
  store.instruments.push_back(Instrument("Veldmar 3", Store::RunState::Finished));
  store.instruments.front().forwarder = {before, 3, before, false, false};
  const auto isBehind = [&](std::chrono::seconds time) {
    std::string holds;
    for (const auto& [name, words] : Said(store, {false, {}, time, {}})) {
      holds += words[0];
    }
    return holds;
  };
  EXPECT_EQ(isBehind(600s), "++-");
  EXPECT_EQ(isBehind(601s), "---");
  EXPECT_EQ(Said(store, {false, {}, 600s, {}})["behind "].substr(0, 70),
            "+forwarding from store 'ts.db' to 'facility' is behind: 12 rows wait, ");
  store.forwarding->since.clear();
  store.instruments.front().forwarder = {before, 0, "", false, true};
  EXPECT_EQ(isBehind(600s), "-+-");
  EXPECT_EQ(isBehind(601s), "---");
  store.error = "the server is away";
  EXPECT_EQ(Said(store, {true, 1s, 1s, {}}),
            (std::map<std::string, std::string>{{"unreadable ", "+store 'ts.db' cannot be read: the server is away"}}));
}

TEST(AlertCalls, GetNothingThatSteers) {
  Alert alert;
  alert.condition.subject.instrument = "\\x53006370ff";  // a zero byte, and one that is no character
  alert.condition.node = "one\ntwo\x1B[2J\u202E";
  alert.condition.value = std::string(100000, 'x');
  alert.condition.words = "a\0b\r\xFF"s + std::string(1000000, 'y');
  auto variables = VariablesOf(alert);
  EXPECT_EQ(variables["VELORA_INSTRUMENT"], "S\uFFFDcp\uFFFD");
  EXPECT_EQ(variables["VELORA_NODE"], "one\u240Atwo\u241B[2J\uFFFD");
  EXPECT_EQ(variables["VELORA_VALUE"].substr(195), "xxxx\u2026");
  EXPECT_EQ(variables["VELORA_TEXT"].substr(0, 12), "a\u2400b\u240D\uFFFDy");
  EXPECT_LT(variables["VELORA_TEXT"].size(), 600U);
}

}  // namespace
