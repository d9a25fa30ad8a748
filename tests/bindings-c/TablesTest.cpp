// Misuse of the tables and of the answers, and how long a table lives that callbacks replace.

#include "HostRun.h"

#include <VeloraTsLogging/IFactory.h>

#include <cstring>
#include <memory>
#include <thread>
#include <vector>

namespace {

using namespace std::string_literals;
using Tables = HostRun;
constexpr std::size_t zero = VELORA_TS_ZERO_TERMINATED;

/// Gives a function tables that it cannot use.
template <typename Table>
void RefuseMisuse(velora_ts_status (*set)(const Table*), const Table& whole, const std::string& function,
                  const std::vector<std::string>& callbacks) {
  const std::string words = "velora_ts_set_" + function + ": ";
  for (const std::size_t size : {std::size_t{0}, sizeof(Table) - 8, sizeof(Table) + 8}) {
    const auto small = std::make_unique<std::size_t>(size);  // a memory checker sees what is read beyond the size
    EXPECT_EQ(set(reinterpret_cast<const Table*>(small.get())), VELORA_TS_MISUSE);
    EXPECT_EQ(Error(), words + "size is " + std::to_string(size) + ", expected " + std::to_string(sizeof(Table)));
  }
  EXPECT_EQ(offsetof(Table, release) + (callbacks.size() + 1) * sizeof(void*), sizeof(Table));
  for (std::size_t at = 0; at < callbacks.size(); ++at) {
    Table table = whole;
    std::memset(reinterpret_cast<char*>(&table) + offsetof(Table, release) + (at + 1) * sizeof(void*), 0,
                sizeof(void*));
    EXPECT_EQ(set(&table), VELORA_TS_MISUSE);
    EXPECT_EQ(Error(), words + "the callback " + callbacks[at] + " is missing");
  }
}

TEST_F(Tables, ThatCannotBeUsedChangeNothing) {
  ASSERT_EQ(HostSide::Install(velora_ts_set_logger, side.Logger()), VELORA_TS_OK);
  ASSERT_EQ(Run(true), "");
  Journal();
  RefuseMisuse(velora_ts_set_gateway, side.Gateway(), "gateway",
               {"begin_session", "set_path", "is_present", "is_connectable", "register_activities", "save_execution",
                "get_execution", "read_file", "save_event", "save_configuration"});
  RefuseMisuse(velora_ts_set_logging, side.Logging(), "logging",
               {"create_execution", "update_execution", "create_event", "save_event", "add_parameter"});
  RefuseMisuse(velora_ts_set_logger, side.Logger(), "logger", {"write"});
  EXPECT_EQ(Journal(), "");
}

TEST_F(Tables, NeedNoRelease) {
  auto gateway = side.Gateway();
  gateway.release = nullptr;
  EXPECT_EQ(velora_ts_set_gateway(&gateway), VELORA_TS_OK);
  EXPECT_EQ(velora_ts_set_gateway(nullptr), VELORA_TS_OK);
}

TEST_F(Tables, OfAGatewayAnswerWhetherAHostWouldRecord) {
  struct Row {
    bool present, connectable;
    const char* fails;
    velora_ts_status status;
    std::string error;
  };
  for (const auto& [present, connectable, fails, status, error] : std::initializer_list<Row>{
           {true, true, "", VELORA_TS_OK, ""},
           {false, true, "", VELORA_TS_NOT_AVAILABLE, "the host's gateway says that the service is not present"},
           {true, false, "", VELORA_TS_NOT_AVAILABLE, "the host's gateway says that the server cannot be reached"},
           {true, true, "is_present", VELORA_TS_RAISED, "wh\0y"s},
           {true, true, "is_connectable", VELORA_TS_NOT_AVAILABLE, "wh\0y"s},
       }) {
    ASSERT_EQ(HostSide::Install(velora_ts_set_gateway, side.Gateway()), VELORA_TS_OK);
    side.present = present;
    side.connectable = connectable;
    side.hook = [fails = fails](const std::string& entry, velora_ts_answer*) {
      return entry == fails ? velora_ts_raise("wh\0y", 4) : VELORA_TS_OK;
    };
    EXPECT_EQ(velora_ts_available("no such file", zero, nullptr, 0), status) << error;
    EXPECT_EQ(status == VELORA_TS_OK ? "" : Error(), (error.empty() ? "" : "velora_ts_available: ") + error);
  }
}

TEST_F(Tables, AnswerAsTheirCallbacksMayAndAMisuseLeavesTheAnswer) {
  const std::string whole = JournalOfARun();
  velora_ts_answer* earlier = nullptr;
  velora_ts_version_of_activity version{{"g", 1}, {"n", 1}, {nullptr, 1}, {nullptr, 0}};
  velora_ts_execution execution{};
  execution.node = {nullptr, zero};
  velora_ts_configurator* configurator = nullptr;
  ASSERT_EQ(velora_ts_create_configurator(&configurator), VELORA_TS_OK);
  const std::string longGuid(VELORA_TS_GUID_CAPACITY, 'g');

  struct Row {
    const char* callback;
    std::function<velora_ts_status(velora_ts_answer*)> misuse;
    std::string error;
  };
  for (const auto& [callback, misuse, error] : std::initializer_list<Row>{
           {"save_execution", [&](auto* answer) { return velora_ts_answer_version(answer, &version); },
            "version: save_execution answers with velora_ts_answer_text"},
           {"save_configuration", [&](auto* answer) { return velora_ts_answer_execution(answer, &execution); },
            "execution: save_configuration answers with velora_ts_answer_text"},
           {"register_activities", [&](auto* answer) { return velora_ts_answer_text(answer, "", 0); },
            "text: register_activities answers with velora_ts_answer_version"},
           {"get_execution", [&](auto* answer) { return velora_ts_answer_text(answer, "", 0); },
            "text: get_execution answers with velora_ts_answer_execution"},
           {"read_file", [&](auto* answer) { return velora_ts_answer_text(answer, nullptr, 1); },
            "text: text is null, and its size is not 0"},
           {"save_execution",
            [&](auto* answer) { return velora_ts_answer_text(answer, longGuid.data(), longGuid.size()); },
            "text: the guid has 40 bytes; save_execution answers with at most 39"},
           {"register_activities", [&](auto* answer) { return velora_ts_answer_version(answer, nullptr); },
            "version: version is null"},
           {"register_activities", [&](auto* answer) { return velora_ts_answer_version(answer, &version); },
            "version: the version of the version is null, and its size is not 0"},
           {"get_execution", [&](auto* answer) { return velora_ts_answer_execution(answer, nullptr); },
            "execution: execution is null"},
           {"get_execution", [&](auto* answer) { return velora_ts_answer_execution(answer, &execution); },
            "execution: the node of the execution is null, and its size is not 0"},
           {"get_execution", [&](auto*) { return velora_ts_answer_text(nullptr, "", 0); },
            "text: the handle of an answer is null"},
           {"read_file", [&](auto* answer) { return earlier = answer, VELORA_TS_MISUSE; }, ""},
           {"get_execution", [&](auto*) { return velora_ts_answer_text(earlier, "", 0); },
            "text: the handle of an answer is closed"},
           {"read_file",
            [&](auto*) { return velora_ts_answer_text(reinterpret_cast<velora_ts_answer*>(configurator), "", 0); },
            "text: the handle is that of a configurator; expected that of an answer"},
           {"register_activities",
            [&](auto* answer) {
              version.version = {"n", 1};
              EXPECT_EQ(velora_ts_answer_version(answer, &version), VELORA_TS_OK);
              return velora_ts_answer_version(answer, &version);
            },
            "version: a version of the name 'n' was answered already"},
       }) {
    bool isReached = false;
    side.hook = [&, callback = callback, &misuse = misuse](const std::string& entry, velora_ts_answer* answer) {
      if (StartsWith(entry, callback)) {
        isReached = true;
        EXPECT_EQ(misuse(answer), VELORA_TS_MISUSE) << entry;
      }
      return VELORA_TS_OK;
    };
    EXPECT_EQ(Run(), "") << error;
    EXPECT_TRUE(isReached) << error;
    EXPECT_EQ(error.empty() ? "" : Error(), (error.empty() ? "" : "velora_ts_answer_") + error);
    EXPECT_EQ(Journal(), whole) << error;
  }
  EXPECT_EQ(velora_ts_answer_text(earlier, "", 0), VELORA_TS_MISUSE);
  EXPECT_EQ(velora_ts_close_configurator(configurator), VELORA_TS_OK);
}

TEST_F(Tables, AnswerOnlyOnTheThreadOfTheCall) {
  ASSERT_EQ(HostSide::Install(velora_ts_set_gateway, side.Gateway()), VELORA_TS_OK);
  side.hook = [&](const std::string& entry, velora_ts_answer* answer) {
    if (StartsWith(entry, "read_file")) {
      std::thread([answer] {
        EXPECT_EQ(velora_ts_answer_text(answer, "of another thread", zero), VELORA_TS_MISUSE);
        EXPECT_EQ(Error(), "velora_ts_answer_text: the answer of read_file belongs to another thread");
      }).join();
    }
    return VELORA_TS_OK;
  };
  // By a C++ part of the process, which leaves the lock of the interface open.
  Quor::Velora::Infra::TsLogging::IFactory::CreateTsLogging("instrument");
  EXPECT_NE(Journal().find("save_configuration 'con\0tent'"s), std::string::npos);
}

TEST_F(Tables, ReturnNothingWithoutAnAnswerAndLongGuidsWhole) {
  auto logging = side.Logging();
  logging.create_execution = [](void*, const char*, std::size_t, const char*, std::size_t, const char*, std::size_t,
                                const char*, std::size_t, velora_ts_answer*) { return velora_ts_status{VELORA_TS_OK}; };
  ASSERT_EQ(HostSide::Install(velora_ts_set_gateway, side.Gateway()), VELORA_TS_OK);
  ASSERT_EQ(HostSide::Install(velora_ts_set_logging, logging), VELORA_TS_OK);
  velora_ts_logging *without = nullptr, *longest = nullptr;
  ASSERT_EQ(velora_ts_create_logging("i", 1, nullptr, 0, &without), VELORA_TS_OK);
  logging = side.Logging();
  logging.create_execution = [](void*, const char*, std::size_t, const char*, std::size_t, const char*, std::size_t,
                                const char*, std::size_t, velora_ts_answer* answer) {
    return velora_ts_answer_text(answer, std::string(50, 'g').data(), 50);
  };
  ASSERT_EQ(HostSide::Install(velora_ts_set_logging, logging), VELORA_TS_OK);
  ASSERT_EQ(velora_ts_create_logging("i", 1, nullptr, 0, &longest), VELORA_TS_OK);

  std::array<char, VELORA_TS_GUID_CAPACITY> guid{'x'};
  const auto create = [&](velora_ts_logging* in) {
    return velora_ts_create_execution(in, "", 0, "", 0, "", 0, guid.data(), guid.size(), nullptr);
  };
  EXPECT_EQ(create(without), VELORA_TS_OK) << "a handle keeps the object that was replaced";
  EXPECT_STREQ(guid.data(), "");
  EXPECT_EQ(create(longest), VELORA_TS_TOO_LONG);
  EXPECT_NE(Error().find(std::string(50, 'g')), std::string::npos);
  EXPECT_EQ(velora_ts_close_logging(without), VELORA_TS_OK);
  EXPECT_EQ(velora_ts_close_logging(longest), VELORA_TS_OK);
}

/// Everything that a callback can do to what it is called in.
class Reentry : public HostRun, public testing::WithParamInterface<bool> {
 protected:
  std::vector<std::function<void()>> Actions() {
    return {
        [&] { EXPECT_EQ(HostSide::Install(velora_ts_set_gateway, other.Gateway()), VELORA_TS_OK); },
        [&] { EXPECT_EQ(velora_ts_set_gateway(nullptr), VELORA_TS_OK); },
        [&] { EXPECT_EQ(HostSide::Install(velora_ts_set_logging, other.Logging()), VELORA_TS_OK); },
        [&] { EXPECT_EQ(velora_ts_set_logging(nullptr), VELORA_TS_OK); },
        [&] { EXPECT_EQ(HostSide::Install(velora_ts_set_logger, other.Logger()), VELORA_TS_OK); },
        [&] { EXPECT_EQ(velora_ts_set_logger(nullptr), VELORA_TS_OK); },
        [&] { velora_ts_close_logging(handle == nullptr ? nullptr : *handle); },
        [&] { EXPECT_EQ(Run(GetParam()), ""); },
    };
  }
  HostSide other;
};

TEST_P(Reentry, FromAnyCallbackLeavesWhatIsCalledAliveUntilItReturns) {
  const auto install = [&] {
    ASSERT_EQ(HostSide::Install(velora_ts_set_logger, side.Logger()), VELORA_TS_OK);
    ASSERT_EQ(Run(GetParam()), "");
  };
  install();
  const std::string whole = JournalOfARun(GetParam());
  for (const auto& act : Actions()) {
    bool isReached = true;
    for (int at = 0; isReached; ++at) {
      isReached = false;
      int left = at;
      side.hook = [&](const std::string&, velora_ts_answer*) {
        if (left-- == 0) {
          isReached = true;
          act();
        }
        return VELORA_TS_OK;
      };
      Run(GetParam());
      side.hook = nullptr;
      install();
      Journal();
      EXPECT_EQ(Run(GetParam()), "");
      EXPECT_EQ(Journal(), whole) << at;
    }
  }
  velora_ts_set_gateway(nullptr);
  velora_ts_set_logging(nullptr);
  velora_ts_set_logger(nullptr);
  other.ExpectReleased();
}

INSTANTIATE_TEST_SUITE_P(WithAndWithoutOwnLogging, Reentry, testing::Bool());

}  // namespace
