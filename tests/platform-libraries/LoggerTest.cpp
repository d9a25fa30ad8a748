// The default logger. It opens its target once in a process: each of these cases needs one of its own.

#include "support/ScratchFolder.h"

#include <VeloraInfraLogging/Logger.h>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <regex>
#include <thread>

namespace {

using Quor::Velora::Infra::Logging::Logger;
using namespace std::string_literals;

/// A log with TIME for each time that has the form.
std::string Timeless(const std::string& log) {
  static const std::regex time(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{6}[+-]\d\d:\d\d)");
  return std::regex_replace(log, time, "TIME");
}

TEST(LoggerOfTheHost, WritesALineForEachTextAndThreadWhateverIsInIt) {
  static const std::pair<std::string, std::string> rows[] = {
      {"x\n\r\t\0\x01\x1b[2J\x1f\x7f"s, "x\\n\\r\\t\\x00\\x01\\x1b[2J\\x1f\\x7f"},
      {"100% {} {0} \x80\xff \\n", "100% {} {0} \x80\xff \\n"}};
  const ScratchFolder folder;
  setenv("VELORA_LOG_FILE", folder.Write("log", "before\n").c_str(), 1);
  std::string expected = "before\n";
  for (const auto& [message, line] : rows) {
    Logger::GetInstance()->WriteInfo(L"S\u00e4\n\u20ac\U0001F52C", message);
    setenv("VELORA_LOG_FILE", (folder / "too late").c_str(), 1);
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
  const std::regex line("TIME \\[info\\] \\[a\\] " + std::string(5'000, 'x') + "\n");
  EXPECT_EQ(std::regex_replace(Timeless(ContentOf(folder / "log")), line, "."), expected + std::string(100, '.'));
}

TEST(LoggerOfTheHost, MakesAFileThatOnlyOwnerAndGroupCanRead) {
  const ScratchFolder folder;
  umask(0);
  setenv("VELORA_LOG_FILE", (folder / "new/log").c_str(), 1);
  Logger::GetInstance()->WriteInfo(L"a", "text");
  EXPECT_EQ(status(folder / "new/log").permissions(), std::filesystem::perms{0640});
}

TEST(LoggerOfTheHost, WritesToStandardErrorWhenNoFileIsNamed) {
  setenv("VELORA_LOG_FILE", "", 1);
  testing::internal::CaptureStderr();
  Logger::GetInstance()->WriteInfo(L"a", "text");
  EXPECT_EQ(Timeless(testing::internal::GetCapturedStderr()), "TIME [info] [a] text\n");
}

TEST(LoggerOfTheHost, NamesAFileThatCannotBeUsedAndTriesAgainWithTheNextLine) {
  for (const std::string target : {"/dev/null/log", "/", "/dev/full", "/dev/full"}) {
    setenv("VELORA_LOG_FILE", target.c_str(), 1);
    try {
      Logger::GetInstance()->WriteInfo(L"a", "text");
      ADD_FAILURE() << target;
    } catch (const std::runtime_error& error) {
      const std::regex words("'" + target + "' .VELORA_LOG_FILE. cannot be opened|written to .*'/dev/full'");
      EXPECT_TRUE(std::regex_search(error.what(), words)) << error.what();
    }
  }
}

}  // namespace
