// Instrument events: what is written, and what is sent.

#include "support/ComponentTest.h"

#include <limits>

namespace {

using Events = ComponentTest;

std::string Saved(const std::string& event, const std::string& configuration = "configuration") {
  return Scope("SaveInstrumentEvent", "info Save instrument event. node: A, activityTsidGuid: ",
               "TSAL SaveEvent(" + event + ", '" + configuration + "', null, false, Empty)");
}

TEST_F(Events, AreBuiltWithoutTsAndSentWithEveryParameterInItsOrder) {
  Fakes::TheScene().answers.configurationGuid = oddText;
  Fakes::TheScene().answers.fetchedGuid = "as stored";
  const auto logging = BroughtUp();
  logging->CreateInstrumentEvent(oddText);
  EXPECT_EQ(Journal(), Scope("CreateInstrumentEvent", "info Create instrument event with name: " + oddText));

  std::string sent;
  const auto add = [&](const std::string& parameter, const auto& value, const std::string& kind,
                       const std::string& written, const std::string& exact) {
    logging->AddInstrumentEventParameter(oddText, parameter, value);
    EXPECT_EQ(Journal(), Scope("AddInstrumentEventParameter", "info Add instrument event parameter. node: " + oddText +
                                                                  ", parameter: " + parameter + ", value(" + kind +
                                                                  "): \"" + written + '"'));
    sent += (sent.empty() ? "" : ", ") + kind + " '" + parameter + "'=" + exact;
  };
  add(oddText, oddText, "string", oddText, oddText);
  add(oddText, std::string(), "string", "", "");
  add("t", "a literal", "string", "a literal", "a literal");
  add("i", std::int32_t{-5}, "int", "-5", "-5");
  add("i", std::numeric_limits<std::int32_t>::min(), "int", "-2147483648", "-2147483648");
  add("d", 0.1, "double", "0.1", "0.10000000000000001");
  add("d", 1234567.0, "double", "1.23457e+06", "1234567");
  add("d", -0.0, "double", "-0", "-0");
  add("b", true, "bool", "1", "1");
  add("b", false, "bool", "0", "0");

  logging->SaveInstrumentEvent(oddText, oddText);
  EXPECT_EQ(Journal(), Scope("SaveInstrumentEvent",
                             "info Save instrument event. node: " + oddText + ", activityTsidGuid: " + oddText,
                             "TSAL GetActivityExecution('" + oddText + "', true, null)",
                             "TSAL SaveEvent('" + oddText + "' at no time [" + sent + "], '" + oddText +
                                 "', 'as stored', false, Empty)"));
}

TEST_F(Events, StayPendingUntilTheyAreCreatedAgainOrASessionBegins) {
  const auto logging = BroughtUp();
  const std::pair<std::function<void()>, std::string> steps[] = {
      {[&] { logging->AddInstrumentEventParameter("A", "p", true); }, "'' at no time [bool 'p'=1]"},
      {[] {}, "'' at no time [bool 'p'=1]"},
      {[&] { logging->CreateInstrumentEvent("a"); }, "'' at no time [bool 'p'=1]"},
      {[&] { logging->CreateInstrumentEvent("A"); }, "'A' at no time []"},
      {[&] { logging->AddInstrumentEventParameter("A", "q", 1.5); }, "'A' at no time [double 'q'=1.5]"},
      {[&] { logging->CreateInstrumentEvent("A"); }, "'A' at no time []"},
      {[&] { library->Create("i"); }, "'' at no time []"},
  };
  for (const auto& [act, sent] : steps) {
    act();
    Journal();
    logging->SaveInstrumentEvent("A", "");
    EXPECT_EQ(Journal(), Saved(sent));
  }
}

TEST_F(Events, CarryTheConfigurationSavedLast) {
  const auto logging = library->Create("i");  // there are no settings: supported, and nothing configured yet
  for (const std::string guid : {"", "first", "second"}) {
    Fakes::TheScene().answers.configurationGuid = guid;
    guid.empty() ? logging : BroughtUp();
    Journal();
    logging->SaveInstrumentEvent("A", "");
    EXPECT_EQ(Journal(), Saved("'' at no time []", guid));
  }
}

}  // namespace
