#include "page/writer/RunData.h"

#include "page/writer/Against.h"
#include "page/writer/EventBatches.h"
#include "page/writer/ExecutionBatches.h"
#include "page/writer/KeptEvents.h"
#include "page/writer/LogColumns.h"
#include "page/writer/RunHosts.h"
#include "store/reading/Notes.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/reading/Runs.h"
#include "store/record/Seals.h"
#include "store/record/Unsealed.h"
#include "store/schema/Tables.h"
#include "store/values/Json.h"
#include "store/values/StoredText.h"
#include "store/values/StoredTime.h"

#include <utility>

namespace Velora::Page {

using namespace Store;

namespace {

using Sink = std::function<void(std::string_view)>;
using Step = EventBatches::Step;

/// Appends the next item of a list. @return whether there was one.
using NextItem = std::function<bool(std::string& json)>;

class Writer {
 public:
  Writer(const Store::Reader& store, const Run& run, const KeptEvents& kept, const Beside& beside, const Sink& sink,
         const Step& step)
      : store(store),
        run(run),
        kept(kept),
        beside(beside),
        sink(sink),
        step(step),
        start(Microseconds(run.startedAt).value_or(0)) {}

  void Write() {
    json = "{\"form\":1,\"tool\":\"" VELORA_VERSION "\",\"made\":";
    json += std::to_string(Now().time_since_epoch().count() - start) + ',';
    WriteRecord();
    json += ",\"log\":";
    if (beside.log == nullptr) {
      json += "null";
    } else {
      beside.log->AppendJson(json, start);
    }
    AppendUnits();
    WriteAgainst();
    json += '}';
    Flush();
  }

 private:
  /// Writes the members that are the same for the run with which another one is compared.
  void WriteRecord() {
    json += "\"run\":";
    AppendText(json, run.guid);
    json += ",\"start\":";
    AppendText(json, run.startedAt);
    json += ",\"recorded\":" + std::to_string(kept.Recorded()) + ",\"slices\":";
    kept.AppendSlices(json, start);
    json += ",\"seal\":";
    AppendSeal();
    json += ",\"hosts\":";
    AppendHosts(json, store, run, start);

    ExecutionBatches executions(store, run.root, start);
    WriteList("executions", [&](std::string& to) { return executions.AppendBatch(to); });
    EventBatches events(store, run.root, kept, start, step);
    WriteList("events", [&](std::string& to) { return events.AppendBatch(to); });
    json += ",\"shapes\":";
    events.AppendShapes(json);

    WriteNamed("sessions", "SELECT session_id, guid, instrument, host, began_at FROM sessions WHERE session_id = ?1",
               executions.Sessions());
    WriteNamed("versions",
               "SELECT v.version_id, v.name, v.version, v.description, a.name AS activity FROM activity_versions v "
               "JOIN activities a ON a.activity_id = v.activity_id WHERE v.version_id = ?1",
               executions.Versions());
    WriteNamed("configurations",
               "SELECT configuration_id, saved_at, vendor_name, model_name, instrument_class, host_name, option_text, "
               "configuration_text FROM configurations WHERE configuration_id = ?1",
               events.Configurations());
    WriteNotes();
    Flush();
  }

  void WriteAgainst() {
    if (beside.against == nullptr) {
      json += ",\"against\":null";
      return;
    }
    json += ",\"against\":{";
    Flush();
    const Beside nothing;
    Writer(beside.against->Store(), beside.against->Run(), beside.against->Kept(), nothing, sink, step).WriteRecord();
    beside.against->WriteComparison(sink);
    json += '}';
  }

  void AppendSeal() {
    if (store.SchemaVersion() < TableNamed("seals").since) {
      json += "null";
      return;
    }
    const long long origin = StoreOf(run.root);
    const KeyRange ofOrigin = KeysOf(origin).front();
    Rows rows(
        store,
        "SELECT seal_id, sealed_at, seal_hash, up_to FROM seals WHERE run = ?1 AND seal_id > ?2 AND seal_id <= ?3 "
        "ORDER BY seal_id DESC LIMIT 1");
    if (!rows.Ask(run.guid, ofOrigin.after, ofOrigin.upTo).Next()) {
      json += "null";
      return;
    }
    json += "{\"number\":" + std::to_string(NumberOf(rows.Integer(0))) + ",\"sealed_at\":";
    AppendText(json, rows.Text(1));
    json += ",\"hash\":";
    AppendText(json, rows.Text(2));
    const PerKind upTo = FromText(rows.Text(3)).value_or(none);
    json += UnsealedRecords(store, origin).IsIn(run.root, upTo) ? ",\"complete\":false}" : ",\"complete\":true}";
  }

  void WriteNamed(const char* name, const char* question, const std::set<long long>& numbers) {
    Rows rows(store, question);
    auto number = numbers.begin();
    WriteList(name, [&](std::string& to) {
      while (number != numbers.end() && !rows.Ask(*number).Next()) {
        ++number;  // refers to nothing
      }
      if (number == numbers.end()) {
        return false;
      }
      to += "{\"number\":" + std::to_string(*number++);
      for (int column = 1; column < rows.Columns(); ++column) {
        to += std::string(",\"") + rows.Name(column) + "\":";
        AppendText(to, rows.Text(column));
      }
      to += '}';
      return true;
    });
  }

  void WriteNotes() {
    Rows notes = QueryNotes(store);
    notes.Ask(run.root);
    WriteList("notes", [&](std::string& to) {
      if (!notes.Next()) {
        return false;
      }
      const Note note = NoteAt(notes);
      to += "{\"number\":" + std::to_string(note.number) + ",\"at\":";
      const std::optional<long long> at = Microseconds(note.at);
      to += at ? std::to_string(*at - start) : "null";
      for (const auto& [member, text] :
           {std::pair(",\"author\":", &note.author), {",\"kind\":", &note.kind}, {",\"text\":", &note.text}}) {
        to += member;
        AppendText(to, *text);
      }
      to += '}';
      return true;
    });
  }

  void AppendUnits() {
    json += ",\"units\":{";
    const char* separator = "";
    for (const auto& [parameter, unit] : beside.units) {
      json += std::exchange(separator, ",");
      AppendText(json, ToStoredText(parameter));
      json += ':';
      AppendText(json, ToStoredText(unit));
    }
    json += '}';
  }

  void WriteList(const char* name, const NextItem& next) {
    json += std::string(",\"") + name + "\":[";
    bool first = true;
    for (std::string item; next(item); item.clear(), first = false) {
      json += (first ? "" : ",") + item;
      Flush();
    }
    json += ']';
  }

  void Flush() {
    sink(json);
    json.clear();
  }

  const Store::Reader& store;
  const Run& run;
  const KeptEvents& kept;
  const Beside& beside;
  const Sink& sink;
  const Step& step;
  const long long start;
  std::string json;
};

}  // namespace

void WriteRunData(const Store::Reader& store, const Run& run, const KeptEvents& kept, const Beside& beside,
                  const Sink& write, const Step& step) {
  Writer(store, run, kept, beside, write, step).Write();
}

}  // namespace Velora::Page
