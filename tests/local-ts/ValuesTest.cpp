// Whatever a host hands over comes back the same, and stands in the tables in the form that is documented.

#include "LocalTsTest.h"

#include <bit>
#include <limits>

namespace {

using Values = LocalTsTest;
using namespace std::string_literals;

TEST_F(Values, AnyTextComesBackTheSameAndOrdinaryOnesStandAsTheyAre) {
  static const struct {
    std::string text, stored = text;
  } rows[] = {
      {""},
      {"Ångström 🔬 \xf4\x8f\xbf\xbf"},
      {"it's \"quoted\"'); DROP TABLE events; --"},
      {"line\r\nbreak\t\x01\x7f"},
      {"C:\\x41"},
      {std::string(1'000'000, 'x')},
      {"\\x41", "\\x5c783431"},
      {"a\0b"s, "\\x610062"},
      {"\xff", "\\xff"},
      {"cut \xc3", "\\x63757420c3"},
      {"\xc0\x80", "\\xc080"},  // overlong, as the next two
      {"\xe0\x80\x80", "\\xe08080"},
      {"\xf0\x80\x80\x80", "\\xf0808080"},
      {"\xed\xa0\x80", "\\xeda080"},        // half of a surrogate pair
      {"\xf4\x90\x80\x80", "\\xf4908080"},  // above the last point
      {std::string(500'000, '\0'), "\\x" + std::string(1'000'000, '0')},
  };
  std::string all;
  for (const char* column :
       {"text1 FROM sessions", "text2 FROM sessions", "text3 FROM sessions", "configuration_text FROM configurations",
        "vendor_name FROM configurations", "text9 FROM configurations", "name FROM activities",
        "description FROM activities", "name FROM activity_versions", "version FROM activity_versions",
        "description FROM activity_versions", "node FROM executions", "description FROM executions", "name FROM events",
        "name FROM parameters", "value_text FROM parameters"}) {
    all += (all.empty() ? "SELECT " : " UNION ALL SELECT ") + std::string(column);
  }
  for (const auto& [text, stored] : rows) {
    SCOPED_TRACE(testing::PrintToString(text.substr(0, 60)));
    const std::string database = std::to_string(&text - &rows[0].text) + ".db";
    Configure(database);
    TSInstance::BeginSession(text, text, text);
    const auto configuration = SystemMethods::SaveInstrumentConfigWithResult(text, {}, text, {}, {}, {}, {}, {}, text);
    ActivityExecution saved = Execution(text);
    saved.Description = text;
    Types::ActivityVersion& version = saved.ActivityVersion;
    version.Id = Tsid("01234567-89ab-4def-8123-456789abcdef");
    version.Name = version.Version = version.Description = version.Activity.Name = version.Activity.Description = text;
    Save(saved);
    SaveEvent(Event(text, Types::InstrumentParameterString(text, text)), configuration.ConfigurationId, &saved.Id);
    EXPECT_TRUE(Recorded("SELECT *, COUNT(*) FROM (" + all + ") GROUP BY 1", database) == stored + "|16\n");
    const ActivityExecution loaded = Load(saved.Id);
    EXPECT_TRUE(loaded.Node == text && loaded.Description == text && loaded.ActivityVersion.Name == text &&
                loaded.ActivityVersion.Version == text && loaded.ActivityVersion.Description == text &&
                loaded.ActivityVersion.Activity.Name == text && loaded.ActivityVersion.Activity.Description == text);
  }
}

TEST_F(Values, NumbersKeepEveryBit) {
  using Double = std::numeric_limits<double>;
  static const struct {
    double value;
    std::string text = "";  // where it stands as text
  } rows[] = {{std::bit_cast<double>(0x7ff8000000000abcU), "NaN:7ff8000000000abc"},
              {std::bit_cast<double>(0xfff0000000000001U), "NaN:fff0000000000001"},
              {-0.0, "-0.0"},
              {0.0},
              {-60.01},
              {Double::infinity()},
              {-Double::infinity()},
              {Double::denorm_min()},
              {Double::max()}};
  Begin();
  soci::session sql(soci::sqlite3, "dbname=" + (folder / "ts.db").string());
  for (const auto& [value, text] : rows) {
    SCOPED_TRACE(value);
    SaveEvent(Event("e", Types::InstrumentParameterDouble("d", value)));
    double number = 0;
    std::string written;
    soci::indicator isNumber{}, isText{};
    sql << "SELECT value_number, value_text FROM parameters ORDER BY event_id DESC LIMIT 1",
        soci::into(number, isNumber), soci::into(written, isText);
    EXPECT_EQ(isText == soci::i_ok ? written : "", text);
    EXPECT_EQ(isNumber == soci::i_ok, text.empty());
    EXPECT_TRUE(!text.empty() || std::bit_cast<std::uint64_t>(number) == std::bit_cast<std::uint64_t>(value));
  }
  using Types::InstrumentParameterBoolean, Types::InstrumentParameterInt;
  SaveEvent(Event("e", InstrumentParameterInt("i", INT32_MIN), InstrumentParameterInt("i", INT32_MAX),
                  InstrumentParameterBoolean("b", true), InstrumentParameterBoolean("b", false)));
  EXPECT_EQ(Recorded("SELECT kind, CAST(value_number AS INTEGER), value_text FROM parameters WHERE kind <> 'double'"),
            "int|-2147483648|NULL\nint|2147483647|NULL\nbool|1|NULL\nbool|0|NULL\n");
}

TEST_F(Values, AnEventIsStoredWholeOrNotAtAll) {
  Begin();
  Types::InstrumentEvent large = Event("large");
  for (std::int32_t position = 1; position <= 10'000; ++position) {
    large.Parameters.push_back(std::make_shared<Types::InstrumentParameterInt>("same name", position));
  }
  SaveEvent(large);
  large.Name = "with a hole";
  large.Parameters.back() = nullptr;
  ExpectWords(ErrorOf([&] { SaveEvent(large); }), {"with a hole", "position 10000"});
  large.TimeStamp = DateTimeOffset::FromMicroseconds(INT64_MAX);
  ExpectWords(ErrorOf([&] { SaveEvent(large); }), {"9223372036854775807", "years 0 to 9999"});
  EXPECT_EQ(Recorded("SELECT e.name, COUNT(*) FROM parameters p JOIN events e USING (event_id) "
                     "WHERE position = value_number GROUP BY 1"),
            "large|10000\n");
  EXPECT_EQ(Recorded("SELECT ABS(julianday(at) - julianday('now')) < 1.0 / 1440 FROM events"), "1\n");
}

}  // namespace
