// The default logger. It opens its target once in a process: each of these cases needs one of its own.

#include "support/ScratchFolder.h"

#include <VeloraInfraLogging/Logger.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <sstream>
#include <thread>
#include <vector>

namespace {

using Quor::Velora::Infra::Logging::Logger;
using namespace std::string_literals;

/// The lines of a log, each without its time, which must have its form.
std::vector<std::string> LinesOf(const std::string& log) {
  static const std::regex timed(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{6}[+-]\d\d:\d\d )");
  std::vector<std::string> lines;
  std::istringstream stream(log);
  for (std::string line; std::getline(stream, line);) {
    const std::size_t timeLength = std::string("2026-11-24T21:55:03.123456+00:00 ").size();
    EXPECT_TRUE(std::regex_match(line.substr(0, timeLength), timed)) << line;
    lines.push_back(line.substr(std::min(timeLength, line.size())));
  }
  return lines;
}

TEST(LoggerOfTheHost, WritesALineForEachTextWhateverIsInIt) {
  static const struct {
    std::wstring source;
    std::string message, line;
  } rows[] = {
      {L"Velora.TsLogging", ">>Create", "[Velora.TsLogging] >>Create"},
      {L"", "", "[] "},
      {L"S\u00e4ule\n\u20ac \U0001F52C", "100% {} {0}", "[Säule\\n€ 🔬] 100% {} {0}"},
      {L"a", "x\n2026-11-24T21:55:03.123456+00:00 [error] [b] forged",
       "[a] x\\n2026-11-24T21:55:03.123456+00:00 [error] [b] forged"},
      {L"a", "\r\t\0\x01\x1b[2J\x1f\x7f"s, "[a] \\r\\t\\x00\\x01\\x1b[2J\\x1f\\x7f"},
      {L"a", "\x80\xff \\n", "[a] \x80\xff \\n"},
      {L"a", std::string(100'000, 'x'), "[a] " + std::string(100'000, 'x')},
  };
  const ScratchFolder folder;
  const auto logger = Logger::GetInstance();
  setenv("VELORA_LOG_FILE", (folder / "first line.log").c_str(), 1);
  folder.Write("first line.log", "2026-01-01T00:00:00.000000+00:00 before\n");
  for (const auto& row : rows) {
    logger->WriteInfo(row.source, row.message);
    setenv("VELORA_LOG_FILE", (folder / "too late.log").c_str(), 1);
    logger->WriteWarning(row.source, row.message);
    logger->WriteError(row.source, row.message);
  }
  std::vector expected{"before"s};
  for (const auto& row : rows) {
    for (const char* level : {"[info] ", "[warning] ", "[error] "}) {
      expected.push_back(level + row.line);
    }
  }
  EXPECT_EQ(LinesOf(ContentOf(folder / "first line.log")), expected);
}

TEST(LoggerOfTheHost, WritesToStandardErrorWhenNoFileIsNamed) {
  setenv("VELORA_LOG_FILE", "", 1);
  testing::internal::CaptureStderr();
  Logger::GetInstance()->WriteInfo(L"source", "text");
  EXPECT_EQ(LinesOf(testing::internal::GetCapturedStderr()), std::vector{"[info] [source] text"s});
}

TEST(LoggerOfTheHost, NamesAFileThatCannotBeUsedAndTriesAgainWithTheNextLine) {
  const ScratchFolder folder;
  folder.Write("file", "");
  for (const auto& [target, word] : {std::pair(folder.path.string(), "cannot be opened"),
                                     {(folder / "file" / "below.log").string(), "cannot be opened"},
                                     {"/dev/full"s, "cannot be written"},
                                     {"/dev/full"s, "cannot be written"}}) {
    setenv("VELORA_LOG_FILE", target.c_str(), 1);
    std::string error;
    try {
      Logger::GetInstance()->WriteInfo(L"source", "text");
    } catch (const std::runtime_error& raised) {
      error = raised.what();
    }
    EXPECT_NE(error.find("'" + target + "' (VELORA_LOG_FILE)"), std::string::npos) << target << ": " << error;
    EXPECT_NE(error.find(word), std::string::npos) << target << ": " << error;
  }
}

TEST(LoggerOfTheHost, KeepsTheLinesOfThreadsWhole) {
  const ScratchFolder folder;
  setenv("VELORA_LOG_FILE", (folder / "log").c_str(), 1);
  const std::string text(5'000, 'x');
  const auto write = [&text] {
    for (int line = 0; line < 50; ++line) {
      Logger::GetInstance()->WriteInfo(L"a", text);
    }
  };
  std::thread one(write);
  std::thread two(write);
  one.join();
  two.join();
  EXPECT_EQ(LinesOf(ContentOf(folder / "log")), std::vector(100, "[info] [a] " + text));
}

}  // namespace
