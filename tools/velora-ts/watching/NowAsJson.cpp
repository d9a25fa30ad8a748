#include "watching/NowAsJson.h"

#include "store/values/Json.h"

#include <cmath>
#include <utility>

namespace Velora::Ts {

using namespace Store;

namespace {

/// Writes objects and lists, with a comma where one is due.
class Writer {
 public:
  explicit Writer(std::string& json) : json(json) {}

  /// The name of a member, whose value must follow.
  Writer& Name(const char* name) {
    Separate();
    json += '"';
    json.append(name).append("\":");
    first = true;  // before the value, there is no comma
    return *this;
  }
  void Text(const std::string& text) {
    Value([&] { AppendText(json, text); });
  }
  void TextOrNull(const std::string& text) { text.empty() ? Null() : Text(text); }
  void Whole(long long number) {
    Value([&] { AppendInteger(json, number); });
  }
  void Json(const std::string& value) {
    Value([&] { json += value; });
  }
  void Null() { Json("null"); }
  void Truth(bool is) { Json(is ? "true" : "false"); }
  /// A text stands for what is not a number.
  void Number(double number) {
    std::isnan(number) ? Text("NaN") : Value([&] { AppendNumber(json, number); });
  }

  template <typename Members>
  void Object(const Members& members) {
    Enclose('{', '}', members);
  }
  template <typename Items, typename Write>
  void List(const Items& items, const Write& write) {
    Enclose('[', ']', [&] {
      for (const auto& item : items) {
        write(item);
      }
    });
  }

 private:
  void Separate() {
    if (!std::exchange(first, false)) {
      json += ',';
    }
  }
  template <typename Append>
  void Value(const Append& append) {
    Separate();
    append();
  }
  template <typename Content>
  void Enclose(char begin, char end, const Content& content) {
    Separate();
    json += begin;
    first = true;
    content();
    json += end;
    first = false;
  }

  std::string& json;
  bool first = true;
};

class NowWriter {
 public:
  explicit NowWriter(std::string& json) : out(json) {}

  void Write(const Now& now, const std::string& at) {
    out.Object([&] {
      out.Name("sequence").Whole(now.sequence);
      out.Name("at").Text(at);
      out.Name("version").Text(VELORA_VERSION);
      out.Name("title").Null();
      out.Name("stores").List(now.stores, [&](const auto& store) { Write(*store); });
      WriteInstruments(now);
      WriteCounts(now);
      WriteValues(now);
    });
  }

 private:
  void Write(const StoreNow& store) {
    out.Object([&] {
      out.Name("store").Whole(store.number);
      out.Name("name").Text(store.name);
      out.Name("error").TextOrNull(store.error);
      out.Name("more_instruments").Whole(store.moreInstruments);
      out.Name("forwarding");
      store.forwarding ? Write(*store.forwarding) : out.Null();
    });
  }

  void Write(const ForwardingNow& forwarding) {
    using State = ForwardingNow::State;
    out.Object([&] {
      out.Name("to").Text(forwarding.to);
      out.Name("waiting");
      forwarding.waiting ? out.Whole(*forwarding.waiting) : out.Null();
      out.Name("since").TextOrNull(forwarding.since);
      out.Name("state").Text(forwarding.state == State::Working   ? "working"
                             : forwarding.state == State::Failing ? "failing"
                                                                  : "not at work");
      out.Name("error").TextOrNull(forwarding.error);
    });
  }

  void WriteInstruments(const Now& now) {
    out.Name("instruments").List(now.stores, [&](const auto& store) {
      for (const InstrumentNow& instrument : store->instruments) {
        Write(instrument, store->number);
      }
    });
  }

  void Write(const InstrumentNow& instrument, int store) {
    out.Object([&] {
      out.Name("store").Whole(store);
      out.Name("name").Text(instrument.name);
      out.Name("state").Text(instrument.state == RunState::Finished ? "idle" : NameOf(instrument.state));
      out.Name("hosts_alive").Whole(instrument.hostsAlive);
      out.Name("last_recorded_at").TextOrNull(instrument.lastRecordedAt);
      out.Name("runs").List(instrument.runs, [&](const auto& run) { Write(*run); });
      out.Name("more_runs").Whole(instrument.moreRuns);
      out.Name("newest");
      instrument.newest ? Write(*instrument.newest) : out.Null();
      out.Name("forwarder");
      instrument.forwarder ? Write(*instrument.forwarder) : out.Null();
    });
  }

  void Write(const ForwarderNow& forwarder) {
    out.Object([&] {
      out.Name("heard_at").Text(forwarder.heardAt);
      out.Name("waiting").Whole(forwarder.waiting);
      out.Name("since").TextOrNull(forwarder.waitingSince);
      out.Name("connected").Truth(forwarder.isConnected);
      out.Name("silent").Truth(forwarder.isSilent);
    });
  }

  void Write(const RunNow& run) {
    out.Object([&] {
      out.Name("run").Text(run.guid);
      out.Name("node").Text(run.node);
      out.Name("activity").Text(run.activity);
      out.Name("version").Text(run.version);
      out.Name("state").Text(NameOf(run.state));
      out.Name("why").TextOrNull(run.why);
      out.Name("started_at").Text(run.startedAt);
      out.Name("last_recorded_at").TextOrNull(run.lastRecordedAt);
      out.Name("mark").Whole(run.mark);
      out.Name("path").List(run.path, [&](const StepNow& step) { Write(step); });
      out.Name("last_event");
      run.lastEvent ? Write(*run.lastEvent) : out.Null();
      out.Name("events").Whole(run.events);
      out.Name("events_per_minute");
      run.eventsPerMinute ? out.Number(*run.eventsPerMinute) : out.Null();
    });
  }

  void Write(const StepNow& step) {
    out.Object([&] {
      out.Name("execution").Whole(step.execution);
      out.Name("activity").Text(step.activity);
      out.Name("node").Text(step.node);
      out.Name("started_at").Text(step.startedAt);
      out.Name("step");
      step.number ? out.Whole(*step.number) : out.Null();
    });
  }

  void Write(const EventNow& event) {
    out.Object([&] {
      out.Name("name").Text(event.name);
      out.Name("at").Text(event.at);
      out.Name("parameters").List(event.parameters, [&](const ParameterNow& parameter) {
        out.Object([&] {
          out.Name("name").Text(parameter.name);
          out.Name("kind").Text(parameter.kind);
          out.Name("value").Json(parameter.value);
        });
      });
    });
  }

  void WriteCounts(const Now& now) {
    long long running = 0;
    long long stopped = 0;
    long long notKnown = 0;
    for (const auto& store : now.stores) {
      running += store->running;
      stopped += store->stopped;
      notKnown += store->notKnown;
    }
    out.Name("runs_by_state").Object([&] {
      out.Name(NameOf(RunState::Running)).Whole(running);
      out.Name(NameOf(RunState::Stopped)).Whole(stopped);
      out.Name(NameOf(RunState::NotKnown)).Whole(notKnown);
    });
  }

  void WriteValues(const Now& now) {
    out.Name("values").List(now.stores, [&](const auto& store) {
      for (const ValueNow& value : store->values) {
        out.Object([&] {
          out.Name("store").Whole(store->number);
          out.Name("instrument").Text(value.instrument);
          out.Name("parameter").Text(value.parameter);
          out.Name("value").Number(value.value);
          out.Name("at").Text(value.at);
          out.Name("run").TextOrNull(value.run);
        });
      }
    });
  }

  Writer out;
};

}  // namespace

std::string NowAsJson(const Now& now, const std::string& at) {
  std::string json;
  NowWriter(json).Write(now, at);
  return json;
}

}  // namespace Velora::Ts
