// The logger of a host, its tables while several threads use them, and the end of the process.

#include "HostRun.h"
#include "support/Patterns.h"

#include <VeloraInfraLogging/Logger.h>

#include <atomic>
#include <cstdlib>
#include <thread>
#include <vector>

namespace {

using HostLogger = HostRun;
using Quor::Velora::Infra::Logging::Logger;

/// A line of the log, as it is in the file after its time.
std::string LineOf(const std::string& entry) {
  static const char* const levels[] = {"[info]", "[warning]", "[error]"};
  const std::string zeroShown = ReplaceMatches(entry.substr(8), std::string(1, '\0'), "\\x00");
  return levels[entry.at(6) - '0'] + std::string(" [Velora.TsLogging] ") + zeroShown + '\n';
}

TEST_F(HostLogger, GetsExactlyTheLinesThatOtherwiseGoToTheLog) {
  System::SetVariable("VELORA_LOG_FILE", (folder / "log").string());
  const auto runTwice = [&] {
    side.present = false;
    EXPECT_EQ(Run(), "");
    side.present = true;
    EXPECT_EQ(Run(), "");
  };
  runTwice();
  const std::string written = ContentOf(folder / "log");
  Journal();
  ASSERT_EQ(HostSide::Install(velora_ts_set_logger, side.Logger()), VELORA_TS_OK);
  std::string received;
  side.hook = [&](const std::string& entry, velora_ts_answer*) {
    received += StartsWith(entry, "write ") ? LineOf(entry) : "";
    return VELORA_TS_OK;
  };
  runTwice();
  // Without times, and without what ends a line on Windows.
  EXPECT_EQ(received, ReplaceMatches(written, R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{6}[+-]\d\d:\d\d |\r)", ""));
  EXPECT_NE(received.find("[warning]"), std::string::npos);
  EXPECT_NE(received.find("[error]"), std::string::npos);
  EXPECT_EQ(ContentOf(folder / "log"), written);
  EXPECT_EQ(velora_ts_set_logger(nullptr), VELORA_TS_OK);
  runTwice();
  EXPECT_GT(ContentOf(folder / "log").size(), written.size());
}

TEST_F(HostLogger, GetsTheLinesFromItsLeastLevelOn) {
  velora_ts_logger logger = side.Logger();
  for (const std::int32_t unknown : {VELORA_TS_INFO - 1, VELORA_TS_ERROR + 1}) {
    logger.least_level = unknown;
    EXPECT_EQ(velora_ts_set_logger(&logger), VELORA_TS_MISUSE);
    EXPECT_EQ(Error(),
              "velora_ts_set_logger: least_level is " + std::to_string(unknown) + ", expected one of the levels");
  }
  side.present = false;
  for (std::int32_t least = VELORA_TS_INFO; least <= VELORA_TS_ERROR; ++least) {
    logger = side.Logger();
    logger.least_level = least;
    ASSERT_EQ(HostSide::Install(velora_ts_set_logger, logger), VELORA_TS_OK);
    ASSERT_EQ(Run(), "");
    const std::string journal = Journal();
    for (std::int32_t level = VELORA_TS_INFO; level <= VELORA_TS_ERROR; ++level) {
      EXPECT_EQ(journal.find("write " + std::to_string(level)) != std::string::npos, level >= least) << level << least;
    }
  }
}

/// A logger that only counts.
struct Counter {
  velora_ts_logger Table() {
    velora_ts_logger table{sizeof(velora_ts_logger), this, VELORA_TS_INFO, nullptr, nullptr};
    table.release = [](void* context) { ++static_cast<Counter*>(context)->released; };
    table.write = [](void* context, std::int32_t, const char*, std::size_t, const char*, std::size_t) {
      auto& counter = *static_cast<Counter*>(context);
      EXPECT_EQ(counter.released, 0);
      ++counter.lines;
      return velora_ts_status{VELORA_TS_OK};
    };
    return table;
  }
  std::atomic<int> lines = 0, released = 0;
};

TEST_F(HostLogger, IsReplacedWhileThreadsWriteAndNoLineIsLost) {
  constexpr int threads = 3, linesOfEach = 2'000, loggers = 200;
  std::vector<Counter> counters(loggers);
  const auto first = counters.front().Table();
  ASSERT_EQ(velora_ts_set_logger(&first), VELORA_TS_OK);
  std::vector<std::thread> writers;
  for (int thread = 0; thread < threads; ++thread) {
    writers.emplace_back([] {
      for (int line = 0; line < linesOfEach; ++line) {
        Logger::GetInstance()->WriteInfo(L"a C++ part", "text");
      }
    });
  }
  for (Counter& counter : counters) {
    const auto table = counter.Table();
    EXPECT_EQ(&counter == &counters.front() ? VELORA_TS_OK : velora_ts_set_logger(&table), VELORA_TS_OK);
  }
  for (std::thread& writer : writers) {
    writer.join();
  }
  EXPECT_EQ(velora_ts_set_logger(nullptr), VELORA_TS_OK);
  int lines = 0;
  for (const Counter& counter : counters) {
    lines += counter.lines;
    EXPECT_EQ(counter.released, 1);
  }
  EXPECT_EQ(lines, threads * linesOfEach);
}

TEST_F(HostLogger, IsNotCalledAtTheEndOfTheProcessAndNothingElseOfTheHost) {
  const auto endWithTables = [&] {
    EXPECT_EQ(velora_ts_set_logger(nullptr), VELORA_TS_OK);
    EXPECT_EQ(Run(true), "");
    velora_ts_logging* left = nullptr;
    EXPECT_EQ(velora_ts_create_logging("i", 1, nullptr, 0, &left), VELORA_TS_OK);
    EXPECT_EQ(HostSide::Install(velora_ts_set_logger, side.Logger()), VELORA_TS_OK);
    side.hook = [](const std::string& entry, velora_ts_answer*) {
      std::cerr << entry << " was called\n";
      return VELORA_TS_OK;
    };
    std::exit(testing::Test::HasFailure() ? 1 : 0);
  };
  System::SetVariable("VELORA_LOG_FILE", (folder / "log").string());
  EXPECT_EXIT(endWithTables(), testing::ExitedWithCode(0), "^$");
}

}  // namespace
