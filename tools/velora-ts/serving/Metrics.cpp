#include "serving/PrometheusText.h"
#include "serving/Route.h"
#include "serving/Served.h"
#include "store/reading/Hosts.h"
#include "store/values/StoredText.h"
#include "store/values/StoredTime.h"
#include "watching/Now.h"
#include "watching/Watch.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr std::chrono::seconds firstLook{2};  // for which a request waits that comes before it

/// The metrics of what was found last; nothing is asked of a store.
class Metrics {
 public:
  explicit Metrics(const Now& now) : now(now) {
    for (const auto& store : now.stores) {
      labelsOfStores.push_back(LabelOf(*store));
    }
  }

  std::string Text() {
    out.Begin("velora_build_info", "The version of velora-ts; always 1.");
    out.Add({{"version", VELORA_VERSION}}, 1);
    AddStores();
    AddForwarding();
    AddInstruments();
    AddForwarders();
    AddValues();
    const double leftOut = static_cast<double>(out.LeftOut());
    out.Begin("velora_left_out_samples", "How many samples are not here, because there are too many.");
    out.Add({}, leftOut);
    return out.Text();
  }

 private:
  using Labels = PrometheusText::Labels;

  /// The name of a store; with its number if there are several of this name.
  std::string LabelOf(const StoreNow& store) const {
    int same = 0;
    for (const auto& one : now.stores) {
      same += one->name == store.name ? 1 : 0;
    }
    return FromStoredText(store.name) + (same > 1 ? " (" + std::to_string(store.number) + ')' : "");
  }

  template <typename Each>
  void ForStores(const Each& each) {
    for (std::size_t at = 0; at < now.stores.size(); ++at) {
      if (now.stores[at]->error.empty()) {
        each(*now.stores[at], labelsOfStores[at]);
      }
    }
  }
  template <typename Each>
  void ForInstruments(const Each& each) {
    ForStores([&](const StoreNow& store, const std::string& label) {
      for (const InstrumentNow& instrument : store.instruments) {
        each(instrument, Labels{{"store", label}, {"instrument", FromStoredText(instrument.name)}});
      }
    });
  }
  void AddTime(const Labels& labels, const std::string& stored) {
    if (const std::optional<long long> time = Microseconds(stored)) {
      out.Add(labels, static_cast<double>(*time) / 1e6);
    }
  }

  void AddStores() {
    out.Begin("velora_store_readable", "Whether the store can be read.");
    for (std::size_t at = 0; at < now.stores.size(); ++at) {
      out.Add({{"store", labelsOfStores[at]}}, now.stores[at]->error.empty() ? 1 : 0);
    }
    out.Begin("velora_runs", "How many runs of the store are in a state, of those that did not finish.");
    ForStores([&](const StoreNow& store, const std::string& label) {
      for (const auto& [state, count] : {std::pair(RunState::Running, store.running),
                                         {RunState::Stopped, store.stopped},
                                         {RunState::NotKnown, store.notKnown}}) {
        out.Add({{"store", label}, {"state", NameOf(state)}}, static_cast<double>(count));
      }
    });
  }

  void AddForwarding() {
    const auto add = [&](const char* name, const char* help, const auto& valueOf) {
      out.Begin(name, help);
      ForStores([&](const StoreNow& store, const std::string& label) {
        if (store.forwarding) {
          if (const std::optional<double> value = valueOf(*store.forwarding)) {
            out.Add({{"store", label}}, *value);
          }
        }
      });
    };
    add("velora_forwarding_waiting_rows", "How many rows of the store wait for forwarding.",
        [](const ForwardingNow& one) { return one.waiting; });
    add("velora_forwarding_behind_seconds", "The age of the oldest row that waits for forwarding; 0 if none waits.",
        [&](const ForwardingNow& one) { return one.since.empty() ? 0 : AgeOf(one.since); });
    add("velora_forwarding_working", "Whether a forwarder is at work and reaches the facility.",
        [](const ForwardingNow& one) { return one.state == ForwardingNow::State::Working ? 1 : 0; });
    add("velora_forwarding_failing", "Whether the facility cannot be reached, or takes nothing.",
        [](const ForwardingNow& one) { return one.state == ForwardingNow::State::Failing ? 1 : 0; });
  }

  void AddInstruments() {
    out.Begin("velora_hosts_alive", "How many hosts of the instrument live, as far as that can be seen here.");
    ForInstruments([&](const InstrumentNow& one, const Labels& labels) { out.Add(labels, one.hostsAlive); });
    out.Begin("velora_instrument_state",
              "1 for the state of the instrument: that of a run that is running, else of the newest run.");
    ForInstruments([&](const InstrumentNow& one, Labels labels) {
      labels.emplace_back();
      for (const RunState state : {RunState::Running, RunState::Stopped, RunState::NotKnown, RunState::Finished}) {
        labels.back() = {"state", state == RunState::Finished ? "idle" : NameOf(state)};
        out.Add(labels, one.state == state ? 1 : 0);
      }
    });
    out.Begin("velora_instrument_stopped",
              "Whether a run of the instrument has stopped and no other began since, also while another host records.");
    ForInstruments(
        [&](const InstrumentNow& one, const Labels& labels) { out.Add(labels, NewStopOf(one) != nullptr ? 1 : 0); });
    out.Begin("velora_last_record_timestamp_seconds", "When something of the instrument was last recorded.");
    ForInstruments([&](const InstrumentNow& one, const Labels& labels) { AddTime(labels, one.lastRecordedAt); });
    out.Begin("velora_last_record_age_seconds", "How long ago that is, by the clock of this computer.");
    ForInstruments([&](const InstrumentNow& one, const Labels& labels) {
      if (const std::optional<double> age = AgeOf(one.lastRecordedAt)) {
        out.Add(labels, *age);
      }
    });
  }

  void AddForwarders() {
    const auto add = [&](const char* name, const char* help, const auto& addOne) {
      out.Begin(name, help);
      ForInstruments([&](const InstrumentNow& one, const Labels& labels) {
        if (one.forwarder) {
          addOne(*one.forwarder, labels);
        }
      });
    };
    add("velora_forwarder_waiting_rows", "How many rows waited at the instrument when its forwarder was last heard.",
        [&](const ForwarderNow& one, const Labels& labels) { out.Add(labels, static_cast<double>(one.waiting)); });
    add("velora_forwarder_heard_timestamp_seconds", "When the forwarder of the instrument was last heard.",
        [&](const ForwarderNow& one, const Labels& labels) { AddTime(labels, one.heardAt); });
    add("velora_forwarder_silent", "Whether the forwarder of the instrument should be heard, but is not.",
        [&](const ForwarderNow& one, const Labels& labels) { out.Add(labels, one.isSilent ? 1 : 0); });
  }

  void AddValues() {
    const auto forValues = [&](const auto& each) {
      ForStores([&](const StoreNow& store, const std::string& label) {
        for (const ValueNow& value : store.values) {
          each(value, Labels{{"store", label},
                             {"instrument", FromStoredText(value.instrument)},
                             {"parameter", FromStoredText(value.parameter)}});
        }
      });
    };
    out.Begin("velora_parameter", "The newest number of a parameter.");
    forValues([&](const ValueNow& value, const Labels& labels) { out.Add(labels, value.value); });
    out.Begin("velora_parameter_timestamp_seconds", "When that was recorded.");
    forValues([&](const ValueNow& value, const Labels& labels) { AddTime(labels, value.at); });
  }

  // The clock of the host can be ahead of this one.
  std::optional<double> AgeOf(const std::string& stored) const {
    const std::optional<double> seconds = SecondsBetween(stored, present);
    return seconds ? std::optional(std::max(*seconds, 0.0)) : std::nullopt;
  }

  const Now& now;
  const std::string present = ToStoredTime(Store::Now());
  std::vector<std::string> labelsOfStores;
  PrometheusText out;
};

Http::Answer Answer(const Served& served, Http::Question& question) {
  question.ExpectNoOthers();
  return {200, "text/plain; version=0.0.4; charset=utf-8", Metrics(*served.watch->WaitForAll(firstLook)).Text()};
}

}  // namespace

extern const Route routeMetrics = {"/metrics", &Answer};

}  // namespace Velora::Ts
