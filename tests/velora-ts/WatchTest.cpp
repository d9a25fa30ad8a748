// velora-ts watch over stores that hosts record into.

#include "ToolTest.h"
#include "support/ObedientHost.h"
#include "support/Program.h"

#include <chrono>
#include <optional>
#include <thread>

namespace {

class Watching : public WithTool<InFolder> {
 protected:
  Watching() {
    for (const auto& [name, instrument] : {std::pair("seven", "Scope 7"), {"three", "Veldmar 3"}}) {
      create_directory(folder / name);
      folder.Write(name + std::string("/TSAL.config"), "<TSAL Instrument='" + std::string(instrument) +
                                                           "'><Database Backend='sqlite3' Connection='ts.db'/></TSAL>");
      WriteHostFiles(folder, name + std::string("/"));
    }
  }
  ~Watching() override { static_cast<void>(Shell("[ ! -e process ] || kill -9 $(cat process) 2>/dev/null")); }

  std::string Seven() const { return folder / "seven"; }
  std::string Three() const { return folder / "three"; }

  void Watch(const std::string& options) {
    EXPECT_EQ(Shell("sh -c '" TOOLS "/velora-ts watch --config seven --config three --exec \"$CALLED\" " + options +
                    " >words 2>errors & echo $! >process; wait $!; echo ended with $? >>words' &\n"),
              0)
        << said;
  }
  template <typename Question>
  static bool Comes(const Question& isSo) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!isSo() && std::chrono::steady_clock::now() < end) {
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return isSo();
  }
  std::string Called() const { return ContentOf(folder / "called"); }
  std::string All() const { return Called() + "words: " + ContentOf(folder / "words") + ContentOf(folder / "errors"); }
  bool Calls(const std::string& line) const {
    return Comes([&] { return ('\n' + Called()).find('\n' + line + '\n') != std::string::npos; });
  }
  bool Tells(const std::string& words) const {
    return Comes([&] { return ContentOf(folder / "words").find(words) != std::string::npos; });
  }

  const int called = setenv("CALLED",
                            "echo \"$VELORA_EVENT $VELORA_CONDITION: $VELORA_INSTRUMENT, $VELORA_NODE, "
                            "$VELORA_PARAMETER $VELORA_VALUE\" >>called",
                            1);
};

TEST_F(Watching, TellsOfStopsAndValues) {
  std::optional<ObedientHost> seven, three;
  seven.emplace(Seven(), "night 1");
  three.emplace(Three(), "screening");
  seven->Record(-4);
  Watch("--stopped --grace 5s --outside Defocus=-6..-3");
  EXPECT_TRUE(Comes([&] { return !ContentOf(folder / "errors").empty(); }));
  seven.emplace(Seven(), "night 2");  // kills the host before
  seven.emplace(Seven(), "night 3");
  three->Kill();
  EXPECT_TRUE(Calls("begins stopped: Veldmar 3, screening,  ")) << All();
  EXPECT_EQ(Called(), "begins stopped: Veldmar 3, screening,  \n") << "a restart was told: " << All();
  EXPECT_TRUE(Tells("begins  stopped  Veldmar 3 has stopped: run ")) << All();
  three.emplace(Three(), "again");
  seven->Record(-7.25);
  EXPECT_TRUE(Calls("ends stopped: Veldmar 3, again,  ")) << All();
  EXPECT_TRUE(Calls("begins outside: Scope 7, night 3, Defocus -7.25")) << All();
  seven->Record(-3);
  EXPECT_TRUE(Calls("ends outside: Scope 7, night 3, Defocus -3")) << All();
  EXPECT_EQ(Shell("kill -TERM $(cat process)"), 0) << said;
  EXPECT_TRUE(Tells("ended with 0")) << All();
  EXPECT_EQ(Shell("grep -c . called"), 0);
  EXPECT_EQ(said, "4\n") << All();
}

TEST_F(Watching, TellsOfSilenceWhileARunGoesOn) {
  ObedientHost(Three(), "idle").Finish();
  const ObedientHost seven(Seven(), "night 1");
  Watch("--silent 3s --grace 1s");
  EXPECT_TRUE(Calls("begins silent: Scope 7, night 1,  ")) << All();
  EXPECT_TRUE(Comes([&] {
    seven.Record(-4);
    return Called() != "begins silent: Scope 7, night 1,  \n";
  }));
  EXPECT_EQ(Called(), "begins silent: Scope 7, night 1,  \nends silent: Scope 7, night 1,  \n") << All();
}

TEST_F(Watching, TellsOfForwardingThatIsBehind) {
  folder.Write("seven/TSAL.config",
               "<TSAL Instrument='Scope 7'><Database Backend='sqlite3' Connection='ts.db'/>"
               "<Forward Connection='host=127.0.0.1 port=1 dbname=facility'/></TSAL>");  // where no server is
  ObedientHost(Seven(), "night 1").Finish();
  const Program forwarder("'" TOOLS "/velora-ts' forward --follow --config '" + Seven() + "'", folder / "forwarder");
  Watch("--behind 1s --grace 0s");
  EXPECT_TRUE(Calls("begins behind: , ,  ")) << All();
  EXPECT_TRUE(Tells(" rows wait, the oldest of ") && Tells("cannot be reached")) << All();
}

TEST_F(Watching, TellsOfAStoreThatCannotBeRead) {
  const ObedientHost seven(Seven(), "night 1");
  Watch("--stopped --grace 1s");
  EXPECT_TRUE(Tells("begins  unreadable  store '")) << "three has no store yet: " << All();
  const ObedientHost three(Three(), "screening");
  EXPECT_TRUE(Calls("ends unreadable: , ,  ")) << All();
}

TEST_F(Watching, NeedsToKnowWhatFor) {
  static const struct {
    const char *options, *words;
  } rows[] = {
      {"", "nothing to watch for; expected --stopped, --silent, --outside or --behind"},
      {"--silent 10", "--silent '10': expected a duration, such as 30s, 10m, 1h or 2d"},
      {"--silent 10m --behind -1h", "--behind"},
      {"--outside Defocus", "--outside 'Defocus': expected NAME=LOWEST..HIGHEST, such as 'Defocus=-6..-3'"},
      {"--stopped --grace 1x", "--grace '1x': expected a duration"},
      {"--stopped --exec-limit 1m", "--exec"},
  };
  for (const auto& [options, words] : rows) {
    EXPECT_EQ(Tool("watch --config seven " + std::string(options)), 2) << options << ": " << said;
    EXPECT_TRUE(Says(words)) << options << ": " << said;
  }
  EXPECT_EQ(Tool("watch --stopped --config nowhere"), 3) << said;
}

}  // namespace
