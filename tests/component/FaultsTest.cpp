// What is raised: where it ends, and which lines stand in the log then.

#include "support/ComponentTest.h"

#include <algorithm>
#include <new>
#include <regex>
#include <sstream>
#include <vector>

namespace {

using Faults = ComponentTest;

struct Raised {};

/// The exit lines that the journal lacks, those of its operations that are still open, the last one first.
std::vector<std::string> MissingExits(const std::string& journal) {
  std::vector<std::string> missing;
  std::istringstream lines(journal);
  for (std::string line; std::getline(lines, line);) {
    if (StartsWith(line, "info >>")) {
      missing.insert(missing.begin(), line.replace(5, 2, "<<") + '\n');
    } else if (StartsWith(line, "info <<")) {
      missing.erase(missing.begin());
    }
  }
  return missing;
}

/// What an operation leaves in the journal, releases left out, and whether it raised.
std::pair<std::string, bool> Outcome(const std::function<void()>& operation) {
  bool raised = false;
  try {
    operation();
  } catch (const Raised&) {
    raised = true;
  }
  return {std::regex_replace(Journal(), std::regex("[^\n]* released\n"), ""), raised};
}

/// Raises at one call of an operation; false when the operation made fewer. What is raised must pass, after the exit
/// lines of all that was open; only in a check, after its presence question, it must end there, and on an exit line it
/// must change nothing of what is written otherwise.
bool RaiseAt(int at, const std::function<void()>& operation, const std::string& undisturbed) {
  std::string call, before;
  Fakes::TheScene().hook = [&](const std::string& entry) {
    if (at-- == 0) {
      call = entry;
      before = Fakes::TheScene().journal;
      throw Raised();
    }
  };
  const auto [written, passed] = Outcome(operation);
  Fakes::TheScene().hook = nullptr;
  if (call.empty() || StartsWith(call, "info <<")) {
    EXPECT_FALSE(passed) << call;
    EXPECT_EQ(written, undisturbed) << call;
    return !call.empty();
  }
  std::vector<std::string> exits = MissingExits(before);
  if (StartsWith(call, "info >>")) {
    exits.erase(exits.begin());  // it did not open
  }
  const auto check = std::find_if(exits.begin(), exits.end(), [](const std::string& exit) {
    return exit.find("CheckTsServiceAvailability") != std::string::npos;
  });
  const bool guarded = check != exits.end() && call != "TSAL IsTsServicePresent()";
  EXPECT_EQ(passed, !guarded) << call;
  std::string lines = std::regex_replace(before, std::regex("[^\n]* released\n"), "");
  std::for_each(exits.begin(), guarded ? check + 1 : exits.end(), [&](const std::string& exit) { lines += exit; });
  EXPECT_EQ(guarded ? written.substr(0, lines.size()) : written, lines) << call;
  return true;
}

TEST_F(Faults, OfEveryCallPassAndEveryOpenOperationHasItsExitLine) {
  std::shared_ptr<Library::ITsLogging> logging;
  const std::pair<const char*, std::function<void()>> operations[] = {
      {"CreateTsLogging", [&] { library->Create("i"); }},
      {"SetFactory, logging", [&] { library->SetLogging(nullptr, logging); }},
      {"SetFactory, gateway", [&] { library->SetGateway(nullptr, nullptr); }},
      {"CreateActivityExecution", [&] { logging->CreateActivityExecution("v", "n", "d"); }},
      {"CreateActivityExecution, parent", [&] { logging->CreateActivityExecution("p", "v", "n", "d"); }},
      {"UpdateActivityExecution", [&] { logging->UpdateActivityExecution("g"); }},
      {"CreateInstrumentEvent", [&] { logging->CreateInstrumentEvent("A"); }},
      {"AddInstrumentEventParameter", [&] { logging->AddInstrumentEventParameter("A", "p", true); }},
      {"SetParentActivityExec", [&] { library->NewConfigurator()->SetParentActivityExec("n", "a", "b", "c"); }},
      {"SaveInstrumentEvent", [&] { logging->SaveInstrumentEvent("A", "g"); }},
  };
  for (const auto& [name, operation] : operations) {
    const auto prepare = [&] {
      logging = BroughtUp();
      EmptySlots();
    };
    prepare();
    const std::string undisturbed = Outcome(operation).first;
    int at = 0;
    for (bool reached = true; reached; ++at) {
      SCOPED_TRACE(name + (" at call " + std::to_string(at)));
      prepare();
      reached = RaiseAt(at, operation, undisturbed);
    }
    EXPECT_GT(at, 3) << name;  // the logger and both trace lines at least
  }
}

TEST_F(Faults, OfAnyTypeAfterThePresenceQuestionMeanThatTsIsNotAvailable) {
  struct Unknown {};
  const std::function<void()> raises[] = {[] { throw 5; }, [] { throw std::runtime_error("fault"); },
                                          [] { throw std::bad_alloc(); }, [] { throw Unknown(); },
                                          [] { throw Quor::TolvaServices::TsError("fault"); }};
  for (const char* call :
       {"info dataRootDirectory path", "TSAL SetTsalPath", "TSAL IsConnectable", "error Cannot load"}) {
    for (const auto& raise : raises) {
      SCOPED_TRACE(std::string(call) + ", type " + std::to_string(&raise - raises));
      Fakes::TheScene().hook = nullptr;
      BroughtUp()->CreateInstrumentEvent("it was available before");
      StartsWith(call, "error") && std::filesystem::remove("TSAL.config");
      EmptySlots();
      At(call, raise);
      const auto logging = library->Create("i");
      EXPECT_NE(Journal().find(notSupported), std::string::npos);
      logging->CreateActivityExecution("v", "n", "d");
      EXPECT_EQ(Journal(), Scope("CreateActivityExecution", cannotCreate));
    }
  }
}

TEST_F(Faults, OfThePresenceQuestionPassAndLeaveTheAnswerOfTheCheckBefore) {
  for (const bool supported : {true, false}) {
    Fakes::TheScene() = {};
    Fakes::TheScene().answers.connectable = supported;
    const auto logging = BroughtUp();
    At("TSAL IsTsServicePresent", [] { throw Raised(); });
    EXPECT_THROW(library->Create("i"), Raised);
    EXPECT_EQ(Journal(), Scope("CreateTsLoggingSession", checkedPresence));
    logging->CreateInstrumentEvent("A");
    EXPECT_EQ(Journal(), Scope("CreateInstrumentEvent", supported ? "info Create instrument event with name: A" : ""));
  }
}

TEST_F(Faults, OfTsalAreCaughtByAHostByTheirType) {
  const auto logging = BroughtUp();
  At("TSAL SaveEvent", [] { throw Quor::TolvaServices::TsError("reason"); });
  try {
    logging->SaveInstrumentEvent("A", "");
    ADD_FAILURE() << "nothing was raised";
  } catch (const Quor::TolvaServices::TsError& error) {
    EXPECT_STREQ(error.what(), "reason");
  }
}

}  // namespace
