// What the functions pass on, and what comes back, also when something is raised below.

#include "CInterfaceTest.h"
#include "support/Library.h"

#include <TSAL/Error.h>

#include <array>
#include <cstdint>
#include <functional>
#include <new>
#include <stdexcept>
#include <vector>

/// A text as two arguments of C.
#define TEXT(text) (text).data(), (text).size()
/// The buffer for a guid as three arguments of C.
#define GUID guid.data(), guid.size(), &size

namespace {

class CallsInC : public CInterfaceTest {
 protected:
  CallsInC() { EXPECT_EQ(library->create_configurator(&configurator), VELORA_TS_OK); }

  velora_ts_configurator* configurator = nullptr;
  std::array<char, VELORA_TS_GUID_CAPACITY> guid{};
  std::size_t size = 0;
  const std::string a = oddText + "a", b = oddText + "b", c = oddText + "c", d = oddText + "d";
};

TEST_F(CallsInC, SayToTheComponentWhatAHostInCppSays) {
  const Library cpp(component);
  const auto object = cpp.Create("i");
  const auto parent = cpp.NewConfigurator();
  velora_ts_logging* another = nullptr;
  const std::string file = "own.xml", none;
  std::ofstream(file.c_str());
  create_directory(folder / "empty");
  std::filesystem::current_path(folder / "empty");  // the settings are with the library: the texts of a session count
  struct Row {
    std::string name;
    std::function<velora_ts_status()> inC;
    std::function<std::string()> inCpp;  // returns the guid, if there is one
  };
  for (const Row& row : std::vector<Row>{
           {"create_logging", [&] { return library->create_logging(TEXT(a), TEXT(file), &another); },
            [&] { return cpp.CreateWith(a, file), none; }},
           {"create_logging without activities",
            [&] { return library->create_logging("i and more", 1, nullptr, 5, &another); },
            [&] { return cpp.Create("i"), none; }},
           {"create_execution", [&] { return library->create_execution(logging, TEXT(a), TEXT(b), TEXT(c), GUID); },
            [&] { return object->CreateActivityExecution(a, b, c); }},
           {"create_execution of a version",
            [&] { return library->create_execution(logging, "Section", zero, "", zero, nullptr, 0, GUID); },
            [&] { return object->CreateActivityExecution("Section", "", ""); }},
           {"create_execution_under",
            [&] { return library->create_execution_under(logging, TEXT(a), TEXT(b), TEXT(c), TEXT(d), GUID); },
            [&] { return object->CreateActivityExecution(a, b, c, d); }},
           {"create_execution_under nothing",
            [&] { return library->create_execution_under(logging, "", 0, TEXT(b), TEXT(c), TEXT(d), GUID); },
            [&] { return object->CreateActivityExecution("", b, c, d); }},
           {"update_execution", [&] { return library->update_execution(logging, TEXT(a)); },
            [&] { return object->UpdateActivityExecution(a), none; }},
           {"create_event", [&] { return library->create_event(logging, TEXT(a)); },
            [&] { return object->CreateInstrumentEvent(a), none; }},
           {"add_bool", [&] { return library->add_bool(logging, TEXT(a), TEXT(b), 256); },
            [&] { return object->AddInstrumentEventParameter(a, b, true), none; }},
           {"add_double", [&] { return library->add_double(logging, TEXT(a), TEXT(c), 1.0 / 3); },
            [&] { return object->AddInstrumentEventParameter(a, c, 1.0 / 3), none; }},
           {"add_int", [&] { return library->add_int(logging, TEXT(a), TEXT(d), INT32_MIN); },
            [&] { return object->AddInstrumentEventParameter(a, d, INT32_MIN), none; }},
           {"add_text", [&] { return library->add_text(logging, TEXT(a), TEXT(b), TEXT(c)); },
            [&] { return object->AddInstrumentEventParameter(a, b, c), none; }},
           {"save_event", [&] { return library->save_event(logging, TEXT(a), TEXT(b)); },
            [&] { return object->SaveInstrumentEvent(a, b), none; }},
           {"set_parent",
            [&] { return library->set_parent(configurator, TEXT(a), TEXT(b), TEXT(c), TEXT(d), TEXT(file), GUID); },
            [&] { return parent->SetParentActivityExec(a, b, c, d, file); }},
           {"set_parent without activities",
            [&] { return library->set_parent(configurator, TEXT(a), TEXT(b), TEXT(c), TEXT(d), nullptr, 0, GUID); },
            [&] { return parent->SetParentActivityExec(a, b, c, d); }},
       }) {
    SCOPED_TRACE(row.name);
    Fakes::TheScene().answers.newGuid = oddText + row.name;
    row.inCpp();  // the gateway asks for some things only once
    Journal();
    const std::string made = row.inCpp();
    const std::string said = Journal();
    size = 0;
    EXPECT_EQ(row.inC(), VELORA_TS_OK) << Error();
    EXPECT_EQ(Journal(), said);
    EXPECT_EQ(std::string(guid.data(), size), made);
  }
}

TEST_F(CallsInC, ParametersArriveWhole) {
  library->create_event(logging, TEXT(a));
  library->add_bool(logging, TEXT(a), TEXT(a), 256);
  library->add_bool(logging, TEXT(a), TEXT(b), 0);
  library->add_double(logging, TEXT(a), TEXT(c), -0.1);
  library->add_int(logging, TEXT(a), TEXT(d), INT32_MIN);
  library->add_text(logging, TEXT(a), TEXT(a), TEXT(oddText));
  Journal();
  EXPECT_EQ(library->save_event(logging, TEXT(a), nullptr, 0), VELORA_TS_OK);
  const std::string journal = Journal();
  EXPECT_NE(journal.find("[bool '" + a + "'=1, bool '" + b + "'=0, double '" + c + "'=-0.10000000000000001, int '" + d +
                         "'=-2147483648, string '" + a + "'=" + oddText + "]"),
            std::string::npos)
      << journal;
}

TEST_F(CallsInC, TurnWhatIsRaisedBelowIntoAStatus) {
  struct Function {
    std::string name;
    std::string raises;  // the entry of the journal at which it is raised
    std::function<velora_ts_status()> call;
  };
  velora_ts_logging* another = nullptr;
  const std::vector<Function> functions = {
      {"create_logging", "TSAL BeginSession", [&] { return library->create_logging("i", 1, nullptr, 0, &another); }},
      {"create_execution", "TSAL SaveActivityExecution",
       [&] { return library->create_execution(logging, "v", 1, "n", 1, "d", 1, GUID); }},
      {"create_execution_under", "TSAL GetActivityExecution",
       [&] { return library->create_execution_under(logging, "p", 1, "v", 1, "n", 1, "d", 1, GUID); }},
      {"update_execution", "TSAL GetActivityExecution", [&] { return library->update_execution(logging, "g", 1); }},
      {"create_event", "info ", [&] { return library->create_event(logging, "e", 1); }},
      {"save_event", "TSAL SaveEvent", [&] { return library->save_event(logging, "e", 1, "g", 1); }},
      {"add_bool", "info ", [&] { return library->add_bool(logging, "e", 1, "p", 1, 1); }},
      {"add_double", "info ", [&] { return library->add_double(logging, "e", 1, "p", 1, 1); }},
      {"add_int", "info ", [&] { return library->add_int(logging, "e", 1, "p", 1, 1); }},
      {"add_text", "info ", [&] { return library->add_text(logging, "e", 1, "p", 1, "t", 1); }},
      {"set_parent", "TSAL SaveActivityExecution",
       [&] { return library->set_parent(configurator, "n", 1, "1", 1, "2", 1, "3", 1, nullptr, 0, GUID); }},
  };
  struct Raised {
    std::function<void()> raise;
    velora_ts_status status;
    std::string words;
  };
  const std::vector<Raised> all = {
      {[] { throw Quor::TolvaServices::TsError("the disk is full"); }, VELORA_TS_RAISED, "the disk is full"},
      {[] { throw std::runtime_error(""); }, VELORA_TS_RAISED, ""},
      {[] { throw std::bad_alloc(); }, VELORA_TS_NO_MEMORY, "there is no memory"},
      {[] { throw 5; }, VELORA_TS_RAISED, "an exception of an unknown type"},
  };
  for (const Function& function : functions) {
    const bool hasGuid = StartsWith(function.name, "create_execution") || function.name == "set_parent";
    for (const Raised& raised : all) {
      SCOPED_TRACE(function.name + " " + raised.words);
      At(function.raises, raised.raise);
      guid.fill('x');
      another = logging;
      EXPECT_EQ(function.call(), raised.status);
      EXPECT_EQ(Error(), "velora_ts_" + function.name + ": " + raised.words);
      EXPECT_EQ(guid[0], hasGuid ? '\0' : 'x');
      EXPECT_EQ(another, function.name == "create_logging" ? nullptr : logging);
      Fakes::TheScene().hook = nullptr;
      EXPECT_EQ(function.call(), VELORA_TS_OK) << Error();
      EXPECT_EQ(Error(), "velora_ts_" + function.name + ": " + raised.words) << "a success leaves it as it is";
    }
  }
}

TEST_F(CallsInC, GiveAGuidThatIsLongerThanTheBufferInTheTextOfTheError) {
  std::string& made = Fakes::TheScene().answers.newGuid;
  for (const std::size_t length : {guid.size() - 1, guid.size(), guid.size() * 9}) {
    made = std::string(length - 2, 'g') + std::string("\0h", 2);
    const bool fits = length < guid.size();
    EXPECT_EQ(library->create_execution(logging, "v", 1, "n", 1, "d", 1, GUID),
              fits ? VELORA_TS_OK : VELORA_TS_TOO_LONG);
    EXPECT_EQ(std::string(guid.data(), size), fits ? made : "");
    EXPECT_EQ(Error(), fits ? ""
                            : "velora_ts_create_execution: the execution was created, but its guid is longer than the "
                              "buffer: " +
                                  made);
  }
}

}  // namespace
