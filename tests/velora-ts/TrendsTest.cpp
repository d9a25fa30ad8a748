// Trends, against what stats says of the same events, and against all numbers sorted.

#include "CommandLine.h"
#include "ToolTest.h"
#include "asking/Statistics.h"
#include "asking/TrendSummary.h"
#include "asking/Trends.h"
#include "store/asking/Numbers.h"
#include "store/reading/Reader.h"
#include "store/settings/Settings.h"
#include "support/TestStore.h"

#include <cmath>
#include <random>
#include <sstream>

namespace {

using namespace Velora::Ts;
using Velora::Store::Reader;

/// A folder with a store in which two instruments recorded numbers, texts that are numbers, and values that are none.
class TrendsTest : public WithTool<InFolder> {
 protected:
  /// @param folder of the store; @param first and @param last the numbers of its events, one every 37 minutes.
  void Fill(const std::string& name, int first, int last, const std::string& begin = "2026-01-01") {
    if (first == 1) {
      create_directories(folder / name);
      folder.Write(name + "/TSAL.config", "<TSAL><Database Backend='sqlite3' Connection='ts.db'/></TSAL>");
      EXPECT_EQ(Tool("prepare --config " + name), 0) << said;
      OpenFile(folder / name / "ts.db")->RunScript(R"(
        INSERT INTO sessions SELECT column1, 's' || column1, column2, '', '2026', '', '', '' FROM (VALUES
          (1, 'Scope 7'), (2, 'Veldmar 3'), (3, 'Scope 7'));
        INSERT INTO activities VALUES (1, 'a', 'Tomography', ''), (2, 'b', 'Screening', '');
        INSERT INTO activity_versions VALUES (1, 'v', 1, 'TiltSeries', '1.0', ''), (2, 'w', 1, 'Section', '1.0', ''),
          (3, 'x', 2, 'Autofocus', '', ''), (4, 'y', 2, 'Grid', '2.1', '');
        INSERT INTO executions SELECT column1, 'guid ' || column1, column2, column3, 1, column4, '', '', 5, '2026'
          FROM (VALUES (1, NULL, 1, 1), (2, 1, 1, 2), (3, 2, 1, 3), (4, NULL, 4, 4));)");
    }
    OpenFile(folder / name / "ts.db")
        ->RunScript(
            "BEGIN; CREATE TEMP TABLE added AS WITH RECURSIVE n(n) AS (VALUES (" + std::to_string(first) +
            ") UNION ALL SELECT n + 1 FROM n WHERE n < " + std::to_string(last) +
            ") SELECT n, strftime('%Y-%m-%dT%H:%M:%S', '" + begin +
            "', (n * 37) || ' minutes') || printf('.%06dZ', n % 1000000) AS at FROM n;"
            "INSERT INTO events SELECT n, n % 3 + 1, CASE WHEN n % 7 THEN n % 4 + 1 END, NULL, 'Image', at "
            "FROM added;"
            "INSERT INTO parameters SELECT n, 1, 'Dose', CASE WHEN n % 17 = 0 THEN 'bool' WHEN n % 11 = 0 THEN "
            "'text' ELSE 'double' END, CASE WHEN n % 17 = 0 THEN NULL WHEN n % 13 = 0 THEN "
            "'NaN:7ff8000000000000' WHEN n % 11 = 0 THEN '3.10' END, CASE WHEN n % 17 = 0 THEN 1 WHEN n % 13 = 0 "
            "OR n % 11 = 0 THEN NULL ELSE n * 7919 % 1009 / 8.0 - n / 1000.0 END FROM added;"
            "INSERT INTO parameters SELECT n, 2, 'Other', 'int', NULL, n FROM added; COMMIT");
  }
  /// The store of a folder: the file, or a copy of it on the server of the tests.
  Velora::Store::Database StoreOf(const std::string& name) {
    if (TestStore::OnServer()) {
      const TestStore store(folder / name / "ts.db");
      store.Make();
      create_directories(folder / (name + "-server"));
      folder.Write(name + "-server/TSAL.config", "<TSAL><Database " + store.Attributes("") + "/></TSAL>");
      EXPECT_EQ(Tool("copy " + name + ' ' + name + "-server"), 0) << said;
      return Velora::Store::ReadSettings((folder / (name + "-server")).string()).database;
    }
    return Velora::Store::ReadSettings((folder / name).string()).database;
  }
};

/// What SQL says of a document, which is `doc` there.
std::string InDocument(const std::string& json, const std::string& question) {
  const SqlConnection sql = Velora::Store::ConnectToMemory();
  sql->RunScript("CREATE TABLE documents (doc)");
  sql->Run("INSERT INTO documents VALUES (?1)", json);
  return Query(*sql, question);
}

const char* const groupsOfDocument =
    "SELECT json_extract(g.value, '$.name'), SUM(json_extract(b.value, '$.count')), MIN(json_extract(b.value, "
    "'$.min')), MAX(json_extract(b.value, '$.max')) FROM documents, json_each(doc, '$.groups') g, json_each(g.value, "
    "'$.bins') b GROUP BY 1 ORDER BY 1";

std::string InWords(const Statistics& statistics) {
  std::ostringstream words;
  for (const GroupSummary& group : statistics.groups) {
    const auto& [count, lowest, highest, quantiles, mean, deviation] = group.distribution;
    words << group.name << '|' << count << '|' << lowest << '|' << highest << '\n';
  }
  return words.str();
}

struct Asked {
  const char *from, *before, *instrument, *activity, *by;
};
const Asked questions[] = {
    {"", Velora::Store::afterAllTimes, "", "", ""},
    {"", Velora::Store::afterAllTimes, "", "", "instrument"},
    {"2026-01-08T03:11", Velora::Store::afterAllTimes, "", "", "activity"},
    {"", "2026-01-20T23:59:12.5", "Scope 7", "", "activity"},
    {"2026-01-03T05", "2026-01-21", "", "Tomography", "activity"},
    {"2026-01-03T05", "2026-02-21", "Veldmar 3", "Section", "instrument"},
    {"", Velora::Store::afterAllTimes, "", "Screening", ""},
    {"", Velora::Store::afterAllTimes, "no such", "", "instrument"},
    {"2040", Velora::Store::afterAllTimes, "", "", "activity"},
};

void ExpectAsStats(Trends& trends, const Velora::Store::Database& database) {
  for (const auto& [from, before, instrument, activity, by] : questions) {
    const Velora::Store::EventWindow window{from, before, instrument, activity};
    const std::string json = trends.Answer({{1, database}}, {"Dose", window, by}) + '}';
    const GroupBy way = *by == 'i' ? GroupBy::Instrument : *by == 'a' ? GroupBy::Activity : GroupBy::Nothing;
    const Statistics statistics = StatisticsOf(Reader(database), window, "Dose", way, std::nullopt);
    SCOPED_TRACE(std::string(from) + ' ' + before + ' ' + instrument + ' ' + activity + ' ' + by);
    EXPECT_EQ(InDocument(json, groupsOfDocument), InWords(statistics));
    EXPECT_EQ(
        InDocument(json, "SELECT json_extract(doc, '$.count'), json_extract(doc, '$.not_counted') FROM documents"),
        std::to_string(statistics.all.distribution.count) + '|' + std::to_string(statistics.others) + '\n');
    EXPECT_LE(std::stoi(InDocument(json,
                                   "SELECT COUNT(*) FROM documents, json_each(doc, '$.groups') g, "
                                   "json_each(g.value, '$.bins') b")),
              2000);
  }
}

/// A finite number and its time, in the order of both.
using Number = std::pair<std::string, double>;
std::vector<Number> NumbersOf(const SqlConnection& sql) {
  std::vector<Number> numbers;
  const auto rows = sql->PrepareShort(
      "SELECT at, COALESCE(value_number, 3.1) FROM events JOIN parameters p USING (event_id) WHERE p.name = 'Dose' AND "
      "p.kind <> "
      "\'bool\' AND COALESCE(value_text, '') NOT LIKE 'NaN%' ORDER BY 1, 2");
  while (rows->Next()) {
    numbers.emplace_back(rows->Text(0), rows->Number(1));
  }
  return numbers;
}

/// Compares each bin of one group with all its numbers.
void ExpectAsSorted(const std::string& json, const std::vector<Number>& all) {
  const SqlConnection sql = Velora::Store::ConnectToMemory();
  const double error = std::stod(InDocument(json, "SELECT json_extract(doc, '$.quantile_error') FROM documents"));
  sql->RunScript("CREATE TABLE documents (doc)");
  sql->Run("INSERT INTO documents VALUES (?1)", json);
  const auto bins = sql->Prepare(
      "SELECT b.value ->> 'from', b.value ->> 'to', b.value ->> 'count', b.value ->> 'q05', b.value ->> 'q25', b.value "
      "->> 'median', b.value ->> 'q75', b.value ->> 'q95' FROM documents, json_each(doc, '$.groups[0].bins') b");
  std::size_t seen = 0;
  while (bins->Next()) {
    std::vector<double> numbers;
    for (const auto& [at, number] : all) {
      if (at >= bins->Text(0) && at < bins->Text(1)) {
        numbers.push_back(number);
      }
    }
    std::sort(numbers.begin(), numbers.end());
    ASSERT_EQ(static_cast<std::size_t>(bins->Integer(2)), numbers.size()) << bins->Text(0);
    seen += numbers.size();
    for (std::size_t part = 0; part < 5; ++part) {
      const double quantile = bins->Number(static_cast<int>(part) + 3);
      const double place = Velora::Store::Distribution::parts[part] * static_cast<double>(numbers.size() - 1);
      const double off = error * static_cast<double>(numbers.size());
      const auto below = static_cast<std::size_t>(std::max(0.0, std::floor(place - off)));
      const auto above = std::min(static_cast<std::size_t>(std::ceil(place + off)), numbers.size() - 1);
      if (error == 0) {
        EXPECT_DOUBLE_EQ(quantile, std::lerp(numbers[below], numbers[above], place - std::floor(place)));
      } else {
        EXPECT_LE(numbers[below], quantile) << bins->Text(0) << ' ' << part;
        EXPECT_GE(numbers[above], quantile) << bins->Text(0) << ' ' << part;
      }
    }
  }
  EXPECT_EQ(seen, all.size());
}

TEST_F(TrendsTest, AreAsStatsSaysAndAsAllNumbersSorted) {
  Fill("one", 1, 2000);
  const Velora::Store::Database database = StoreOf("one");
  Trends trends;
  ExpectAsStats(trends, database);
  ExpectAsSorted(trends.Answer({{1, database}}, {"Dose", {}, ""}) + '}', NumbersOf(OpenFile(folder / "one" / "ts.db")));
}

TEST_F(TrendsTest, LeadToTheRunsOfTheExtremes) {
  Fill("one", 1, 300);
  const Velora::Store::Database database = StoreOf("one");
  Trends trends;
  const std::string json = trends.Answer({{1, database}}, {"Dose", {}, "instrument"}) + '}';
  const std::string told = InDocument(
      json,
      "SELECT json_extract(g.value, '$.name'), json_extract(b.value, '$.from'), json_extract(b.value, '$.to'), "
      "json_extract(b.value, '$.min'), json_extract(b.value, '$.lowest.run'), json_extract(b.value, '$.max'), "
      "json_extract(b.value, '$.highest.run') FROM documents, json_each(doc, '$.groups') g, json_each(g.value, "
      "'$.bins') b");
  std::istringstream lines(told);
  int bins = 0;
  for (std::string line; std::getline(lines, line); ++bins) {
    std::vector<std::string> cells;
    std::istringstream words(line);
    for (std::string cell; std::getline(words, cell, '|');) {
      cells.push_back(cell);
    }
    for (const std::size_t extreme : {3U, 5U}) {
      EXPECT_EQ(
          Query(folder / "one" / "ts.db",
                "SELECT r.guid FROM events v JOIN sessions n USING (session_id) JOIN parameters p USING (event_id) "
                "LEFT JOIN executions x USING (execution_id) LEFT JOIN executions r ON r.execution_id = x.root_id "
                "WHERE n.instrument = '" +
                    cells[0] + "' AND at >= '" + cells[1] + "' AND at < '" + cells[2] +
                    "' AND p.name = 'Dose' AND p.kind <> 'bool' AND COALESCE(value_text, '') NOT LIKE 'NaN%' ORDER "
                    "BY COALESCE(value_number, 3.1)" +
                    (extreme == 3 ? "" : " DESC") + ", v.event_id LIMIT 1"),
          cells[extreme + 1] + '\n')
          << line;
    }
  }
  EXPECT_GT(bins, 20);
}

constexpr int many = 130000;  // more than are read one by one, so they are summarised, and the summary is kept

TEST_F(TrendsTest, OfManyEventsAreKeptAndStayTrue) {
  if (TestStore::OnServer()) {
    GTEST_SKIP() << "what follows adds to the file; OfManyEventsStayTrueAfterLateRows adds to a server";
  }
  Fill("one", 1, many, "2017-01-01");
  const Velora::Store::Database database = StoreOf("one");
  const std::filesystem::path file = folder / "one" / "ts.db";
  Trends trends;
  EXPECT_TRUE(trends.ReadAhead({1, database}, "Dose"));  // a portion, behind which the first answer reads on
  const auto expectTrue = [&](const char* when) {
    SCOPED_TRACE(when);
    ExpectAsStats(trends, database);
    ExpectAsSorted(trends.Answer({{1, database}}, {"Dose", {}, ""}) + '}', NumbersOf(OpenFile(file)));
  };
  expectTrue("first");
  Fill("one", many + 1, many + 500, "2017-01-01");
  expectTrue("newer events");
  Fill("one", many + 501, many + 900, "2016-06-01");
  expectTrue("newer events of older times");
  remove_all(folder / "one");
  Fill("one", 1, many + 901, "2016-12-01");
  expectTrue("another store in its place");
  EXPECT_FALSE(trends.ReadAhead({1, database}, "Dose"));
}

// On a server, rows become visible when their transaction ends, also behind rows with higher keys.
TEST_F(TrendsTest, OfManyEventsStayTrueAfterLateRows) {
  if (!TestStore::OnServer()) {
    GTEST_SKIP() << "one transaction at a time writes to a file";
  }
  Fill("one", 1, many, "2017-01-01");
  const Velora::Store::Database database = StoreOf("one");
  const TestStore store(folder / "one" / "ts.db");
  const SqlConnection late = store.Open(), other = store.Open();
  const long long session = *other->Find<long long>(
      "INSERT INTO sessions (guid, instrument, host, began_at, text1, text2, text3) VALUES ('own', 'Scope 7', '', "
      "'2026', '', '', '') RETURNING session_id");
  const auto add = [session](const SqlConnection& sql, int events) {
    sql->RunScript("WITH e AS (INSERT INTO events (session_id, name, at) SELECT " + std::to_string(session) +
                   ", 'Image', '2026-03-01T00:00:00.000000Z' FROM generate_series(1, " + std::to_string(events) +
                   ") RETURNING event_id) INSERT INTO parameters SELECT event_id, 1, 'Dose', 'double', NULL, event_id "
                   "% 1009 FROM e");
  };
  Trends trends;
  const auto expectTrue = [&](const char* when) {
    SCOPED_TRACE(when);
    ExpectAsSorted(trends.Answer({{1, database}}, {"Dose", {}, ""}) + '}', NumbersOf(other));
  };
  expectTrue("first");
  late->RunScript("BEGIN");
  add(late, 7);
  add(other, 3000);
  expectTrue("while the transaction runs");
  add(other, 3000);
  expectTrue("while it still runs");
  late->RunScript("COMMIT");
  expectTrue("late rows");
  add(other, 3000);
  expectTrue("when they are old");
  ExpectAsStats(trends, database);
}

TEST_F(TrendsTest, CountRecordsOfTwoStoresOnce) {
  Fill("one", 1, 100);
  Fill("two", 1, 200);
  const auto countOf = [&](const std::vector<TrendStore>& stores) {
    Trends trends;
    return InDocument(trends.Answer(stores, {"Other", {}, ""}) + '}',
                      "SELECT json_extract(doc, '$.count'), json_extract(doc, '$.left_out') FROM documents");
  };
  const Velora::Store::Database one = StoreOf("one"), two = StoreOf("two");
  EXPECT_EQ(countOf({{1, one}, {2, two}}), "300|[]\n");
  EXPECT_NE(
      countOf({{1, one}, {2, {Velora::Store::Database::Kind::Sqlite, "/nowhere/ts.db"}}}).find("100|[{\"store\":2"),
      std::string::npos);
  if (TestStore::OnServer()) {
    return;  // what follows changes the files
  }
  const std::string guid = Query(folder / "one" / "ts.db", "SELECT guid FROM stores");
  OpenFile(folder / "two" / "ts.db")
      ->RunScript("DROP TRIGGER stores_numbers; INSERT INTO stores VALUES (20000000001, '" +
                  guid.substr(0, guid.size() - 1) + "', '2026', NULL, NULL)");
  EXPECT_EQ(countOf({{1, one}, {2, two}}), "200|[{\"store\":1,\"why\":\"its records are also in store 2\"}]\n");
  EXPECT_EQ(countOf({{1, one}}), "100|[]\n");
}

TEST(TrendSummary, IsBoundedAndItsErrorHolds) {
  struct Row {
    const char* what;
    long long span, step;  // of the times
    int sources;
    bool isExact, isWhole;
  };
  constexpr long long hour = 3600000000;
  const Row rows[] = {{"few", hour, 7 * hour, 1, true, true},
                      {"at one time", 0, 0, 1, false, true},
                      {"over years", 300000 * hour, hour, 3, false, true},
                      {"over longer than expected", hour, hour, 3, false, true},
                      {"of too many sources", 300000 * hour, hour, 3000, false, false}};
  for (const auto& [what, span, step, sources, isExact, isWhole] : rows) {
    SCOPED_TRACE(what);
    const int count = isExact ? 1000 : 220000;
    std::mt19937 chance(1);
    std::normal_distribution<double> likely(-3, 0.5);
    std::vector<double> numbers;
    TrendSummary one(span, 500), other(span, 500);
    for (int number = 0; number < count; ++number) {
      numbers.push_back(likely(chance));
      TrendSummary& summary = number % 3 == 0 ? one : other;
      const int source = summary.NumberOf({number % sources + 1, {0}});
      summary.Add((number * 7919LL % count) * step, source, numbers.back(), number + 1);
    }
    one.Take(other);
    TrendCell all;
    std::size_t points = 0;
    for (const auto& [place, cell] : one.AllCells()) {
      points += cell.Points();
      all.Take(cell);
    }
    std::sort(numbers.begin(), numbers.end());
    EXPECT_LE(points, 200000U);
    EXPECT_LE(one.AllCells().size(), 20000U);
    EXPECT_EQ(one.IsWhole(), isWhole);
    EXPECT_EQ(all.Count(), numbers.size());
    EXPECT_EQ(all.Lowest().number, numbers.front());
    EXPECT_EQ(all.Highest().number, numbers.back());
    EXPECT_EQ(all.Error() == 0, isExact);
    EXPECT_LT(all.Error() / count, 0.06);
    const auto quantiles = all.Quantiles();
    for (std::size_t part = 0; part < quantiles.size(); ++part) {
      const double place = Velora::Store::Distribution::parts[part] * (count - 1);
      const auto found =
          static_cast<double>(std::lower_bound(numbers.begin(), numbers.end(), quantiles[part]) - numbers.begin());
      EXPECT_LE(std::abs(found - place), all.Error() + 1) << part;
    }
  }
}

}  // namespace
