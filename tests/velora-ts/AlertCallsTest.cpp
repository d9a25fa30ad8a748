// How a command is called for alerts, by the shell of this system.

#include "watching/AlertCalls.h"

#include "support/Patterns.h"
#include "support/ScratchFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>
#include <thread>

namespace {

using namespace Velora::Ts;
using namespace std::chrono_literals;
using Clock = AlertCalls::Clock;

#ifdef _WIN32
const std::string slowly = "echo %VELORA_EVENT% %VELORA_TEXT% >>said& ping -n 2 127.0.0.1 >NUL& echo over >>said";
const std::string atSecond = "if exist once (echo again >>said) else (echo >once& exit 3)";
const std::string recorded = "echo %VELORA_EVENT% >>said";
const std::string endless = "ping -n 600 127.0.0.1 >NUL& echo over >>said";
const std::string harmless = "a _ echo b; $_c_";
#else
const std::string slowly = "echo \"$VELORA_EVENT $VELORA_TEXT\" >>said; sleep 0.3; echo over >>said";
const std::string atSecond = "[ -e once ] && echo again >>said || { touch once; exit 3; }";
const std::string recorded = "echo $VELORA_EVENT >>said";
const std::string endless = "sleep 600; echo over >>said";
const std::string harmless = "a & echo b; $(c)";
#endif

Alert AlertThat(bool begins, const std::string& instrument = "Scope 7") {
  Alert alert{begins, {}};
  alert.condition.subject = {AlertKind::Stopped, 1, instrument, ""};
  alert.condition.words = "a & echo b; $(c)";
  return alert;
}

class Calls : public testing::Test {
 protected:
  Calls() { current_path(folder.path); }
  ~Calls() override { current_path(before); }

  AlertCalls Of(const std::string& command, std::chrono::seconds longest) {
    return {command, longest, [this](std::string_view line) { complaints += std::string(line) + '\n'; }};
  }
  std::string Said() const { return ReplaceMatches(ContentOf(folder / "said"), " *\r?\n", "\n"); }
  template <typename Question>
  static void Attend(AlertCalls& calls, const Question& isOver) {
    const auto end = Clock::now() + 1min;
    while (!isOver() && Clock::now() < end) {
      calls.Attend(Clock::now());
      std::this_thread::sleep_for(20ms);
    }
    EXPECT_TRUE(isOver());
  }

  const std::filesystem::path before = std::filesystem::current_path();
  const ScratchFolder folder;
  std::string complaints;
};

TEST_F(Calls, OfOneSubjectComeOneAfterAnother) {
  AlertCalls calls = Of(slowly, 1min);
  calls.Add(AlertThat(true));
  calls.Add(AlertThat(false));
  const std::string one = ' ' + harmless + "\nover\n";
  Attend(calls, [&] { return Said() == "begins" + one + "ends" + one; });
  EXPECT_EQ(complaints, "");
  EXPECT_FALSE(exists(folder / "b")) << "a fact was run as a command";
}

TEST_F(Calls, OfOneSubjectAreBounded) {
  AlertCalls calls = Of(recorded, 1min);
  calls.Add(AlertThat(true));
  calls.Attend(Clock::now());
  for (int more = 0; more < 1001; ++more) {
    calls.Add(AlertThat(more % 2 == 1));
  }
  std::string said;
  for (int pair = 0; pair < 4; ++pair) {
    said += "begins\nends\n";
  }
  Attend(calls, [&] { return Said() == said; });
  EXPECT_EQ(MatchesIn(complaints, "the calls take too long").size(), 497U);
}

TEST_F(Calls, AreTriedAgain) {
  AlertCalls calls = Of(atSecond, 1min);
  calls.Add(AlertThat(true));
  Attend(calls, [&] { return Said() == "again\n"; });
  EXPECT_EQ(complaints,
            "the command for 'a & echo b; $(c)' failed: its exit code is 3; expected 0; it is tried again in 1 s\n");
}

TEST_F(Calls, AreKilledAfterTheirTime) {
  AlertCalls calls = Of(endless, 1s);
  calls.Add(AlertThat(true));
  calls.Add(AlertThat(true, "Veldmar 3"));
  Attend(calls, [&] { return MatchesIn(complaints, "it did not end within 1 s, so it was killed").size() == 2; });
  calls.End();
  EXPECT_EQ(Said(), "");
}

TEST_F(Calls, ThatHaveBegunAreAwaitedAtTheEnd) {
  AlertCalls calls = Of(slowly, 1min);
  calls.Add(AlertThat(true));
  calls.Attend(Clock::now());
  calls.Add(AlertThat(false));
  calls.End();
  EXPECT_EQ(Said(), "begins " + harmless + "\nover\n");
  EXPECT_TRUE(HasMatch(complaints, "is not called any more: asked to end")) << complaints;
}

}  // namespace
