// What velora-ts serve gives to Prometheus.

#include "ToolTest.h"
#include "serving/PrometheusText.h"
#include "support/ObedientHost.h"
#include "support/Patterns.h"
#include "support/Program.h"
#include "support/TestStore.h"

#include <chrono>
#include <cmath>
#include <limits>
#include <thread>

namespace {

using namespace std::string_literals;
using Velora::Ts::PrometheusText;

TEST(PrometheusText, TakesAnyTextAndNumber) {
  const struct {
    std::string label, written;
  } labels[] = {
      {"Scope 7", "Scope 7"},
      {"", ""},
      {"a\"b\\c", R"(a\"b\\c)"},
      {"µm²", "µm²"},
      {"one\ntwo", "one\u240Atwo#"},
      {"a\0b"s, "a\u2400b#"},
      {"\xFF", "\uFFFD#"},
      {"\u202Ereversed", "\uFFFDreversed#"},
      {std::string(128, 'x'), std::string(128, 'x')},
      {std::string(1'000'000, 'x'), std::string(127, 'x') + "\u2026#"},
  };
  for (const auto& [label, written] : labels) {
    PrometheusText text;
    text.Begin("velora_x", "What it is.");
    text.Add({{"name", label}}, 1);
    const std::string mark = written.ends_with('#') ? "[0-9a-f]{8}" : "";
    const std::string line = text.Text().substr(text.Text().find('{'));
    EXPECT_EQ(ReplaceMatches(line, '#' + (mark.empty() ? "never" : mark), "#"), "{name=\"" + written + "\"} 1\n");
  }
  static const struct {
    double number;
    const char* written;
  } numbers[] = {{NAN, "NaN"}, {INFINITY, "+Inf"}, {-INFINITY, "-Inf"}, {-0.1, "-0.1"}, {1e300, "1e+300"}};
  for (const auto& [number, written] : numbers) {
    PrometheusText text;
    text.Begin("velora_x", "What it is.");
    text.Add({}, number);
    EXPECT_TRUE(text.Text().ends_with("velora_x "s + written + '\n')) << text.Text();
  }
}

TEST(PrometheusText, HasEachSampleOnceAndNotTooMany) {
  PrometheusText text;
  text.Begin("velora_x", "What it is.");
  for (const char* const label : {"\xFF", "\xFE", "\xFF"}) {
    text.Add({{"name", label}}, 1);
  }
  EXPECT_EQ(text.LeftOut(), 1) << text.Text();
  for (std::size_t sample = 0; sample < PrometheusText::mostSamples; ++sample) {
    text.Add({{"name", std::to_string(sample)}}, 1);
  }
  EXPECT_EQ(text.LeftOut(), 3);
  text.Begin("velora_y", "Another one.");
  text.Add({{"name", "\xFF"}}, 1);
  EXPECT_EQ(text.LeftOut(), 3);
}

class Metrics : public WithTool<InFolder> {
 protected:
  Metrics() {
    folder.Write("TSAL.config", "<TSAL Instrument='Scope 7'><Database Backend='sqlite3' Connection='ts.db'/></TSAL>");
    WriteHostFiles(folder, "");
  }
  /// What the server says at /metrics, from the head on, in `said`.
  bool Ask(const std::string& port) {
    return Shell("bash -c 'exec 3<>/dev/tcp/127.0.0.1/" + port +
                 " && printf \"GET /metrics HTTP/1.0\\r\\nHost: localhost\\r\\n\\r\\n\" >&3 && cat <&3' | sed "
                 "'1,/^\\r*$/d' "
                 ">metrics && cat metrics") == 0;
  }
};

TEST_F(Metrics, AreWhatPrometheusTakesWhateverTheNames) {
  ObedientHost(folder.path, "finished").Finish();
  ObedientHost running(folder.path, "goes on");
  ObedientHost stopped(folder.path, "stops");
  stopped.Kill();
  running.Record(-4.25);
  running.Record(std::numeric_limits<double>::quiet_NaN());
  int added = 0;
  const auto addInstrument = [&](const std::string& name) {
    OpenFile(folder / "ts.db")
        ->RunScript("INSERT INTO sessions SELECT MAX(session_id) + 1, 'guid" + std::to_string(++added) + "', " + name +
                    ", host, began_at, text1, text2, text3 FROM sessions");
  };
  addInstrument("'<b>\"q\"\\'");                   // markup, a quote and a backslash
  addInstrument("'one' || char(10) || 'two'");     // a line break
  addInstrument("'\\x6100ff'");                    // a zero byte, and one of no character, as hosts store them
  addInstrument("CAST(x'ff0a7d20310a' AS TEXT)");  // as another program does
  addInstrument("'velora_x{a=\"b\"} 1'");          // a sample
  addInstrument("replace(hex(zeroblob(500000)), '0', 'a')");

  const Program server("'" TOOLS "/velora-ts' serve --listen 127.0.0.1:0 --value Defocus --value other --config '" +
                           folder.path.string() + "'",
                       folder / "server");
  const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  const auto has = [&](const std::string& pattern) { return HasMatch(said, pattern); };
  do {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    const auto port = MatchesIn(ContentOf(folder / "server"), "127\\.0\\.0\\.1:([0-9]+)");
    said.clear();
    if (!port.empty()) {
      Ask(port.front()[1]);
    }
  } while (!has("velora_parameter\\{") && std::chrono::steady_clock::now() < end);

  for (const char* const pattern : {
           R"(\nvelora_build_info\{version="[0-9.]+"\} 1\n)",
           R"(\nvelora_store_readable\{store="[^"]*ts\.db"\} 1\n)",
           R"(\nvelora_runs\{store="[^"]*ts\.db",state="running"\} 1\n[^\n]*state="stopped"\} 1\n)",
           R"(\nvelora_hosts_alive\{store="[^"]*",instrument="Scope 7"\} 1\n)",
           R"(\nvelora_instrument_state\{store="[^"]*",instrument="Scope 7",state="running"\} 1\n)",
           R"(\nvelora_instrument_state\{store="[^"]*",instrument="Scope 7",state="idle"\} 0\n)",
           R"(\nvelora_instrument_stopped\{store="[^"]*",instrument="Scope 7"\} 1\n)",
           R"(\nvelora_last_record_timestamp_seconds\{store="[^"]*",instrument="Scope 7"\} 1[0-9.]{9,}\n)",
           R"(\nvelora_last_record_age_seconds\{store="[^"]*",instrument="Scope 7"\} [0-9.e-]+\n)",
           R"(\nvelora_parameter\{store="[^"]*",instrument="Scope 7",parameter="Defocus"\} NaN\n)",
           R"(\nvelora_parameter_timestamp_seconds\{store="[^"]*",instrument="Scope 7",parameter="Defocus"\} 1)",
           R"(\nvelora_hosts_alive\{store="[^"]*",instrument="<b>\\"q\\"\\\\"\} 0\n)",
           R"(\nvelora_hosts_alive\{store="[^"]*",instrument="one\xE2\x90\x8Atwo#[0-9a-f]{8}"\} 0\n)",
           R"(\nvelora_left_out_samples 0\n$)",
       }) {
    EXPECT_TRUE(has(pattern)) << pattern << '\n' << said;
  }
  EXPECT_EQ(MatchesIn(said, "\nvelora_hosts_alive\\{[^\n]*").size(), 7U) << said;
  EXPECT_FALSE(has("(^|\n)(?!velora_|# HELP velora_|# TYPE velora_)[^\n]")) << said;
  if (PROMTOOL[0] == '\0') {
    GTEST_SKIP() << "there is no promtool; Debian's package prometheus has it";
  }
  EXPECT_EQ(Shell("'" PROMTOOL "' check metrics <metrics"), 0) << said;
  EXPECT_EQ(said, "");
}

}  // namespace
