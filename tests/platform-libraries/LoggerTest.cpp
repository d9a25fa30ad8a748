// The default logger. It opens its target once in a process: each of these cases needs one of its own.

#include "support/Patterns.h"
#include "support/ScratchFolder.h"
#include "support/System.h"

#include <VeloraInfraLogging/Redirect.h>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <future>
#include <thread>

namespace {

using Quor::Velora::Infra::Logging::Level;
using Quor::Velora::Infra::Logging::Logger;
using namespace std::string_literals;

/// A log with TIME for each time that has the form, and one end for its lines.
std::string Timeless(const std::string& log) {
  const std::string time = R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{6}[+-]\d\d:\d\d)";
  return ReplaceMatches(ReplaceMatches(log, time, "TIME"), "\r\n", "\n");
}

TEST(LoggerOfTheHost, WritesALineForEachTextAndThreadWhateverIsInIt) {
  static const std::pair<std::string, std::string> rows[] = {
      {"x\n\r\t\0\x01\x1b[2J\x1f\x7f"s, "x\\n\\r\\t\\x00\\x01\\x1b[2J\\x1f\\x7f"},
      {"100% {} {0} \x80\xff \\n", "100% {} {0} \x80\xff \\n"}};
  const ScratchFolder folder;
  System::SetVariable("VELORA_LOG_FILE", folder.Write("log", "before\n").string());
  std::string expected = "before\n";
  for (const auto& [message, line] : rows) {
    Logger::GetInstance()->WriteInfo(L"S\u00e4\n\u20ac\U0001F52C", message);
    System::SetVariable("VELORA_LOG_FILE", (folder / "too late").string());
    Logger::GetInstance()->WriteWarning(L"", message);
    Logger::GetInstance()->WriteError(L"", message);
    expected += "TIME [info] [Sä\\n€🔬] " + line + "\nTIME [warning] [] " + line + "\nTIME [error] [] " + line + "\n";
  }
  EXPECT_EQ(Timeless(ContentOf(folder / "log")), expected);
  const auto write = [] {
    for (int line = 0; line < 50; ++line) {
      Logger::GetInstance()->WriteInfo(L"a", std::string(5'000, 'x'));
    }
  };
  std::thread one(write), two(write);
  one.join(), two.join();
  const std::string line = "TIME \\[info\\] \\[a\\] " + std::string(5'000, 'x') + "\n";
  EXPECT_EQ(ReplaceMatches(Timeless(ContentOf(folder / "log")), line, "."), expected + std::string(100, '.'));
}

TEST(LoggerOfTheHost, MakesAFileThatOnlyOwnerAndGroupCanRead) {
  if (!System::pathsAreBytes) {
    GTEST_SKIP() << "a file has the access list of its folder here";
  }
  const ScratchFolder folder;
  umask(0);
  System::SetVariable("VELORA_LOG_FILE", (folder / "new/log").string());
  Logger::GetInstance()->WriteInfo(L"a", "text");
  EXPECT_EQ(status(folder / "new/log").permissions(), std::filesystem::perms{0640});
}

TEST(LoggerOfTheHost, WritesToStandardErrorWhenNoFileIsNamed) {
  System::SetVariable("VELORA_LOG_FILE", "");
  testing::internal::CaptureStderr();
  Logger::GetInstance()->WriteInfo(L"a", "text");
  EXPECT_EQ(Timeless(testing::internal::GetCapturedStderr()), "TIME [info] [a] text\n");
}

TEST(LoggerOfTheHost, NamesAFileThatCannotBeUsedAndTriesAgainWithTheNextLine) {
  const std::vector<std::string> targets =
      System::pathsAreBytes ? std::vector<std::string>{"/dev/null/log", "/", "/dev/full", "/dev/full"}
                            : std::vector<std::string>{"C:\\", "what?", "what?"};
  for (const std::string& target : targets) {
    System::SetVariable("VELORA_LOG_FILE", target);
    try {
      Logger::GetInstance()->WriteInfo(L"a", "text");
      ADD_FAILURE() << target;
    } catch (const std::runtime_error& error) {
      const std::string words = "the log file '" + target + "' (VELORA_LOG_FILE)";
      const std::string start = target == "/dev/full" ? "log line cannot be written to " : "";
      EXPECT_EQ(std::string(error.what()).rfind(start + words + (start.empty() ? " cannot be opened" : ""), 0), 0)
          << error.what();
    }
  }
}

TEST(LoggerOfTheHost, GivesItsLinesToAReceiverAsTheyAreUntilItIsTakenAway) {
  const ScratchFolder folder;
  System::SetVariable("VELORA_LOG_FILE", (folder / "log").string());
  const auto logger = Logger::GetInstance();
  const std::string message = "x\n\0\xff"s;
  std::string received;
  VeloraInfraLoggingRedirect([&](Level level, const std::string& source, const std::string& text) {
    received += std::to_string(static_cast<int>(level)) + source + text;
  });
  logger->WriteInfo(L"S\u00e4\n\u20ac\U0001F52C", message);
  Logger::GetInstance()->WriteWarning(L"", message);
  Logger::GetInstance()->WriteError(L"a", message);
  EXPECT_EQ(received, "0Sä\n€🔬" + message + "1" + message + "2a" + message);
  EXPECT_FALSE(exists(folder / "log"));
  VeloraInfraLoggingRedirect([](Level, const std::string&, const std::string& text) { throw std::logic_error(text); });
  EXPECT_THROW(logger->WriteInfo(L"a", "text"), std::logic_error);
  VeloraInfraLoggingRedirect(nullptr);
  logger->WriteInfo(L"a", "text");
  EXPECT_EQ(Timeless(ContentOf(folder / "log")), "TIME [info] [a] text\n");
}

TEST(LoggerOfTheHost, KeepsAReceiverUntilTheLinesThatWereGivenToItHaveReturned) {
  std::promise<void> inside, goOn;
  std::atomic<bool> destroyed = false;
  std::shared_ptr<void> held(nullptr, [&](void*) { destroyed = true; });
  VeloraInfraLoggingRedirect([&, held](Level, const std::string&, const std::string&) {
    VeloraInfraLoggingRedirect([](Level, const std::string&, const std::string&) {});
    inside.set_value();
    goOn.get_future().wait();
    EXPECT_FALSE(destroyed);
  });
  held = nullptr;
  std::thread writer([] { Logger::GetInstance()->WriteInfo(L"a", "text"); });
  inside.get_future().wait();
  VeloraInfraLoggingRedirect(nullptr);
  EXPECT_FALSE(destroyed);
  goOn.set_value();
  writer.join();
  EXPECT_TRUE(destroyed);
}

}  // namespace
