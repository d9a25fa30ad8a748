// Runs the example host as a person would, and looks at what stands in the database afterwards.

#include "support/Query.h"
#include "support/ScratchFolder.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <tuple>
#include <utility>
#include <vector>

namespace {

using std::string_literals::operator""s;

struct Outcome {
  int exitCode;
  std::string output;
};

class RecordTiltSeries : public testing::Test {
 protected:
  /// Runs a command of the shell in the scratch folder.
  Outcome Run(const std::string& command) const {
    const std::string output = (folder / "output.txt").string();
    const std::string line = "cd '" + folder.path.string() + "' && " + command + " > '" + output + "' 2>&1 < /dev/null";
    const int status = std::system(line.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ContentOf(output)};
  }

  /// Records files into the scratch folder's "record".
  Outcome Record(const std::string& arguments, const std::string& environment = "") const {
    return Run(environment + " '" RECORD_TILT_SERIES "' --data record " + arguments);
  }

  /// Writes a file for each content: "0.mdoc", "1.mdoc"...
  std::string WriteAll(const std::vector<std::string>& contents) const {
    std::string names;
    for (std::size_t i = 0; i < contents.size(); ++i) {
      names += " " + folder.Write(std::to_string(i) + ".mdoc", contents[i]).filename().string();
    }
    return names;
  }

  std::string Recorded(const std::string& statement) const { return Query(folder / "record/ts.db", statement); }

  /// What a series and its sections say: "NODE/EVENT/PARAMETER=VALUE;...".
  std::string Readings(const std::string& file) const {
    return Recorded(
        "SELECT group_concat(said, ';') FROM (SELECT r.node || '/' || event || '/' || parameter || '=' || "
        "COALESCE(value_text, CAST(value_number AS INTEGER)) AS said FROM readings r "
        "JOIN executions e ON e.execution_id = r.root_id WHERE e.node = '" +
        file + "' ORDER BY event_id, position)");
  }

  /// The newest statuses of a series and its sections, in the order of their creation.
  std::string Statuses(const std::string& file) const {
    return Recorded(
        "SELECT group_concat(status, ' ') FROM (SELECT x.status FROM execution_states x JOIN executions e "
        "ON e.execution_id = x.root_id WHERE e.node = '" +
        file + "' ORDER BY x.execution_id)");
  }

  ScratchFolder folder;
};

void ExpectNamed(const std::string& output, const std::vector<std::string>& words) {
  for (const std::string& word : words) {
    EXPECT_NE(output.find(word), std::string::npos) << "'" << word << "' is not named in: " << output;
  }
}

TEST_F(RecordTiltSeries, EveryLineOfAFileStandsInTheDatabase) {
  folder.Write(
      "all.mdoc",
      "Voltage = 300\n[T = by hand = yes]\n[T =   [two]]\n[ZValue = 3]\nA = 1\nB=b\nA = 2.5\n[T = between]\nE =\n"
      "[FrameSet = 0]\nFramesOnDisk = 5\n[MontSection = 7]\n[ZValue = 3]\n  L  = 3 \xB5m\nZ = a\0b\n"s);
  const Outcome outcome = Record("all.mdoc");
  EXPECT_EQ(outcome.exitCode, 0) << outcome.output;
  ExpectNamed(outcome.output, {"all.mdoc: 4 sections, 15 parameters recorded\n", "Recorded 1 series, 4 sections, ",
                               " 15 parameters in ", "in the folder " + (folder / "record\n").string()});
  EXPECT_EQ(Recorded("SELECT parent_id, activity_version, node, x.description, status FROM execution_states x "
                     "ORDER BY execution_id"),
            "NULL|TiltSeries|all.mdoc|" + (folder / "all.mdoc").string() +
                "|14\n1|Section|ZValue 3|all.mdoc|14\n1|Section|FrameSet 0|all.mdoc|14\n"
                "1|Section|MontSection 7|all.mdoc|14\n1|Section|ZValue 3|all.mdoc|14\n");
  EXPECT_EQ(Recorded("SELECT execution_id, r.event, parameter, kind, value_text, value_number FROM readings r "
                     "ORDER BY execution_id, event_id, position"),
            "1|Series|Voltage|int|NULL|300\n1|Series|T|text|by hand = yes|NULL\n1|Series|T|text|  [two]|NULL\n"
            "1|Series|T|text|between|NULL\n2|ZValue|A|int|NULL|1\n2|ZValue|B|text|b|NULL\n"
            "2|ZValue|A|double|NULL|2.5\n2|ZValue|E|text||NULL\n2|ZValue|FramesOnDisk|bool|NULL|0\n"
            "3|FrameSet|FramesOnDisk|int|NULL|5\n3|FrameSet|FramesOnDisk|bool|NULL|0\n"
            "4|MontSection|FramesOnDisk|bool|NULL|0\n5|ZValue|L|text|\\x3320b56d|NULL\n"
            "5|ZValue|Z|text|\\x610062|NULL\n5|ZValue|FramesOnDisk|bool|NULL|0\n");
}

TEST_F(RecordTiltSeries, AValueIsANumberOnlyWhereThatWritesTheSameText) {
  const std::pair<std::string, std::vector<std::string>> rows[] = {
      {"int", {"7", "-7", "0", "2147483647", "-2147483648"}},
      {"double", {"-0", "3.1", "-54.0123", "1e+05", "2147483648", "1e-300", "0.30000000000000004"}},
      {"text", {"3.10", "3.0", "1e5",  "1e+999", "3000000000", ".5",  "5.",         "0.1000000000000000055",
                "007",  "+1",  "0x1F", "1,5",    "nan",        "inf", "-inf",       "",
                "7 ",   " 7",  "\t7",  "a = b",  "[T = x]",    "]",   "3 \xC2\xB5m"}}};
  std::string content = "[ZValue = 0]\n";
  for (const auto& row : rows) {
    for (const std::string& text : row.second) {
      content += "Key = " + text + "\n";
    }
  }
  folder.Write("values.mdoc", content);
  ASSERT_EQ(Record("values.mdoc").exitCode, 0);
  int position = 0;
  for (const auto& [kind, texts] : rows) {
    for (const std::string& text : texts) {
      const std::string stored = Recorded(
          "SELECT kind || COALESCE(value_text, printf('%!.17g', value_number)) FROM readings WHERE position = " +
          std::to_string(++position));
      if (kind == "text") {
        EXPECT_EQ(stored, kind + text + "\n");
      } else {
        ASSERT_EQ(stored.substr(0, kind.size()), kind) << "for " << text;
        EXPECT_EQ(std::stod(stored.substr(kind.size())), std::stod(text)) << "for " << text;
      }
    }
  }
}

TEST_F(RecordTiltSeries, LineEndsMarksAndBlankLinesMakeNoDifference) {
  const std::vector<std::string> contents = {
      "V = 1\n[ZValue = 0]\nA = x\n", "\xEF\xBB\xBFV = 1\r\n[ZValue = 0]\r\nA = x\r\n",
      "\xEF\xBB\xBF\n\n \t\nV = 1\n\r\n[ZValue = 0]\n\nA = x", "V = 1\n  [ZValue = 0]\t\n\tA = x\r"};
  const Outcome outcome = Record(WriteAll(contents));
  EXPECT_EQ(outcome.exitCode, 0) << outcome.output;
  for (std::size_t i = 0; i < contents.size(); ++i) {
    const std::string file = std::to_string(i) + ".mdoc";
    EXPECT_EQ(Readings(file), file + "/Series/V=1;ZValue 0/ZValue/A=x;ZValue 0/ZValue/FramesOnDisk=0\n") << contents[i];
  }
}

TEST_F(RecordTiltSeries, ABrokenLineEndsItsFileAndKeepsWhatCameBefore) {
  const std::pair<std::string, std::string> rows[] = {
      {"nothing", "'nothing' is not understood; expected Key = value"},
      {" \t= 3", "is not understood"},
      {"[ZValue = 2", "'[ZValue = 2' has no ']'"},
      {"[", "'[' has no ']'"},
      {"]", "']' is not understood"},
      {"[ZValue]", "'[ZValue]' is not understood"},
      {"[= 2]", "'[= 2]' is not understood"},
      {"[zvalue = 2]", "'[zvalue = 2]' opens an unknown section; expected [ZValue = n]"},
      {"[Zoom = 2]", "expected [ZValue = n], [FrameSet = n], [MontSection = n] or [T = ...]"},
      {"\x1b]0;\a\xFF\0"s, "'?]0;?\xFF?' is not understood"},
      {std::string(200, 'x'), ":6: '" + std::string(80, 'x') + "...' is not understood"},
      {"A = " + std::string(std::size_t{1024} * 1024, 'x'), "line is longer than expected"}};
  std::vector<std::string> contents;
  for (const auto& [line, message] : rows) {
    contents.push_back("V = 1\n[ZValue = 0]\nA = 1\n[ZValue = 1]\nB = 2\n" + line + "\nC = 3\n[ZValue = 9]\n");
  }
  contents.emplace_back("[ZValue = 0]\n");
  const Outcome outcome = Record(WriteAll(contents));
  EXPECT_EQ(outcome.exitCode, 1);
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    SCOPED_TRACE("line '" + rows[i].first.substr(0, 200) + "'");
    const std::string file = std::to_string(i) + ".mdoc";
    ExpectNamed(outcome.output, {(folder / file).string() + ":6: ", rows[i].second});
    EXPECT_EQ(Statuses(file), "4 14 4\n");
    EXPECT_EQ(Readings(file), file +
                                  "/Series/V=1;ZValue 0/ZValue/A=1;ZValue 0/ZValue/FramesOnDisk=0;"
                                  "ZValue 1/ZValue/B=2;ZValue 1/ZValue/FramesOnDisk=0\n");
  }
  EXPECT_EQ(Statuses(std::to_string(std::size(rows)) + ".mdoc"), "14 14\n");
}

TEST_F(RecordTiltSeries, WhatIsNoSeriesIsNamedAndTheOthersAreRecorded) {
  folder.Write("empty.mdoc", "");
  folder.Write("broken.mdoc", "V = 1\nnothing");
  folder.Write("blank 'n\" [q].mdoc", "[ZValue = 0]");
  create_directory(folder / "folder.mdoc");
  const Outcome outcome =
      Record("folder.mdoc missing.mdoc broken.mdoc /proc/self/mem empty.mdoc \"blank 'n\\\" [q].mdoc\"");
  EXPECT_EQ(outcome.exitCode, 1);
  ExpectNamed(outcome.output, {"folder.mdoc: cannot be read: it is a folder", "missing.mdoc: cannot be opened: No such",
                               "broken.mdoc:2: 'nothing'", "/proc/self/mem:1: cannot be read", "Not everything"});
  EXPECT_EQ(Recorded("SELECT node, status FROM execution_states"),
            "broken.mdoc|4\nmem|4\nempty.mdoc|14\nblank 'n\" [q].mdoc|14\nZValue 0|14\n");
  EXPECT_EQ(Readings("broken.mdoc"), "broken.mdoc/Series/V=1\n");
  EXPECT_EQ(Record("missing.mdoc").exitCode, 1);
  EXPECT_EQ(Record("").exitCode, 2);
}

TEST_F(RecordTiltSeries, WithoutAWorkingTsItSaysThatNothingWasRecorded) {
  using Row = std::tuple<std::string, std::string, int, std::string>;
  const Row rows[] = {Row("none", "", 3, "TS is not available"), Row("TSAL.config", "<TSAL>", 3, "record/TSAL.config"),
                      Row("ts.db", "This is no database, and long enough to see it.", 3, "record/TSAL.config"),
                      Row("activities.xml", "<Activities>\n<Activity/></Activities>", 1, "activities.xml', line 2")};
  for (const auto& [file, content, exitCode, words] : rows) {
    SCOPED_TRACE(file);
    remove_all(folder / "record");
    create_directory(folder / "record");
    folder.Write("record/" + file, content);
    const Outcome outcome = Record(WriteAll({"[ZValue = 0]", "A = 1"}), file == "none" ? "TSAL_SERVICE=absent" : "");
    EXPECT_EQ(outcome.exitCode, exitCode);
    ExpectNamed(outcome.output, {"Nothing was recorded: ", words});
    if (exitCode == 1) {
      EXPECT_EQ(Recorded("SELECT (SELECT COUNT(*) FROM executions) || (SELECT COUNT(*) FROM events)"), "00\n");
    } else {
      EXPECT_EQ(ContentOf(folder / "record/ts.db"), file == "ts.db" ? content : "");
    }
  }
}

TEST_F(RecordTiltSeries, AFailureOfTsNamesTheFileAndIsOverWithIt) {
  Record(WriteAll({"[ZValue = 0]\nA = 1\n", "V = 1\n[ZValue = 1]\nA = refused\nB = 1\n[ZValue = 2]\n"}));
  soci::session(soci::sqlite3, "dbname=" + (folder / "record/ts.db").string())
      << "CREATE TRIGGER refusal BEFORE INSERT ON parameters WHEN NEW.value_text = 'refused' "
         "BEGIN SELECT RAISE(ABORT, 'no room'); END";
  const Outcome outcome = Record("1.mdoc 0.mdoc");
  EXPECT_EQ(outcome.exitCode, 1);
  ExpectNamed(outcome.output, {"/1.mdoc: ", "no room", "Recorded 2 series, 2 sections, 2 events, 3 parameters in "});
  EXPECT_EQ(Recorded("SELECT status FROM execution_states WHERE execution_id > 5"), "4\n4\n14\n14\n");
}

TEST_F(RecordTiltSeries, TheDataFolderIsMadeAndWhatItHasIsKept) {
  create_directory(folder / "in");
  folder.Write("in/one.mdoc", "[ZValue = 0]\n");
  EXPECT_EQ(Run("'" RECORD_TILT_SERIES "' in/one.mdoc --data deep/er").exitCode, 0);
  EXPECT_EQ(Query(folder / "deep/er/ts.db", "SELECT description FROM executions WHERE parent_id IS NULL"),
            (folder / "in/one.mdoc\n").string());
  create_directory(folder / "record");
  folder.Write("record/instrument.xml", "mine");
  EXPECT_EQ(Record("in/one.mdoc").exitCode, 0);
  EXPECT_EQ(Recorded("SELECT configuration_text FROM configurations"), "mine\n");
  for (const char* file : {"TSAL.config", "activities.xml"}) {
    EXPECT_EQ(ContentOf(folder / "record" / file), ContentOf(folder / "deep/er" / file));
    EXPECT_NE(ContentOf(folder / "record" / file), "") << file;
  }
  EXPECT_FALSE(exists(folder / "TSAL.config"));
}

TEST_F(RecordTiltSeries, FramesAreOnDiskWhereTheFileIs) {
  create_directory(folder / "sub");
  folder.Write("sub/deep.tif", "");
  folder.Write("beside.tif", "");
  const std::pair<char, std::vector<std::string>> rows[] = {
      {'1', {"D:\\frames\\beside.tif", "/no/beside.tif", "sub/deep.tif", (folder / "sub/deep.tif").string()}},
      {'0', {"D:\\frames\\missing.tif", "deep.tif", "TSAL.config", "sub", "D:\\frames\\", ""}}};
  std::string content;
  std::string expected;
  for (const auto& [onDisk, paths] : rows) {
    for (const std::string& path : paths) {
      content += "[ZValue = 0]\nSubFramePath = " + path + "\n";
      expected += path + "|NULL\nNULL|" + onDisk + "\n";
    }
  }
  folder.Write("frames.mdoc", content);
  ASSERT_EQ(Record("frames.mdoc").exitCode, 0);
  EXPECT_EQ(Recorded("SELECT value_text, value_number FROM readings ORDER BY event_id, position"), expected);
}

TEST_F(RecordTiltSeries, AHostThatKnowsTheLibraryByItsFileHasAllHangUnderOneExecution) {
  const auto manage = [this](const std::string& library, const std::string& environment = "") {
    return Run(environment + " '" MANAGED_HOST "' --data record --under 'grid 3' --library '" + library + "'" +
               WriteAll({"[ZValue = 0]\n", "V = 1\n"}));
  };
  const Outcome outcome = manage(VELORA_LIBRARY);
  EXPECT_EQ(outcome.exitCode, 0) << outcome.output;
  EXPECT_EQ(Recorded("SELECT activity_version, node, status, parent_id, root_id FROM execution_states"),
            "AutoFunction|grid 3|14|NULL|1\nTiltSeries|0.mdoc|14|1|1\nSection|ZValue 0|14|2|1\n"
            "TiltSeries|1.mdoc|14|1|1\n");
  EXPECT_EQ(manage(VELORA_LIBRARY, "TSAL_SERVICE=absent").exitCode, 3);
  const Outcome missing = manage("none.so");
  EXPECT_EQ(missing.exitCode, 1);
  ExpectNamed(missing.output, {"none.so' cannot be loaded"});
}

TEST_F(RecordTiltSeries, OnATerminalABarShowsBytesReadAndElsewhereALineEachFile) {
  const std::string files = WriteAll({"A = 1\nB = 2\n", "A = 1\nB = 2\n"});
  const Outcome shown = Run("script -qec \"'" RECORD_TILT_SERIES "' --data record" + files + "\" /dev/null");
  EXPECT_EQ(shown.exitCode, 0) << shown.output;
  ExpectNamed(shown.output, {"\r[#######                       ] 25 % 0.mdoc", "Recorded 2 series"});
  EXPECT_EQ(shown.output.find("parameters recorded"), std::string::npos) << shown.output;
  const Outcome told = Record(files);
  ExpectNamed(told.output, {"/0.mdoc: 0 sections, 2 parameters recorded\n", "/1.mdoc: 0 sections, 2 parameters"});
  EXPECT_EQ(told.output.find('\r'), std::string::npos) << told.output;
}

TEST_F(RecordTiltSeries, AFileTenTimesAsLargeTakesNoMoreMemory) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "a sanitizer takes memory of its own";
#endif
  const auto peakAfter = [&](int sections) {
    std::ofstream large(folder / "large.mdoc");  // not made in memory: a child starts with what its parent took
    for (int line = 0; line < sections * 50; ++line) {
      large << (line % 50 == 0 ? "[ZValue = 0]\n" : "") << "Key = " << std::string(800, 'x') << '\n';
    }
    large.close();
    EXPECT_EQ(Record("large.mdoc").exitCode, 0);
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    return usage.ru_maxrss;
  };
  const long small = peakAfter(20);
  EXPECT_LT(peakAfter(200), small + 4096) << "kilobytes, with a file of 8 MB; " << small << " with one of 0.8 MB";
}

}  // namespace
