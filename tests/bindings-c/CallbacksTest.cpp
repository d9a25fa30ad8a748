// The callbacks of a host: what they get, and what comes back from the functions of the interface when one fails.

#include "HostRun.h"

#include <new>
#include <stdexcept>
#include <vector>

namespace {

using Callbacks = HostRun;
using namespace std::string_literals;
constexpr std::size_t zero = VELORA_TS_ZERO_TERMINATED;

TEST_F(Callbacks, OfAGatewayGetEveryValueOfARun) {
  ASSERT_EQ(Run(), "");
  const std::string n = "'" + oddText + "n'", d = "'" + oddText + "d'", e = "'" + oddText + "e'",
                    o = "'" + oddText + "'";
  const std::string begun =
      "is_present\nset_path ''\nis_connectable\nset_path ''\nbegin_session null\nregister_activities "
      "'activities.xml'\n";
  EXPECT_EQ(Journal(), begun + "save_execution '' under '' of 'a''AutoFunction''''' at " + n +
                           ": 'Set Parent ActivityExec' kind 5 status 14 since now\n" + begun +
                           "read_file 'in\0strument'\n"
                           "save_configuration 'con\0tent''''Brantor Scientific''''TEM'''\n"
                           "is_present\nget_execution 'guid 1' for_link 1\n"
                           "save_execution '' under 'guid 1' of 's\0g''Sec\0tion''1\0''de\0' at "s +
                           n + ": " + d +
                           " kind 0 status 4 since now\n"
                           "is_present\nget_execution 'guid 2' for_link 1\n"
                           "save_execution '' under 'guid 2' of '''''''' at '': '' kind 0 status 4 since now\n"
                           "get_execution 'guid 3' for_link 1\nsave_event " +
                           e +
                           " at no time with 'c\0onf' for 'guid 3'\n"
                           "  'b' kind 0: 1 0 ''\n  'd' kind 1: 0 -0.25 ''\n  'i' kind 2: -2147483648 0 ''\n  "s +
                           o + " kind 3: 0 0 " + o +
                           "\nsave_event '' at no time with 'c\0onf' for null\n"
                           "get_execution 'guid 2' for_link 0\n"
                           "save_execution 'guid 2' under '' of 's\0g''na\0me''2''D' at "s +
                           n + ": " + d + " kind 7 status 14 since now\n");
}

TEST_F(Callbacks, OfALoggingObjectGetEveryValueOfARun) {
  ASSERT_EQ(Run(true), "");
  const std::string n = "'" + oddText + "n'", d = "'" + oddText + "d'", e = "'" + oddText + "e'",
                    o = "'" + oddText + "'";
  const std::string journal = Journal();
  EXPECT_EQ(journal.substr(journal.find("create_execution")),
            "create_execution under null of 'Sec\0tion' at "s + n + ": " + d +
                "\ncreate_execution under 'own\0guid' of 'unknown' at '': ''\n"
                "create_event "s +
                e + "\nadd_parameter " + e + " 'b' kind 0: 1 0 ''\nadd_parameter " + e +
                " 'd' kind 1: 0 -0.25 ''\nadd_parameter " + e + " 'i' kind 2: -2147483648 0 ''\nadd_parameter " + e +
                ' ' + o + " kind 3: 0 0 " + o + "\nsave_event " + e +
                " for 'own\0guid'\n"
                "save_event 'unknown' for ''\nupdate_execution 'own\0guid'\n"s);
}

struct Failure {
  std::function<velora_ts_status()> fail;
  std::string words;  // CALLBACK stands for its name
};

/// Calls two callbacks, which give a reason and do not fail.
velora_ts_status Nested() { return velora_ts_available("", 0, nullptr, 0); }

const std::string withoutReason = "the callback CALLBACK returned 5 without a reason by velora_ts_raise";
const std::vector<Failure> failures = {
    {[] { return velora_ts_raise("why\0so", 6); }, "why\0so"s},
    {[] { return velora_ts_raise("first", zero), velora_ts_raise("then", zero), 5; }, "then"},
    {[] { return velora_ts_raise(nullptr, 3); }, "velora_ts_raise got no text: it is null, and its size is not 0"},
    {[] { return 5; }, withoutReason},
    {[] { return velora_ts_raise(nullptr, 0), 5; }, withoutReason},
    {[] { return velora_ts_answer_text(nullptr, "", 0), 5; },
     withoutReason + "; velora_ts_answer_text: the handle of an answer is null"},
    {[] { return velora_ts_raise("outside", zero), Nested(), VELORA_TS_RAISED; }, "outside"},
    {[] { return Nested(), 5; }, withoutReason},
    {[]() -> velora_ts_status { throw std::runtime_error("words"); }, "words"},
    {[]() -> velora_ts_status { throw std::bad_alloc(); }, std::bad_alloc().what()},
    {[]() -> velora_ts_status { throw 7; }, "an exception of an unknown type"},
};

/// Whether the component goes on after a callback failed: at an exit line, and in the check after its first question.
bool GoesOn(const std::string& before) {
  const std::string last = before.substr(before.rfind('\n', before.size() - 2) + 1);
  const std::size_t check = before.rfind("::CheckTsServiceAvailability");
  const bool isInside = check != std::string::npos && before.rfind(">>", check) > before.rfind("<<", check) + 1;
  const std::size_t asked = isInside ? before.find("is_present\n", check) : std::string::npos;
  return StartsWith(last, "write 0 <<") || (asked != std::string::npos && last != "is_present\n");
}

class FailingCallbacks : public Callbacks, public testing::WithParamInterface<bool> {
 protected:
  /// Lets a callback of a run fail.
  /// @return false if the run has no more than `at` calls.
  bool Try(const Failure& failure, int at) {
    bool isReached = false;
    std::string callback, before;
    side.hook = [&](const std::string& entry, velora_ts_answer*) -> velora_ts_status {
      if (StartsWith(entry, "release") || at-- != 0) {
        velora_ts_raise("the reason of a callback that did not fail", zero);
        return VELORA_TS_OK;
      }
      isReached = true;
      before = side.journal;
      callback = entry.substr(0, entry.find(' '));
      return failure.fail();
    };
    const std::string error = Run(GetParam());
    side.hook = nullptr;
    SCOPED_TRACE(failure.words + ", after:\n" + before);
    if (!isReached || GoesOn(before)) {
      EXPECT_EQ(error, "");
    } else {
      std::string expected = failure.words;
      if (const std::size_t name = expected.find("CALLBACK"); name != std::string::npos) {
        expected.replace(name, 8, callback);
      }
      EXPECT_EQ(error.substr(error.find(": ") + 2), expected);
    }
    velora_ts_raise("the reason of no callback", zero);
    Journal();
    EXPECT_EQ(Run(GetParam()), "");
    EXPECT_EQ(Journal(), whole);
    return isReached;
  }

  std::string whole;
};

TEST_P(FailingCallbacks, ComeBackFromTheFunctionThatCausedThemAndTheNextRunIsWhole) {
  ASSERT_EQ(HostSide::Install(velora_ts_set_logger, side.Logger()), VELORA_TS_OK);
  whole = JournalOfARun(GetParam());
  for (const Failure& failure : failures) {
    int calls = 0;
    while (Try(failure, calls)) {
      ++calls;
    }
    EXPECT_GE(calls, 50);
  }
}

INSTANTIATE_TEST_SUITE_P(WithAndWithoutOwnLogging, FailingCallbacks, testing::Bool());

}  // namespace
