#pragma once

#include <gtest/gtest.h>
#include <velora_ts.h>

#include <chrono>
#include <functional>
#include <list>
#include <map>
#include <string>

/// The tables of a host: a simulated TS, a logging object and a logger. Each callback says in the journal what it got,
/// then the hook can act or let it fail, then it answers. Each table has a context of its own, which must not be called
/// after its release, and not be released during a call.
class HostSide {
 public:
  using Status = velora_ts_status;

  velora_ts_gateway Gateway();
  velora_ts_own_logging Logging();
  velora_ts_logger Logger();

  std::string journal;
  /// Gets the entry in the journal and the answer; null if the callback has none.
  std::function<Status(const std::string& entry, velora_ts_answer* answer)> hook;
  bool present = true, connectable = true;

  /// Puts a table in place with its function.
  template <typename Table>
  static Status Install(Status (*set)(const Table*), const Table& table) {
    const Status status = set(&table);
    Of(table.context).installed += status == VELORA_TS_OK ? 1 : 0;
    return status;
  }
  /// Expects that what was put in place, and nothing else, was released once.
  void ExpectReleased() const {
    for (const Context& context : contexts) {
      EXPECT_EQ(context.released, context.installed);
    }
  }

 private:
  struct Inside {
    explicit Inside(int& count) : calls(count) { ++calls; }
    Inside(const Inside&) = delete;
    Inside& operator=(const Inside&) = delete;
    ~Inside() { --calls; }
    int& calls;
  };
  struct Context {
    HostSide& side;
    int inside = 0, installed = 0, released = 0;

    template <typename Answer>
    Status Called(const std::string& entry, velora_ts_answer* answer, const Answer& give) {
      EXPECT_EQ(released, 0) << entry;
      const Inside call(inside);
      side.journal += entry + '\n';
      const Status status = side.hook ? side.hook(entry, answer) : VELORA_TS_OK;
      return status == VELORA_TS_OK ? give() : status;
    }
    Status Called(const std::string& entry) {
      return Called(entry, nullptr, [] { return VELORA_TS_OK; });
    }
    void Release(const char* table) {
      EXPECT_EQ(inside, 0) << table;
      Called(std::string("release ") + table);
      ++released;
    }
  };
  static Context& Of(void* context) { return *static_cast<Context*>(context); }

  static std::string Shown(const char* data, std::size_t size) {
    if (data == nullptr) {
      return size == 0 ? "null" : "a size without a text";
    }
    EXPECT_EQ(data[size], '\0');
    return "'" + std::string(data, size) + "'";
  }
  static std::string Shown(const velora_ts_text& text) { return Shown(text.data, text.size); }
  static std::string Shown(const velora_ts_version_of_activity& version) {
    return Shown(version.guid) + Shown(version.name) + Shown(version.version) + Shown(version.description);
  }
  static std::string Shown(std::int64_t time) {
    const auto now = std::chrono::system_clock::now().time_since_epoch() / std::chrono::microseconds(1);
    return time == VELORA_TS_NO_TIME ? "no time" : time > now - 60'000'000 && time <= now ? "now" : "another time";
  }
  static std::string Shown(const velora_ts_execution& execution) {
    return Shown(execution.guid) + " under " + Shown(execution.parent) + " of " + Shown(execution.version) + " at " +
           Shown(execution.node) + ": " + Shown(execution.description) + " kind " + std::to_string(execution.kind) +
           " status " + std::to_string(execution.status) + " since " + Shown(execution.time);
  }
  static std::string Shown(const velora_ts_parameter& parameter) {
    return Shown(parameter.name) + " kind " + std::to_string(parameter.kind) + ": " +
           std::to_string(parameter.integer) + ' ' + testing::PrintToString(parameter.real) + ' ' +
           Shown(parameter.text);
  }

  Status Save(const velora_ts_execution& execution, velora_ts_answer* answer);
  Status Get(const std::string& guid, velora_ts_answer* answer) const;

  /// What the simulated TS has stored: the texts of an execution, the numbers beside them.
  struct Stored {
    std::string version, node, description;
    std::int32_t kind = 0;
  };
  std::map<std::string, Stored> executions;
  int saved = 0;
  std::list<Context> contexts;
};

inline HostSide::Status HostSide::Save(const velora_ts_execution& execution, velora_ts_answer* answer) {
  if (execution.guid.size != 0) {
    return VELORA_TS_OK;
  }
  const std::string guid = "guid " + std::to_string(++saved);
  executions[guid] = {{execution.version.guid.data, execution.version.guid.size},
                      {execution.node.data, execution.node.size},
                      {execution.description.data, execution.description.size},
                      execution.kind};
  return velora_ts_answer_text(answer, guid.data(), guid.size());
}

inline HostSide::Status HostSide::Get(const std::string& guid, velora_ts_answer* answer) const {
  const auto found = executions.find(guid);
  if (found == executions.end()) {
    return velora_ts_raise("no such execution", VELORA_TS_ZERO_TERMINATED);
  }
  const auto& [version, node, description, kind] = found->second;
  velora_ts_execution execution{};
  execution.guid = {guid.data(), guid.size()};
  execution.version.guid = {version.data(), version.size()};
  execution.node = {node.data(), node.size()};
  execution.description = {description.data(), description.size()};
  execution.version.name = {"na\0me", 5};
  execution.version.version = {"2", 1};
  execution.version.description = {"D", 1};
  execution.kind = kind + 7;
  execution.status = 4;
  execution.time = 1'000'000;
  return velora_ts_answer_execution(answer, &execution);
}

inline velora_ts_gateway HostSide::Gateway() {
  saved = 0;  // the executions stay: the component can still know the parent of an earlier run
  velora_ts_gateway table{};
  table.size = sizeof table;
  table.context = &contexts.emplace_back(Context{*this});
  table.release = [](void* context) { Of(context).Release("gateway"); };
  table.begin_session = [](void* context, const velora_ts_text* texts) {
    return Of(context).Called("begin_session" + (texts == nullptr
                                                     ? std::string(" null")
                                                     : Shown(texts[0]) + Shown(texts[1]) + Shown(texts[2])));
  };
  table.set_path = [](void* context, const char* path, std::size_t size) {
    return Of(context).Called("set_path " + Shown(path, size));
  };
  table.is_present = [](void* context, std::int32_t* answer) {
    *answer = Of(context).side.present ? 2 : *answer;
    return Of(context).Called("is_present");
  };
  table.is_connectable = [](void* context, std::int32_t* answer) {
    *answer = Of(context).side.connectable ? 1 : *answer;
    return Of(context).Called("is_connectable");
  };
  table.register_activities = [](void* context, const char* path, std::size_t size, velora_ts_answer* answer) {
    return Of(context).Called("register_activities " + Shown(path, size), answer, [&] {
      velora_ts_version_of_activity section{{"s\0g", 3}, {"Sec\0tion", 8}, {"1\0", 2}, {"de\0", 3}};
      velora_ts_answer_version(answer, &section);
      section = {{"a", 1}, {"AutoFunction", VELORA_TS_ZERO_TERMINATED}, {nullptr, 0}, {nullptr, 0}};
      return velora_ts_answer_version(answer, &section);
    });
  };
  table.save_execution = [](void* context, const velora_ts_execution* execution, velora_ts_answer* answer) {
    return Of(context).Called("save_execution " + Shown(*execution), answer,
                              [&] { return Of(context).side.Save(*execution, answer); });
  };
  table.get_execution = [](void* context, const char* guid, std::size_t size, std::int32_t forLink,
                           velora_ts_answer* answer) {
    return Of(context).Called("get_execution " + Shown(guid, size) + " for_link " + std::to_string(forLink), answer,
                              [&] {
                                return Of(context).side.Get({guid, size}, answer);
                              });
  };
  table.read_file = [](void* context, const char* path, std::size_t size, velora_ts_answer* answer) {
    return Of(context).Called("read_file " + Shown(path, size), answer,
                              [&] { return velora_ts_answer_text(answer, "con\0tent", 8); });
  };
  table.save_event = [](void* context, const velora_ts_event* event, const char* configuration,
                        std::size_t configurationSize, const char* execution, std::size_t executionSize) {
    std::string entry = "save_event " + Shown(event->name) + " at " + Shown(event->time) + " with " +
                        Shown(configuration, configurationSize) + " for " + Shown(execution, executionSize);
    for (std::size_t at = 0; at < event->parameter_count; ++at) {
      entry += "\n  " + Shown(event->parameters[at]);
    }
    return Of(context).Called(entry);
  };
  table.save_configuration = [](void* context, const velora_ts_configuration* of, velora_ts_answer* answer) {
    EXPECT_EQ(of->host.data[of->host.size], '\0');  // its name differs from computer to computer
    return Of(context).Called("save_configuration " + Shown(of->configuration) + Shown(of->text2) + Shown(of->vendor) +
                                  Shown(of->options) + Shown(of->instrument_class) + Shown(of->model),
                              answer, [&] { return velora_ts_answer_text(answer, "c\0onf", 5); });
  };
  return table;
}

inline velora_ts_own_logging HostSide::Logging() {
  velora_ts_own_logging table{};
  table.size = sizeof table;
  table.context = &contexts.emplace_back(Context{*this});
  table.release = [](void* context) { Of(context).Release("logging"); };
  table.create_execution = [](void* context, const char* parent, std::size_t parentSize, const char* version,
                              std::size_t versionSize, const char* node, std::size_t nodeSize, const char* description,
                              std::size_t descriptionSize, velora_ts_answer* answer) {
    return Of(context).Called("create_execution under " + Shown(parent, parentSize) + " of " +
                                  Shown(version, versionSize) + " at " + Shown(node, nodeSize) + ": " +
                                  Shown(description, descriptionSize),
                              answer, [&] { return velora_ts_answer_text(answer, "own\0guid", 8); });
  };
  table.update_execution = [](void* context, const char* guid, std::size_t size) {
    return Of(context).Called("update_execution " + Shown(guid, size));
  };
  table.create_event = [](void* context, const char* name, std::size_t size) {
    return Of(context).Called("create_event " + Shown(name, size));
  };
  table.save_event = [](void* context, const char* name, std::size_t size, const char* guid, std::size_t guidSize) {
    return Of(context).Called("save_event " + Shown(name, size) + " for " + Shown(guid, guidSize));
  };
  table.add_parameter = [](void* context, const char* event, std::size_t size, const velora_ts_parameter* parameter) {
    return Of(context).Called("add_parameter " + Shown(event, size) + ' ' + Shown(*parameter));
  };
  return table;
}

inline velora_ts_logger HostSide::Logger() {
  velora_ts_logger table{};
  table.size = sizeof table;
  table.context = &contexts.emplace_back(Context{*this});
  table.release = [](void* context) { Of(context).Release("logger"); };
  table.write = [](void* context, std::int32_t level, const char* source, std::size_t sourceSize, const char* message,
                   std::size_t size) {
    EXPECT_EQ(Shown(source, sourceSize), "'Velora.TsLogging'");
    return Of(context).Called("write " + std::to_string(level) + ' ' + std::string(message, size));
  };
  return table;
}
