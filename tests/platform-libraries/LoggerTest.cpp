// The default logger. It opens its target once in a process: each of these cases needs one of its own.

#include "support/ScratchFolder.h"

#include <VeloraInfraLogging/Logger.h>

#include <gtest/gtest.h>

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

TEST(LoggerOfTheHost, WritesALineForEachTextWhateverIsInIt) {
  static const struct {
    std::wstring source;
    std::string message, line;
  } rows[] = {{L"", "", "[] "},
              {L"S\u00e4ule\n\u20ac \U0001F52C", "100% {} {0}", "[Säule\\n€ 🔬] 100% {} {0}"},
              {L"a", "x\n\r\t\0\x01\x1b[2J\x1f\x7f"s, "[a] x\\n\\r\\t\\x00\\x01\\x1b[2J\\x1f\\x7f"},
              {L"a", "\x80\xff \\n" + std::string(100'000, 'x'), "[a] \x80\xff \\n" + std::string(100'000, 'x')}};
  const ScratchFolder folder;
  const auto logger = Logger::GetInstance();
  setenv("VELORA_LOG_FILE", folder.Write("log", "before\n").c_str(), 1);
  std::string expected = "before\n";
  for (const auto& [source, message, line] : rows) {
    logger->WriteInfo(source, message);
    setenv("VELORA_LOG_FILE", (folder / "too late").c_str(), 1);
    logger->WriteWarning(source, message);
    logger->WriteError(source, message);
    for (const char* level : {"info", "warning", "error"}) {
      expected += "TIME ["s + level + "] " + line + "\n";
    }
  }
  EXPECT_EQ(Timeless(ContentOf(folder / "log")), expected);
}

TEST(LoggerOfTheHost, WritesToStandardErrorWhenNoFileIsNamed) {
  setenv("VELORA_LOG_FILE", "", 1);
  testing::internal::CaptureStderr();
  Logger::GetInstance()->WriteInfo(L"a", "text");
  EXPECT_EQ(Timeless(testing::internal::GetCapturedStderr()), "TIME [info] [a] text\n");
}

TEST(LoggerOfTheHost, NamesAFileThatCannotBeUsedAndTriesAgainWithTheNextLine) {
  for (const auto& [target, word] : {std::pair("/dev/null/log", "opened"), {"/", "opened"}, {"/dev/full", "written"}}) {
    setenv("VELORA_LOG_FILE", target, 1);
    try {
      Logger::GetInstance()->WriteInfo(L"source", "text");
      ADD_FAILURE() << target;
    } catch (const std::runtime_error& error) {
      EXPECT_TRUE(std::regex_search(error.what(), std::regex("'"s + target + "' \\(VELORA_LOG_FILE\\)")))
          << error.what();
      EXPECT_TRUE(std::regex_search(error.what(), std::regex("cannot be "s + word))) << error.what();
    }
  }
}

TEST(LoggerOfTheHost, KeepsTheLinesOfThreadsWhole) {
  const ScratchFolder folder;
  setenv("VELORA_LOG_FILE", (folder / "log").c_str(), 1);
  const std::string text(5'000, 'x');
  std::string expected;
  const auto write = [&text] {
    for (int line = 0; line < 50; ++line) {
      Logger::GetInstance()->WriteInfo(L"a", text);
    }
  };
  std::thread one(write), two(write);
  one.join(), two.join();
  for (int line = 0; line < 100; ++line) {
    expected += "TIME [info] [a] " + text + "\n";
  }
  EXPECT_EQ(Timeless(ContentOf(folder / "log")), expected);
}

}  // namespace
