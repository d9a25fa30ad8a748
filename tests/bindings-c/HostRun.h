#pragma once

#include "HostSide.h"
#include "support/Lines.h"
#include "support/ScratchFolder.h"

#include <array>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <utility>

inline std::string Error() {
  std::size_t size = 0;
  const char* const text = velora_ts_last_error(&size);
  return {text, size};
}

/// A host in C with a run that uses every function, in a folder with the files that it needs.
class HostRun : public testing::Test {
 protected:
  HostRun() {
    folder.Write("TSAL.config", "");
    folder.Write("activities.xml", "");
    std::filesystem::current_path(folder.path);
  }
  ~HostRun() override {
    side.hook = nullptr;
    velora_ts_set_gateway(nullptr);
    velora_ts_set_logging(nullptr);
    velora_ts_set_logger(nullptr);
    side.ExpectReleased();
    std::filesystem::current_path("/");
  }

  struct Step {
    const char* function;
    std::function<velora_ts_status()> call;
  };

  /// Ends at the first failure.
  /// @param own whether the host also has a logging object of its own.
  /// @return the error; nothing if all went well.
  std::string Run(bool own = false) {
    const auto gateway = side.Gateway();
    const auto table = side.Logging();
    velora_ts_configurator* configurator = nullptr;
    velora_ts_logging* logging = nullptr;
    velora_ts_logging** const outer = std::exchange(handle, &logging);
    std::array<char, VELORA_TS_GUID_CAPACITY> run{}, child{};
    std::size_t runSize = 0, childSize = 0;
    constexpr std::size_t zero = VELORA_TS_ZERO_TERMINATED;
    const std::string &o = oddText, n = oddText + "n", d = oddText + "d", e = oddText + "e";
    std::string error;
    for (const auto& [function, call] : std::initializer_list<Step>{
             {"set_gateway", [&] { return HostSide::Install(velora_ts_set_gateway, gateway); }},
             {"set_logging",
              [&] { return own ? HostSide::Install(velora_ts_set_logging, table) : velora_ts_set_logging(nullptr); }},
             {"create_configurator", [&] { return velora_ts_create_configurator(&configurator); }},
             {"set_parent",
              [&] {
                return velora_ts_set_parent(configurator, n.data(), n.size(), "1", 1, "2", 1, "3", 1, nullptr, 0,
                                            run.data(), run.size(), nullptr);
              }},
             {"create_logging", [&] { return velora_ts_create_logging("in\0strument", 11, nullptr, 0, &logging); }},
             {"create_execution",
              [&] {
                return velora_ts_create_execution(logging, "Sec\0tion", 8, n.data(), n.size(), d.data(), d.size(),
                                                  run.data(), run.size(), &runSize);
              }},
             {"create_execution_under",
              [&] {
                return velora_ts_create_execution_under(logging, run.data(), runSize, "unknown", zero, "", 0, nullptr,
                                                        0, child.data(), child.size(), &childSize);
              }},
             {"create_event", [&] { return velora_ts_create_event(logging, e.data(), e.size()); }},
             {"add_bool", [&] { return velora_ts_add_bool(logging, e.data(), e.size(), "b", 1, 7); }},
             {"add_double", [&] { return velora_ts_add_double(logging, e.data(), e.size(), "d", 1, -0.25); }},
             {"add_int", [&] { return velora_ts_add_int(logging, e.data(), e.size(), "i", 1, INT32_MIN); }},
             {"add_text",
              [&] { return velora_ts_add_text(logging, e.data(), e.size(), o.data(), o.size(), o.data(), o.size()); }},
             {"save_event", [&] { return velora_ts_save_event(logging, e.data(), e.size(), child.data(), childSize); }},
             {"save_event", [&] { return velora_ts_save_event(logging, "unknown", zero, nullptr, 0); }},
             {"update_execution", [&] { return velora_ts_update_execution(logging, run.data(), runSize); }},
         }) {
      if (call() != VELORA_TS_OK) {
        error = Error();
        EXPECT_TRUE(StartsWith(error, std::string("velora_ts_") + function + ": ")) << error;
        break;
      }
    }
    velora_ts_close_logging(logging);  // a callback can have closed it
    handle = outer;
    EXPECT_EQ(velora_ts_close_configurator(configurator), VELORA_TS_OK);
    return error;
  }

  /// What the callbacks get in a run after another one, which releases the tables of that one.
  std::string JournalOfARun(bool own = false) {
    EXPECT_EQ(Run(own), "");
    Journal();
    EXPECT_EQ(Run(own), "");
    return Journal();
  }

  /// What the callbacks got since the last look.
  std::string Journal() { return std::exchange(side.journal, {}); }

  HostSide side;
  velora_ts_logging** handle = nullptr;  // that of the run
  const ScratchFolder folder;
};
