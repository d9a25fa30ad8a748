// Whatever a host hands over comes back the same, and stands in the tables in the form that is documented.

#include "LocalTsTest.h"

#include <bit>
#include <limits>

namespace {

using Values = LocalTsTest;

TEST_F(Values, AnyTextComesBackTheSameAndOrdinaryOnesStandAsTheyAre) {
  static const struct {
    std::string text, stored = text;
  } rows[] = {{"it's \"quoted\"'); DROP TABLE events; -- Ångström 🔬 \xf4\x8f\xbf\xbf\r\n\t\x01\x7f"},
              {"\\x41", "\\x5c783431"},
              {"a\0b"s, "\\x610062"},
              {"cut \xc3", "\\x63757420c3"},
              {"overlong \xe0\x80\x80", "\\x6f7665726c6f6e6720e08080"},
              {"half a pair \xed\xa0\x80", "\\x68616c662061207061697220eda080"},
              {"above the last point \xf4\x90\x80\x80", "\\x61626f766520746865206c61737420706f696e7420f4908080"},
              {std::string(100'000, '\0'), "\\x" + std::string(200'000, '0')}};
  const char* const everyColumn =
      TestStore::OnServer()
          ? "SELECT string_agg('SELECT ' || column_name || ' FROM ' || table_name, ' UNION ALL ') FROM "
            "information_schema.columns WHERE table_name IN ('sessions', 'activities', 'activity_versions', "
            "'executions', "
            "'configurations', 'events', 'parameters') AND data_type = 'text' AND column_name NOT IN ('guid', 'kind', "
            "'instrument', 'host') AND column_name NOT LIKE '%at'"
          : "SELECT group_concat('SELECT ' || c.name || ' FROM ' || t.name, ' UNION ALL ') FROM sqlite_master t "
            "JOIN pragma_table_info(t.name) c WHERE t.name IN ('sessions', 'activities', 'activity_versions', "
            "'executions', "
            "'configurations', 'events', 'parameters') AND c.type = 'TEXT' AND c.name NOT IN ('guid', 'kind', "
            "'instrument', "
            "'host') AND c.name NOT LIKE '%at'";
  for (const auto& [text, stored] : rows) {
    SCOPED_TRACE(testing::PrintToString(text.substr(0, 60)));
    const std::string database = std::to_string(&text - &rows[0].text) + ".db";
    Configure(database);
    TSInstance::BeginSession(text, text, text);
    SystemMethods::SaveInstrumentConfigWithResult(text, text, text, text, text, text, text, text, text);
    ActivityExecution saved;
    saved.Node = saved.Description = text;
    ActivityVersion& version = saved.ActivityVersion;
    version.Id = Tsid("01234567-89ab-4def-8123-456789abcdef");
    version.Name = version.Version = version.Description = version.Activity.Name = version.Activity.Description = text;
    Save(saved);
    SaveEvent(Event(text, InstrumentParameterString(text, text)));
    EXPECT_TRUE(Recorded("SELECT *, COUNT(*) FROM (" + Recorded(everyColumn, database) + ") AS all_texts GROUP BY 1",
                         database) == stored + "|22\n");
    const ActivityExecution loaded = Load(saved.Id);
    const ns1__ActivityVersion wire = loaded.ActivityVersion.ToGsoap();
    for (const std::string& part : {loaded.Node, loaded.Description, wire.Name, wire.Version, wire.Description,
                                    wire.ActivityName, wire.ActivityDescription}) {
      EXPECT_TRUE(part == text);
    }
  }
}

TEST_F(Values, NumbersKeepEveryBit) {
  using Double = std::numeric_limits<double>;
  Begin();
  InstrumentEvent event = Event("e", InstrumentParameterInt("i", INT32_MIN), InstrumentParameterBoolean("b", true));
  const auto notANumber = std::bit_cast<double>(0xfff0000000000001U);
  const std::vector<double> numbers = {
      notANumber, -0.0, 0.0, -60.01, Double::infinity(), -Double::infinity(), Double::denorm_min(), Double::max()};
  for (const double number : numbers) {
    event.Parameters.push_back(std::make_shared<InstrumentParameterDouble>("d", number));
  }
  SaveEvent(event);
  EXPECT_EQ(Recorded("SELECT kind, CAST(value_number AS INTEGER), value_text FROM parameters WHERE position < 5"),
            "int|-2147483648|NULL\nbool|1|NULL\ndouble|NULL|NaN:fff0000000000001\ndouble|NULL|-0.0\n");
  const SqlConnection sql = TestStore(folder / "ts.db").Open();
  std::vector<double> stored;
  for (const auto rows = sql->PrepareShort("SELECT value_number FROM parameters WHERE position > 4 ORDER BY position");
       rows->Next();) {
    stored.push_back(rows->Number(0));
  }
  EXPECT_EQ(stored, std::vector(numbers.begin() + 2, numbers.end()));
}

TEST_F(Values, AnEventIsStoredWholeAndWithItsLinksOrNotAtAll) {
  Begin();
  const Tsid execution = Saved("node").Id;
  const InstrumentEventConfigResult configuration =
      SystemMethods::SaveInstrumentConfigWithResult("1", "2", "3", "4", "5", "6", "7", "8", "9");
  EXPECT_EQ(Recorded("SELECT guid FROM sessions"), configuration.SessionId.GetGuid() + '\n');
  InstrumentEvent large = Event("large");
  for (std::int32_t position = 1; position <= 10'000; ++position) {
    large.Parameters.push_back(std::make_shared<InstrumentParameterInt>("same name", position));
  }
  SaveEvent(large, Tsid(), &execution);
  InstrumentEvent small = Event("small");
  small.TimeStamp = configuration.Time;
  SaveEvent(small, configuration.ConfigurationId);
  large.Name = "with a hole";
  large.Parameters.back() = nullptr;
  ExpectError([&] { SaveEvent(large); }, {"with a hole", "position 10000"});
  large.TimeStamp = DateTimeOffset::FromMicroseconds(INT64_MAX);
  ExpectError([&] { SaveEvent(large); }, {"9223372036854775807", "years 0 to 9999"});
  EXPECT_EQ(
      Recorded("SELECT name, execution_id, e.configuration_id, e.session_id, CASE WHEN at = saved_at THEN 'stated' "
               "END FROM events e JOIN sessions USING (session_id) CROSS JOIN configurations WHERE at >= began_at "
               "AND at < '2100' ORDER BY event_id"),
      "large|1|NULL|1|NULL\nsmall|NULL|1|1|stated\n");
  EXPECT_EQ(Recorded("SELECT COUNT(*), SUM(CASE WHEN position = value_number THEN 1 END) FROM parameters"),
            "10000|10000\n");
  EXPECT_EQ(Recorded("SELECT configuration_text, text2, vendor_name, host_name, option_text, instrument_class, "
                     "model_name, text8, text9 FROM configurations"),
            "1|2|3|4|5|6|7|8|9\n");
}

}  // namespace
