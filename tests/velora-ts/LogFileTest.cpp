// The lines of logs in many forms, broken ones too, and of logs that grow while they are read.

#include "support/ScratchFolder.h"
#include "support/System.h"

#include <VeloraLogFile/LogFiles.h>

#include <gtest/gtest.h>

namespace {

using namespace Velora::LogFile;

std::string InWords(const Line& line) {
  return std::to_string(line.at) + '|' + InWords(line.level) + '|' + line.source + '|' + line.text + '\n';
}

/// What is in logs, or why they are refused.
std::string LinesOf(const std::vector<std::string>& files, const std::string& form) try {
  LogFiles lines({files, form.empty() ? LineForm() : LineForm(form), true}, 0, 1'800'000'000'000'000);
  std::string words;
  while (lines.Next()) {
    words += InWords(lines.Current());
  }
  return words;
} catch (const std::exception& reason) {
  return reason.what();
}

class LogFileTest : public testing::Test {
 protected:
  const ScratchFolder folder;
};

TEST_F(LogFileTest, ReadsLinesOfManyForms) {
  if (!System::SetZone("IST-5:30")) {
    GTEST_SKIP() << "the zone of this process is another one";
  }
  std::string longText;
  for (int count = 0; count < 1400; ++count) {
    longText += "\u20AC";
  }
  const struct {
    std::string form;
    std::vector<std::string> files;
    std::string lines;
  } rows[] = {
      // As the default logger writes, and without a source; in another offset; lines that continue, ends of Windows.
      {"",
       {"\xEF\xBB\xBF"
        "2026-11-26T04:42:58.123456+01:00 [error] [Camera] no answer: [3]\r\n  at Read\r\n\r\n"
        "2026-11-26T03:43:00Z [warning] late"},
       "1795664578123456|error|Camera|no answer: [3]\n  at Read\n\n1795664580000000|warning||late\n"},
      // Local times, with a comma. What is not a date is no time; what comes before the first time belongs to no line.
      {"{time} {level} {text}",
       {"begin\n2026-11-26 09:12:58,5  WARN   a\n2026-02-30 09:12:59 INFO b\n"},
       "1795664578500000|warning||a\n2026-02-30 09:12:59 INFO b\n"},
      {"[{time:%d/%b/%Y %H:%M:%S %z}] {*}: {level} ({source}) {text}",
       {"[26/Nov/2026  03:42:58 +0000] 4711: Fatal (a b) c\n[26/Nov/2026 03:42:58 ] 4711: x (a b) c\n"},
       "1795664578000000|error|a b|c\n1795644778000000|info|a b|c\n"},
      {"{time:%s} {text}", {"1795664578.25 all\n"}, "1795664578250000|info||all\n"},
      // Rotated files and those of several programs are read together; the order of equal times is that of the files.
      {"{time:%s} {text}",
       {"5 e\n7 g\n", "1 a\n3 c\n5 f\n", "", "2 b\nb2\n"},
       "1000000|info||a\n2000000|info||b\nb2\n3000000|info||c\n5000000|info||e\n5000000|info||f\n7000000|info||g\n"},
      {"{time:%s} {text}",
       {"1 " + longText + longText + longText + "\n2 b\n"},
       "1000000|info||" + longText.substr(0, 3 * 1364) + "\u2026\n2000000|info||b\n"},
      {"",
       {"\nnot a log\n2026-11-26T04:42:58 error\n"},
       "log file 'FILE' has no line of the form '{time} [{level}] [{source}] {text}'; line 2 is 'not a log'"},
      {"{level} {text}", {}, "log format '{level} {text}': expected {time} and {text}"},
      {"{time} {message}", {}, "log format: {message} is not known; expected {time}, {level}, {source}, {text}, {*}"},
      {"{time} {level}{text}", {}, "log format '{time} {level}{text}': expected text between two fields"},
      {"{time:%H:%M} {text}",
       {},
       "time format '%H:%M': expected %Y or %y, %m or %b, %d, %H, %M, and if there are any %S and %z; or %s"},
      {"{time:%s%f} {text}",
       {},
       "time format '%s%f': expected %Y or %y, %m or %b, %d, %H, %M, and if there are any %S and %z; or %s"},
  };
  for (const auto& [form, contents, lines] : rows) {
    std::vector<std::string> files;
    for (const std::string& content : contents) {
      files.push_back(folder.Write("log" + std::to_string(files.size()), content).string());
    }
    const std::size_t place = lines.find("FILE");
    const std::string expected = place == std::string::npos ? lines : std::string(lines).replace(place, 4, files[0]);
    EXPECT_EQ(LinesOf(files, form), expected) << form;
  }
}

TEST_F(LogFileTest, ReadsATimeThatClocksShowTwiceAsTheFirst) {
  if (!System::SetZone("CET-1CEST,M3.5.0/2,M10.5.0/3")) {
    GTEST_SKIP() << "the zone of this process is another one";
  }
  const TimeForm form("%Y-%m-%d %H:%M");
  for (const auto& [text, utc] : {std::pair<std::string_view, long long>{"2026-10-25 02:30", 1792888200},
                                  {"2026-10-25 03:30", 1792895400},
                                  {"2026-07-01 00:30", 1782858600}}) {
    std::string_view rest = text;
    EXPECT_EQ(form.Read(rest), utc * 1'000'000) << text;
  }
}

TEST_F(LogFileTest, FollowsALogThatGrowsAndIsRotated) {
  const std::filesystem::path path = folder / "log";
  const auto append = [&](const std::string& text) { std::ofstream(path, std::ios::app) << text; };
  append("1 a\n more\n2 b");
  LogFile log(path.string(), LineForm("{time:%s} {text}"), true);
  const auto look = [&] {
    std::string words;
    while (log.Next()) {
      words += InWords(log.Current());
    }
    return words;
  };
  EXPECT_EQ(look(), "1000000|info||a\n more\n");
  append("b\n3 c\n");
  EXPECT_EQ(look(), "2000000|info||bb\n3000000|info||c\n");
  append(" late\n4 d\n5 half");
  rename(path, folder / "log.1");
  EXPECT_EQ(look(), "3000000|info|| late\n4000000|info||d\n");
  append("6 new\n");
  EXPECT_EQ(look() + look(), "5000000|info||half\n6000000|info||new\n");
  std::filesystem::resize_file(path, 0);
  append("7 x\n");
  EXPECT_EQ(look() + look(), "7000000|info||x\n");
  for (const std::string said : {"y", "more than before"}) {
    std::ofstream(path) << "8 " + said + '\n';  // emptied, and grown again by the next look
    EXPECT_EQ(look() + look(), "8000000|info||" + said + '\n');
  }
}

}  // namespace
