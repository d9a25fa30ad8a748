// Tables of a host where the component is in a folder of its own, over a logger that cannot be replaced.

#include "CInterfaceTest.h"
#include "support/Library.h"

namespace {

using HostTables = CInterfaceTest;
using namespace std::string_literals;

/// A gateway that answers nothing, and keeps the texts with which a session begins.
velora_ts_gateway Gateway(std::string& texts) {
  velora_ts_gateway table{};
  table.size = sizeof table;
  table.context = &texts;
  table.release = [](void* context) { *static_cast<std::string*>(context) += "released"; };
  table.begin_session = [](void* context, const velora_ts_text* given) -> velora_ts_status {
    for (int at = 0; at < 3; ++at) {
      *static_cast<std::string*>(context) += std::string(given[at].data, given[at].size) + ';';
    }
    return VELORA_TS_OK;
  };
  table.set_path = [](void*, const char*, std::size_t) -> velora_ts_status { return VELORA_TS_OK; };
  table.is_present = table.is_connectable = [](void*, std::int32_t* answer) -> velora_ts_status {
    *answer = 1;
    return VELORA_TS_OK;
  };
  table.register_activities = table.read_file = [](void*, const char*, std::size_t,
                                                   velora_ts_answer*) -> velora_ts_status { return VELORA_TS_OK; };
  table.save_execution = [](void*, const velora_ts_execution*, velora_ts_answer*) -> velora_ts_status {
    return VELORA_TS_OK;
  };
  table.get_execution = [](void*, const char*, std::size_t, std::int32_t, velora_ts_answer*) -> velora_ts_status {
    return VELORA_TS_OK;
  };
  table.save_event = [](void*, const velora_ts_event*, const char*, std::size_t, const char*,
                        std::size_t) -> velora_ts_status { return VELORA_TS_OK; };
  table.save_configuration = [](void*, const velora_ts_configuration*, velora_ts_answer*) -> velora_ts_status {
    return VELORA_TS_OK;
  };
  return table;
}

TEST_F(HostTables, GetTheTextsOfASessionAndKeepTheLibraryThatCallsThem) {
  std::string texts;
  const auto gateway = Gateway(texts);
  ASSERT_EQ(library->set_gateway(&gateway), VELORA_TS_OK);
  staysLoaded = true;
  create_directory(folder / "elsewhere");
  std::filesystem::current_path(folder / "elsewhere");  // so that the settings are those in the folder of the library
  velora_ts_configurator* configurator = nullptr;
  std::array<char, VELORA_TS_GUID_CAPACITY> guid{};
  ASSERT_EQ(library->create_configurator(&configurator), VELORA_TS_OK);
  const std::string odd = oddText;
  EXPECT_EQ(library->set_parent(configurator, "n", 1, odd.data(), odd.size(), "2", 1, nullptr, 0, nullptr, 0,
                                guid.data(), guid.size(), nullptr),
            VELORA_TS_OK)
      << Error();
  EXPECT_EQ(texts, odd + ";2;;");
  EXPECT_STREQ(guid.data(), "");
  Unload();
  const Library cpp(component);
  cpp.NewConfigurator()->SetParentActivityExec("n", "a", "b", "c");
  cpp.SetGateway(nullptr, nullptr);
  EXPECT_EQ(texts, odd + ";2;;a;b;c;released");
}

TEST_F(HostTables, DoNotReplaceALoggerThatIsNotOurs) {
  velora_ts_logger logger{};
  logger.size = sizeof logger;
  logger.release = [](void*) { ADD_FAILURE() << "the logger was not taken"; };
  logger.write = [](void*, std::int32_t, const char*, std::size_t, const char*, std::size_t) -> velora_ts_status {
    ADD_FAILURE() << "the logger was not taken";
    return VELORA_TS_OK;
  };
  EXPECT_EQ(library->set_logger(&logger), VELORA_TS_NOT_SUPPORTED);
  EXPECT_EQ(Error().rfind("velora_ts_set_logger: the logger is not ours: ", 0), 0U) << Error();
  EXPECT_EQ(library->set_logger(nullptr), VELORA_TS_NOT_SUPPORTED);
  EXPECT_EQ(library->create_event(logging, "e", 1), VELORA_TS_OK);
  EXPECT_NE(Journal(), "");
}

}  // namespace
