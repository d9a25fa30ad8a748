// Runs the example host as a person would, and looks at what stands in the database afterwards.

#include "support/Query.h"
#include "support/ScratchFolder.h"
#include "support/TestStore.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <vector>

namespace {

using std::string_literals::operator""s;
using Words = std::vector<std::string>;

class RecordTiltSeries : public testing::Test {
 protected:
  // The hosts load the library that would end one that is inside on two threads at once.
  RecordTiltSeries() { setenv("LD_LIBRARY_PATH", VELORA_LIBRARY_FOLDER, 1); }

  /// Runs a command of the shell in the scratch folder, expects its exit code and the words, and gives what it said.
  std::string Run(const std::string& command, int exitCode, const Words& words = {}) const {
    const std::string line = "cd '" + folder.path.string() + "' && " + command + " > output 2>&1 < /dev/null";
    const int status = std::system(line.c_str());
    std::string output = ContentOf(folder / "output");
    EXPECT_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : -1, exitCode) << output;
    for (const std::string& word : words) {
      EXPECT_NE(output.find(word), std::string::npos) << "'" << word << "' is not named in: " << output;
    }
    return output;
  }

  /// Records files into the scratch folder's "out/record".
  std::string Record(const std::string& files, int exitCode = 0, const Words& words = {}) const {
    return Run("'" RECORD_TILT_SERIES "' --data out/record " + files, exitCode, words);
  }

  std::string Recorded(const std::string& statement) const { return Query(folder / "out/record/ts.db", statement); }

  const ScratchFolder folder;
};

TEST_F(RecordTiltSeries, EveryLineOfAFileStandsInTheDatabase) {
  folder.Write("all.mdoc",
               "Voltage = 300\n[T = by hand = yes]\n[T =   [two]]\n[ZValue = 3]\nA = 1\nB=7 \nA = 2.5\n[T = between]\n"
               "E =\n[FrameSet = 0]\nFramesOnDisk = 5\n[MontSection = 7]\n[ZValue = 3]\n  L  = 3 \xB5m\nZ = a\0b\n"s);
  const std::string output =
      Record("all.mdoc", 0,
             {"all.mdoc: 4 sections, 15 parameters recorded\n", "in the folder " + (folder / "out/record\n").string()});
  EXPECT_EQ(output.find('\r'), std::string::npos) << "a progress bar where no terminal is: " << output;
  EXPECT_EQ(Recorded("SELECT parent_id, activity_version, node, x.description, status FROM execution_states x"),
            "NULL|TiltSeries|all.mdoc|" + (folder / "all.mdoc").string() +
                ", content b023a2e8fa7bffad|14\n1|Section|ZValue 3|all.mdoc|14\n1|Section|FrameSet 0|all.mdoc|14\n"
                "1|Section|MontSection 7|all.mdoc|14\n1|Section|ZValue 3|all.mdoc|14\n");
  EXPECT_EQ(Recorded("SELECT execution_id, r.event, parameter, kind, COALESCE(value_text, value_number) "
                     "FROM readings r ORDER BY execution_id, event_id, position"),
            "1|Series|Voltage|int|300\n1|Series|T|text|by hand = yes\n1|Series|T|text|  [two]\n"
            "1|Series|T|text|between\n2|ZValue|A|int|1\n2|ZValue|B|text|7 \n2|ZValue|A|double|2.5\n"
            "2|ZValue|E|text|\n2|ZValue|FramesOnDisk|bool|0\n3|FrameSet|FramesOnDisk|int|5\n"
            "3|FrameSet|FramesOnDisk|bool|0\n4|MontSection|FramesOnDisk|bool|0\n5|ZValue|L|text|\\x3320b56d\n"
            "5|ZValue|Z|text|\\x610062\n5|ZValue|FramesOnDisk|bool|0\n");
}

TEST_F(RecordTiltSeries, AValueIsANumberOnlyWhereThatWritesTheSameText) {
  std::string content, expected;
  for (const std::string row :
       {"int|7", "int|2147483647", "int|-2147483648", "double|3.1", "double|1e+05", "double|2147483648", "text|3.10",
        "text|1e5", "text|1e+999", "text|5.", "text|007", "text|+1", "text|0x1F", "text|1,5", "text|inf"}) {
    const std::string text = row.substr(row.find('|') + 1);
    content += text + " = " + text + "\n";
    expected += row + "\n";
  }
  folder.Write("values.mdoc", content);
  Record("values.mdoc");
  EXPECT_EQ(Recorded("SELECT kind, parameter FROM readings WHERE COALESCE(value_text = parameter, "
                     "value_number = CAST(parameter AS REAL)) ORDER BY position"),
            expected);
}

TEST_F(RecordTiltSeries, WhatIsBrokenIsNamedWithItsLineAndEverythingElseIsRecorded) {
  const std::pair<std::string, std::string> rows[] = {
      {"\xEF\xBB\xBFV = 1\r\n[ZValue = 0]\r\n[ZValue = 1]\r\nB = 2\r\n", ": 2 sections, 4 parameters recorded\n"},
      {"\xEF\xBB\xBF\n\n \t\nV = 1\n  [ZValue = 0]\t\n\n[ZValue = 1]\n\tB = 2\r", ": 2 sections, 4 parameters"},
      {"nothing", ":5: 'nothing' is not understood; expected Key = value"},
      {" \t= 3", ":5: ' \u2409= 3' is not understood"},
      {"[", ":5: '[' has no ']'"},
      {"[ZValue]", ":5: '[ZValue]' is not understood"},
      {"[zvalue = 2]", ":5: '[zvalue = 2]' opens an unknown section; expected [ZValue = n], [FrameSet = n], [Mont"},
      {"\x1b]0;\a\xFF\0"s + std::string(200, 'x'),
       ":5: '\u241b]0;\u2407\uFFFD\u2400" + std::string(73, 'x') + "...' is not understood"},
      {"A = " + std::string(std::size_t{1024} * 1024, 'x'), ":5: line is longer than expected"}};
  Words words = {"/folder.mdoc: cannot be read: it is a folder; expected a regular file",
                 "/fifo.mdoc: cannot be read: it is a FIFO; expected a regular file",
                 "/missing.mdoc: cannot be opened: No such", "/proc/self/mem:1: cannot be read", "Not everything"};
  std::string expected = "4|mem|NULL|NULL\n14|empty.mdoc|NULL|NULL\n";
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    const auto& [text, message] = rows[i];
    const std::string name = std::to_string(i) + " 'n\" [q]", status = i < 2 ? "14" : "4";  // the first are whole
    const std::string file = name + "\x1b.mdoc";
    folder.Write(file, i < 2 ? text : "V = 1\n[ZValue = 0]\n[ZValue = 1]\nB = 2\n" + text + "\nC = 3\n[ZValue = 9]\n");
    words.push_back((folder / (name + "\u241b.mdoc")).string() + message);
    expected += status + "|" + file + "|V|1\n14|ZValue 0|FramesOnDisk|0\n" + status + "|ZValue 1|B|2\n" + status +
                "|ZValue 1|FramesOnDisk|0\n";
  }
  folder.Write("empty.mdoc", "");
  create_directory(folder / "folder.mdoc");
  Run("mkfifo fifo.mdoc", 0);
  const std::string output =
      Record("folder.mdoc fifo.mdoc missing.mdoc /proc/self/mem empty.mdoc ?\\ *.mdoc", 1, words);
  EXPECT_EQ(output.find('\x1b'), std::string::npos) << output;
  EXPECT_EQ(Recorded("SELECT status, x.node, parameter, CAST(value_number AS INTEGER) FROM execution_states x "
                     "LEFT JOIN readings r USING (execution_id) ORDER BY execution_id, event_id, position"),
            expected);
}

TEST_F(RecordTiltSeries, WithoutAWorkingTsItSaysThatNothingWasRecorded) {
  folder.Write("a.mdoc", "[ZValue = 0]");
  Record("", 2);
  Record("missing.mdoc", 1);
  Run("TSAL_SERVICE=absent '" RECORD_TILT_SERIES "' a.mdoc a.mdoc", 3, {"Nothing was recorded: TS is not available"});
  folder.Write("out/record/activities.xml", "<Activities>\n<Activity/></Activities>");
  Record("a.mdoc", 1, {"Nothing was recorded: ", "activities.xml', line 2"});
  EXPECT_EQ(Recorded("SELECT (SELECT COUNT(*) FROM executions) + (SELECT COUNT(*) FROM events)"), "0\n");
  folder.Write("out/record/ts.db", "This is no database.");
  Record("a.mdoc a.mdoc", 3, {"Nothing was recorded: TS is not available", "record/TSAL.config"});
  EXPECT_EQ(ContentOf(folder / "out/record/ts.db"), "This is no database.");
}

TEST_F(RecordTiltSeries, AFailureOfTsNamesTheFileAndIsOverWithIt) {
  folder.Write("0.mdoc", "[ZValue = 0]\nA = 1\n");
  folder.Write("1.mdoc", "V = 1\n[ZValue = 1]\nA = refused\nB = 1\n[ZValue = 2]\n");
  Record("0.mdoc");
  OpenFile(folder / "out/record/ts.db")
      ->RunScript(
          "CREATE TRIGGER refusal BEFORE INSERT ON parameters WHEN NEW.value_text = 'refused' "
          "BEGIN SELECT RAISE(ABORT, 'no room'); END");
  Record("1.mdoc 0.mdoc", 1, {"/1.mdoc: ", "no room", "Recorded 2 series, 2 sections, 2 events, 3 parameters in "});
  EXPECT_EQ(Recorded("SELECT group_concat(status, ' ') FROM execution_states"), "14 14 4 4 14 14\n");
}

TEST_F(RecordTiltSeries, TheDataFolderIsMadeAndWhatItHasIsKept) {
  create_directory(folder / "in");
  folder.Write("in/one.mdoc", "");
  Run("cd in && '" RECORD_TILT_SERIES "' one.mdoc --data ../out/record", 0);
  folder.Write("out/record/instrument.xml", "mine");
  Record("in/one.mdoc");
  const std::string file = (folder / "in/one.mdoc").string() + ", content cbf29ce484222325";
  EXPECT_EQ(Recorded("SELECT description, configuration_text = 'mine' FROM executions "
                     "JOIN configurations USING (session_id)"),
            file + "|0\n" + file + "|1\n");
}

TEST_F(RecordTiltSeries, SaysAtItsStartWhatIsThereAlready) {
  folder.Write("it's a.mdoc", "[ZValue = 0]\nA = 1\n");
  folder.Write("-b.mdoc", "[ZValue = 0]\nnothing");
  const std::string name = "it's a.mdoc: ", there = "a series of this name and content is there already, as run ";
  struct Row {
    std::string content;  // of the first file from then on
    Words said;
    Words notSaid = {};
  };
  for (const Row& row :
       {Row{"[ZValue = 0]\nA = 1\n", {}, {there}},
        Row{"[ZValue = 0]\nA = 1\n", {name + there, "-b.mdoc: " + there, ", which did not finish; it"}},
        Row{"[ZValue = 0]\nA = 2\n", {"-b.mdoc: " + there}, {name + there}}}) {
    folder.Write("it's a.mdoc", row.content);
    const std::string output = Record("\"it's a.mdoc\" ./-b.mdoc", 1, row.said);
    for (const std::string& words : row.notSaid) {
      EXPECT_EQ(output.find(words), std::string::npos) << output;
    }
    EXPECT_LT(output.rfind(there) + 1, output.find("parameters recorded") + 1) << output;
  }
  EXPECT_EQ(Recorded("SELECT COUNT(*) FROM executions WHERE parent_id IS NULL"), "6\n");
}

TEST_F(RecordTiltSeries, FramesAreOnDiskWhereTheFileIs) {
  create_directory(folder / "sub");
  folder.Write("sub/deep.tif", "");
  folder.Write("beside.tif", "");
  std::string content;
  for (const char* path : {"D:\\frames\\beside.tif", "/no/beside.tif", "sub/deep.tif", "D:\\frames\\missing.tif",
                           "deep.tif", "TSAL.config", "sub", "D:\\frames\\", ""}) {
    content += "[ZValue = 0]\nSubFramePath = "s + path + "\n";
  }
  folder.Write("frames.mdoc", content);
  Record("frames.mdoc");
  EXPECT_EQ(Recorded("SELECT value_number FROM readings WHERE kind = 'bool'"), "1\n1\n1\n0\n0\n0\n0\n0\n0\n");
}

TEST_F(RecordTiltSeries, AHostThatKnowsTheLibraryByItsFileHasAllHangUnderOneExecution) {
  folder.Write("a.mdoc", "[ZValue = 0]\n");
  folder.Write("b.mdoc", "V = 1\n");
  const std::string host = "'" MANAGED_HOST "' --data out/record --under 'grid 3' a.mdoc b.mdoc --library ";
  Run(host + VELORA_LIBRARY, 0, {"The parent of all series is grid 3"});
  EXPECT_EQ(Recorded("SELECT activity_version, node, status, parent_id, root_id FROM execution_states"),
            "AutoFunction|grid 3|14|NULL|1\nTiltSeries|a.mdoc|14|1|1\nSection|ZValue 0|14|2|1\n"
            "TiltSeries|b.mdoc|14|1|1\n");
  Run("TSAL_SERVICE=absent " + host + VELORA_LIBRARY, 3, {"Nothing was recorded"});
  Run(host + "none.so", 1, {"none.so' cannot be loaded"});
}

TEST_F(RecordTiltSeries, OnATerminalABarShowsBytesRead) {
  folder.Write("a\x1b.mdoc", "A = 1\nB = 2\n");
  const std::string output = Run("script -qec \"'" RECORD_TILT_SERIES "' a*.mdoc a*.mdoc\" /dev/null", 0,
                                 {"\r[#######                       ] 25 % a\u241b.mdoc", "Recorded 2 series"});
  EXPECT_EQ(output.find("parameters recorded"), std::string::npos) << output;
}

TEST_F(RecordTiltSeries, AFileTenTimesAsLargeTakesNoMoreMemory) {
#ifdef WITH_SANITIZERS
  GTEST_SKIP() << "a sanitizer takes memory of its own";
#endif
  folder.Write("section", "[ZValue = 0]\nKey = " + std::string(40'000, 'x') + "\n");
  const auto peakAfter = [this](const std::string& sections) {
    Run("{ for n in $(seq " + sections + "); do cat section; done > large.mdoc; }", 0);
    Record("large.mdoc");
    rusage usage{};
    return getrusage(RUSAGE_CHILDREN, &usage) == 0 ? usage.ru_maxrss : -1;
  };
  const long small = peakAfter("20");
  EXPECT_LT(peakAfter("200"), small + 4096) << "kilobytes, with a file of 8 MB; " << small << " with one of 0.8 MB";
}

}  // namespace
