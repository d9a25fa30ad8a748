// What events, stats, parameters and runs --where answer.

#include "ToolTest.h"
#include "support/Patterns.h"

namespace {

// A session of two grids on two days, on the first of two instruments, and a run and an event of none on the second.
constexpr const char* recorded = R"(
INSERT INTO sessions VALUES (11, 's', 'Veldmar 3', 'pc', '2026-10', '', '', ''), (12, 't', 'Other', 'pc', '2026-10', '',
  '', '');
INSERT INTO activities VALUES (11, 'aa', 'Screening', '');
INSERT INTO activity_versions VALUES (11, 'av', 11, 'Grids', '2.0', ''), (12, 'aw', 11, 'Holes', '2.1', '');
INSERT INTO executions VALUES
  (11, 'aaaa0000-1', NULL, 11, 11, 11, 'session', '', 5, '2026-10-01T22:00:00.000000Z'),
  (12, 'aaaa0000-2', 11, 11, 11, NULL, 'grid 1', '', 0, '2026-10-01T22:00:01.000000Z'),
  (13, 'aaaa0000-3', 12, 11, 11, 12, 'hole, 7', '', 0, '2026-10-01T22:00:02.000000Z'),
  (14, 'bbbb0000-1', NULL, 14, 12, 12, 'alone', '', 5, '2026-10-03T00:00:00.000000Z');
INSERT INTO statuses VALUES (11, 11, 11, 14, '2026-10-02T03:00:00.000000Z'), (12, 12, 11, 14, '2026-10-02T03'),
  (13, 13, 11, 14, '2026-10-02T03'), (14, 14, 12, 14, '2026-10-03T01');
INSERT INTO events VALUES (11, 11, 13, NULL, 'Image', '2026-10-01T22:10:00.000000Z'),
  (12, 11, 12, NULL, 'Focus', '2026-10-01T23:00:00.000000Z'),
  (13, 11, 13, NULL, 'Image', '2026-10-02T02:12:00.000000Z'),
  (14, 12, 14, NULL, 'Image', '2026-10-03T00:10:00.000000Z'),
  (15, 12, NULL, NULL, 'Idle', '2026-10-03T00:20:00.000000Z'),
  (16, 11, 13, NULL, 'Image', '2026-10-02T02:11:00.000000Z');
INSERT INTO parameters VALUES (11, 1, 'Dose', 'double', NULL, 10), (11, 2, 'Stage X', 'text', '1.50', NULL),
  (11, 3, 'Good', 'bool', NULL, 1), (12, 1, 'Defocus', 'double', NULL, -2), (13, 1, 'Dose', 'int', NULL, 50),
  (13, 2, 'Dose', 'double', 'NaN:7ff8000000000000', NULL), (13, 3, 'Note', 'text', 'it''s and or', NULL),
  (14, 1, 'Dose', 'text', '40.5', NULL), (14, 2, 'Good', 'bool', NULL, 0), (15, 1, 'Dose', 'text', 'none', NULL),
  (16, 1, 'Dose', 'double', NULL, 20);
)";

class Ask : public ToolTest {
 protected:
  Ask() {
    BringUp();
    folder.Write("recorded.sql", recorded);
    folder.Write("TSAL.config",
                 "<TSAL><Database Backend='sqlite3' Connection='ts.db'/><Unit Parameter='Defocus' Text='µm'/></TSAL>");
    EXPECT_EQ(Shell("sqlite3 -bail ts.db < recorded.sql"), 0) << said;
  }
  /// What matches of what the tool says on standard output, one after the other.
  std::string Found(const std::string& arguments, const char* pattern, const std::string& zone = "UTC") {
    EXPECT_EQ(Shell("TZ=" + zone + " velora-ts " + arguments), 0) << arguments << said;
    std::string all;
    for (const auto& match : MatchesIn(said, pattern)) {
      all += (all.empty() ? "" : " ") + match[1];
    }
    return all;
  }
};

TEST_F(Ask, SelectsEvents) {
  static constexpr struct {
    const char* arguments;
    const char* numbers;
  } rows[] = {
      {"--since 2026-10-01 --until 2026-11", "11 12 16 13 14 15"},
      {"--since '2026-10-02 02:10' --until '2026-10-02 02:12'", "16"},
      {"--since 2026-10 --until 2026-11 --instrument Other", "14 15"},
      {"--since 2026-10 --until 2026-11 --activity Grids", "11 12 16 13"},
      {"--since 2026-10 --until 2026-11 --activity Holes", "11 16 13 14"},
      {"--activity Screening --name Focus", "12"},
      {"--where 'Dose > 40'", "13 14"},
      {"--where 'Dose > 50'", ""},
      {"--where 'Dose < 10'", ""},
      {"--where 'Dose <= 10'", "11"},
      {"--where 'Dose >= 50' --where 'Dose <= 10'", ""},  // NaN is neither
      {"--where 'Dose != 10'", "16 13 14 15"},
      {"--where 'Dose = 40.50'", "14"},
      {"--where \"Dose = '40.50'\"", ""},
      {"--where 'Dose = none'", "15"},
      {"--where \"Dose < 'o' and Dose > '4'\"", "14 15"},
      {"--where 'Stage X = 1.5 and Good = true'", "11"},
      {"--where 'Good = true and Dose = 50'", ""},  // in two events
      {"--where \"Note='it''s and or'and Dose>40\"", "13"},
      {"--where 'Note = it'\"'\"'s' --name Image", ""},
      {"--where '\"Good\" != true'", "14"},
  };
  for (const auto& [arguments, numbers] : rows) {
    const std::string words = std::string("events ") + arguments;
    EXPECT_EQ(Found(words + " --json", "\"number\":(\\d+)"), numbers) << arguments;
    EXPECT_EQ(Found(words + " --csv", "\n(\\d+),"), numbers) << arguments;
  }
}

TEST_F(Ask, FindsRunsByTheirEvents) {
  static constexpr struct {
    const char* arguments;
    const char* runs;
  } rows[] = {
      {"--where 'Dose > 30'", "b a"},
      {"--where 'Dose > 40 and Note != 1'", "a"},
      {"--where 'Dose > 30' --limit 1", "b"},
      {"--where 'Dose < 30' --limit 1", "a"},  // counts what is listed
      {"--since 2026-10-01 --until 2026-10-03", "a"},
      {"--where 'Defocus = -2' --where 'Dose = 10'", ""},  // in two events
  };
  for (const auto& [arguments, runs] : rows) {
    EXPECT_EQ(Found(std::string("runs --json ") + arguments, "guid\":\"([ab])"), runs) << arguments;
  }
}

TEST_F(Ask, ShowsEventsWithTheirPlaces) {
  const std::string words = "events --since 2026-10-01 --until 2026-10-02 ";
  EXPECT_EQ(Tool(words + "--csv"), 0);
  EXPECT_EQ(said,
            "\uFEFFnumber,at,run,execution,node,activity,event,instrument,path,Dose,Stage X,Good,Defocus\r\n"
            "11,2026-10-01T22:10:00.000000Z,aaaa0000-1,aaaa0000-3,\"hole, 7\",Holes,Image,Veldmar 3,"
            "\"session > grid 1 > hole, 7\",10,1.50,true,\r\n"
            "12,2026-10-01T23:00:00.000000Z,aaaa0000-1,aaaa0000-2,grid 1,,Focus,Veldmar 3,session > grid 1,,,,-2\r\n");
  EXPECT_EQ(Tool(words + "--json --name Image"), 0);
  EXPECT_EQ(said,
            "[\n{\"number\":11,\"at\":\"2026-10-01T22:10:00.000000Z\",\"name\":\"Image\",\"execution\":\"aaaa0000-3\","
            "\"node\":\"hole, 7\",\"run\":\"aaaa0000-1\",\"instrument\":\"Veldmar 3\",\"path\":[\"session\",\"grid 1\","
            "\"hole, 7\"],\"parameters\":[{\"name\":\"Dose\",\"kind\":\"double\",\"value\":10},{\"name\":\"Stage X\","
            "\"kind\":\"text\",\"value\":\"1.50\"},{\"name\":\"Good\",\"kind\":\"bool\",\"value\":true}]}\n]\n");
  EXPECT_EQ(Tool("events --since 2026-10-03 --until 2026-10-04"), 0);
  EXPECT_TRUE(Matches(said, ".*  alone +Image  Dose=40.5  Good=false\n.* Idle +Dose=none\n")) << said;
}

TEST_F(Ask, SaysWhatNumbersAreLike) {
  static constexpr struct {
    const char* arguments;
    const char* zone;
    const char* pattern;
    const char* found;
  } rows[] = {
      {"Dose --json", "UTC", "(\"all\":.*)",
       "\"all\":{\"name\":\"all\",\"first_at\":\"2026-10-01T22:10:00.000000Z\",\"last_at\":\"2026-10-03T00:10:00."
       "000000Z"
       "\",\"count\":4,\"min\":10,\"q05\":11.5,\"q25\":17.5,\"median\":30.25,\"q75\":42.875,\"q95\":48.574999999999996,"
       "\"max\":50,"
       "\"mean\":30.125,\"deviation\":18.350181652143576,\"drift\":null},"},
      {"Dose --json", "UTC", "not_counted\":(\\d)", "2"},
      {"Dose --json --by run", "UTC", "(\"run\":\"[ab]|\"count\":\\d)",
       "\"run\":\"a \"count\":3 \"run\":\"b \"count\":1 \"count\":4"},
      {"Dose --by day", "UTC", "(2026-10-0\\d +\\d)", "2026-10-01       1 2026-10-02       2 2026-10-03       1"},
      {"Dose --by day", "IST-5:30", "(2026-10-0\\d +\\d)", "2026-10-02       3 2026-10-03       1"},
      {"Dose --by month --digits 3", "UTC", "\n(2026.*)",
       "2026-10            4   10  11.5  17.5    30.2  42.9  48.6   50  30.1       18.4"},
      {"Dose --by activity --json", "UTC", "name\":\"(.*?)\",\"f", "Holes 2.1 all"},
      {"Dose --since 2026-10-02 --until 2026-10-04 --json", "UTC", "drift\":(.*?)\\}", "30.5 30.5 null"},
      {"Dose --since 2026-10-02 --until 2026-10-04 --by instrument --json", "UTC", "drift\":(.*?)\\}",
       "null 25 30.5 null"},  // Other, Veldmar 3, all, before
      {"Dose --since 2026-10-02 --until 2026-10-03 --against 2026-10-03..2026-10-04 --by day", "UTC", "\n(.*)",
       "2026-10-02       2    20  21.5  27.5      35  42.5  48.5    50    35    21.2132   -5.5 "
       "all              2    20  21.5  27.5      35  42.5  48.5    50    35    21.2132   -5.5 "
       "before           1  40.5  40.5  40.5    40.5  40.5  40.5  40.5  40.5 "
       "before: from 2026-10-03 00:00:00+00:00 to before 2026-10-04 00:00:00+00:00 "
       "not counted: 1 value that is no finite number "},
      {"Defocus --by month", "UTC", "^(.*) +count", "Defocus [µm] by month "},
      {"'Stage X'", "UTC", "\nall +(.*)", "1  1.5  1.5   1.5     1.5   1.5   1.5  1.5   1.5"},
  };
  for (const auto& [arguments, zone, pattern, found] : rows) {
    EXPECT_EQ(Found(std::string("stats ") + arguments, pattern, zone), found) << arguments << said;
  }
}

TEST_F(Ask, ListsTheNamesOfParameters) {
  EXPECT_EQ(
      Found("parameters --since 2026-10 --until 2026-11", "\n(.*)"),
      "Defocus [µm]      1  double              -2   -2  2026-10-01 23:00:00+00:00  2026-10-01 23:00:00+00:00  Focus "
      "Dose              6  double, int, text   10   50  2026-10-01 22:10:00+00:00  2026-10-03 00:20:00+00:00  "
      "Idle, Image"
      " Good              2  bool                         2026-10-01 22:10:00+00:00  2026-10-03 00:10:00+00:00  Image"
      " Note              1  text                         2026-10-02 02:12:00+00:00  2026-10-02 02:12:00+00:00  Image"
      " Stage X           1  text               1.5  1.5  2026-10-01 22:10:00+00:00  2026-10-01 22:10:00+00:00  "
      "Image ");
  EXPECT_EQ(Found("parameters alone --json", "(\\{.*)"),
            "{\"name\":\"Dose\",\"events\":[\"Image\"],\"kinds\":[\"text\"],\"count\":1,\"min\":40.5,\"max\":40.5,"
            "\"first_at\":\"2026-10-03T00:10:00.000000Z\",\"last_at\":\"2026-10-03T00:10:00.000000Z\"}, "
            "{\"name\":\"Good\",\"events\":[\"Image\"],\"kinds\":[\"bool\"],\"count\":1,\"min\":null,\"max\":null,"
            "\"first_at\":\"2026-10-03T00:10:00.000000Z\",\"last_at\":\"2026-10-03T00:10:00.000000Z\"}");
}

TEST_F(Ask, NamesWhatWasExpected) {
  static constexpr struct {
    const char* arguments;
    int code;
    const char* said;
  } rows[] = {
      {"events --where 'Dose 40'", 2, "expected one of = != < <= > >= after 'Dose 40'"},
      {"events --where 'Dose == 40'", 2, "and not '==' after 'Dose'"},
      {"events --where '> 40'", 2, "expected the name of a parameter;"},
      {"events --where ' '", 2, "expected the name of a parameter;"},
      {"events --where 'Dose > 40 and'", 2, "expected the name of a parameter after 'Dose > 40 and'"},
      {"events --where 'Dose > 40 or Note = 1'", 2, "expected a number, or a text in quotes, after 'Dose >'"},
      {"events --where 'Dose = 40 Note = 1'", 2, "expected \"and\" or the end after 'Dose = 40 Note'"},
      {"events --where 'Dose ='", 2, "expected a value after 'Dose ='"},
      {"events --where \"Note = 'x\"", 2, "expected a second '"},
      {"events --where 'dosis > 3'", 1, "no event has a parameter named 'dosis'; expected a name, such as 'Dose', "},
      {"events --where 'Stage Y > 3 and Dose > 1'", 1, "named 'Stage Y'; expected a name, such as 'Stage X', "},
      {"events --name image", 1, "no event is named 'image'; expected a name, such as 'Image', "},
      {"events --where 'Note = 1' --until 2026-10-02", 0,
       "has a parameter named 'Note'; the newest in the store is of 2"},
      {"stats dose", 1, "expected a name, such as 'Dose', "},
      {"stats Defocus --since 2026-10-02", 0,
       "has a parameter named 'Defocus'; the newest in the store is of 2026-10-0"},
      {"stats Dose --against 2026-10", 2, "--against '2026-10': expected two times"},
      {"runs --where 'Dosis = 3'", 1, "expected a name, such as 'Dose', "},
      {"show alone --columns Dosis", 1, "expected a name, such as 'Dose', "},
      {"show alone --columns Defocus", 0, "has a parameter named 'Defocus'; the newest in the store is of 2026-10-0"},
      {"export --since 2026-10-02 --until '2026-10-02 12:00'", 0,
       "it has 2 events of 1 run that started before; velora-ts events shows them:\nrun aaaa0000-1 \"session\""},
      {"parameters --name Imago", 1, "expected a name, such as 'Image', "},
      {"events --json --csv", 2, "--json excludes --csv"},
  };
  for (const auto& [arguments, code, words] : rows) {
    EXPECT_EQ(Tool(arguments), code) << arguments;
    EXPECT_TRUE(Says(words)) << arguments << ": " << said;
  }
}

}  // namespace
