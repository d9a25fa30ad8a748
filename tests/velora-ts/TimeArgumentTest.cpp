// Which moment a time on the command line is, where clocks change twice a year.

#include "asking/TimeArgument.h"

#include "output/StatedTime.h"
#include "store/values/StoredTime.h"
#include "support/System.h"
#include "verbs/Verb.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

namespace {

using namespace Velora;

TEST(TimeArgument, IsTheBeginningOfAStoredTime) {
  static constexpr const char* europe = "CET-1CEST,M3.5.0/2,M10.5.0/3";
  static constexpr const char* atMidnight = "AAA3BBB,M9.1.0/0,M4.1.0/0";  // as in Paraguay until 2024
  static const struct {
    const char *zone, *now, *given, *moment;  // an empty moment: refused
  } rows[] = {
      {europe, "2026-11-26T03:30:00.500000Z", "2026-11-24", "2026-11-23T23"},
      {europe, "2026-11-26T03:30:00.500000Z", "2026-07-01", "2026-06-30T22"},
      {europe, "2026-11-26T03:30:00.500000Z", "2026-11", "2026-10-31T23"},
      {europe, "2026-11-26T03:30:00.500000Z", "2026-11-24 08", "2026-11-24T07"},
      {europe, "2026-11-26T03:30:00.500000Z", "2026-11-24T08:44", "2026-11-24T07:44"},
      {europe, "2026-11-26T03:30:00.500000Z", "2026-11-24 08:44:30", "2026-11-24T07:44:30"},
      {europe, "2026-11-26T03:30:00.500000Z", "2026-11-24 08:44:30.120+01:00", "2026-11-24T07:44:30.12"},
      {europe, "2026-11-26T03:30:00.500000Z", "2026-11-24 08:44:30.123456-05:30", "2026-11-24T14:14:30.123456"},
      {europe, "2026-11-26T03:30:00.500000Z", "2026-11-24T08:44:30.010000Z", "2026-11-24T08:44:30.01"},
      {europe, "2026-11-26T03:30:00.500000Z", "2026-11-24Z", "2026-11-24"},
      {europe, "2026-11-26T03:30:00.500000Z", "today", "2026-11-25T23"},
      {europe, "2026-11-26T23:30:00.000000Z", "today", "2026-11-26T23"},
      {europe, "2026-11-26T23:30:00.000000Z", "yesterday", "2026-11-25T23"},
      {europe, "2026-11-26T03:30:00.500000Z", "yesterday", "2026-11-24T23"},
      {europe, "2026-11-26T03:30:00.500000Z", "yesterday 21:55", "2026-11-25T20:55"},
      {europe, "2026-11-26T03:30:00.500000Z", "02:10", "2026-11-26T01:10"},
      {europe, "2026-11-26T03:30:00.500000Z", "04:30:00.5", "2026-11-26T03:30:00.5"},
      {europe, "2026-11-26T03:30:00.500000Z", "04:30:00.6", "2026-11-25T03:30:00.6"},
      {europe, "2026-11-26T03:30:00.500000Z", "03:29Z", "2026-11-26T03:29"},
      {europe, "2026-11-26T03:30:00.500000Z", "-2h", "2026-11-26T01:30:00.5"},
      {europe, "2026-11-26T03:30:00.500000Z", "-90m", "2026-11-26T02:00:00.5"},
      {europe, "2026-11-26T03:30:00.500000Z", "-3d", "2026-11-23T03:30:00.5"},
      {europe, "2026-11-26T03:30:00.500000Z", "-45s", "2026-11-26T03:29:15.5"},
      // clocks go from 02:00 to 03:00 on 29 March, and from 03:00 back to 02:00 on 25 October
      {europe, "2026-04-02T00:00:00.000000Z", "2026-03-29 01:59:59", "2026-03-29T00:59:59"},
      {europe, "2026-04-02T00:00:00.000000Z", "2026-03-29 02:30", "2026-03-29T01"},
      {europe, "2026-04-02T00:00:00.000000Z", "2026-03-29 03:00", "2026-03-29T01"},
      {europe, "2026-04-02T00:00:00.000000Z", "2026-03-30", "2026-03-29T22"},
      {europe, "2026-04-02T00:00:00.000000Z", "2026-10-25 01:59:59", "2026-10-24T23:59:59"},
      {europe, "2026-04-02T00:00:00.000000Z", "2026-10-25 02:00", "2026-10-25"},
      {europe, "2026-04-02T00:00:00.000000Z", "2026-10-25 02:30", "2026-10-25T00:30"},
      {europe, "2026-04-02T00:00:00.000000Z", "2026-10-25 02:30:00+01:00", "2026-10-25T01:30"},
      {europe, "2026-04-02T00:00:00.000000Z", "2026-10-25 03:00", "2026-10-25T02"},
      {atMidnight, "2026-12-01T00:00:00.000000Z", "2026-09-06", "2026-09-06T03"},
      {atMidnight, "2026-12-01T00:00:00.000000Z", "2026-04-04 23:30", "2026-04-05T01:30"},
      {atMidnight, "2026-12-01T00:00:00.000000Z", "2026-04-05", "2026-04-05T03"},
      {"IST-5:30", "2026-11-26T03:30:00.000000Z", "2026-11-25 09:00:12", "2026-11-25T03:30:12"},
      {"UTC", "2026-11-26T03:30:00.000000Z", "9999-12-31 23:59:59.999999", "9999-12-31T23:59:59.999999"},
      {"UTC", "2026-11-26T03:30:00.000000Z", "9999-12-31 23:00-05:00", ""},
      {"UTC", "2026-11-26T03:30:00.000000Z", "-999999d", ""},
      {"UTC", "2026-11-26T03:30:00.000000Z", "2026-02-30", ""},
      {"UTC", "2026-11-26T03:30:00.000000Z", "2026-13", ""},
      {"UTC", "2026-11-26T03:30:00.000000Z", "25:00", ""},
      {"UTC", "2026-11-26T03:30:00.000000Z", "2026-11-24 24:00", ""},
      {"UTC", "2026-11-26T03:30:00.000000Z", "2026-11-24 21:60", ""},
      {"UTC", "2026-11-26T03:30:00.000000Z", "2026-11-24 21:5", ""},
      {"UTC", "2026-11-26T03:30:00.000000Z", "2026-11-24 21:55.5", ""},
      {"UTC", "2026-11-26T03:30:00.000000Z", "2026-11-24 21:55:03.1234567", ""},
      {"UTC", "2026-11-26T03:30:00.000000Z", "2026-11-24 21:55+1:00", ""},
      {"UTC", "2026-11-26T03:30:00.000000Z", "-2w", ""},
      {"UTC", "2026-11-26T03:30:00.000000Z", "tomorrow", ""},
      {"UTC", "2026-11-26T03:30:00.000000Z", "", ""},
  };
  int asked = 0;
  for (const auto& [zone, now, given, moment] : rows) {
    if (!System::SetZone(zone)) {
      continue;
    }
    ++asked;
    const auto ask = [&given = given, at = Store::FromStoredTime(now)] { return Ts::TimeArgument(given, at); };
    if (*moment != '\0') {
      EXPECT_EQ(ask(), moment) << given << " in " << zone;
    } else {
      EXPECT_THROW(ask(), Ts::UsageError) << given;
    }
  }
  EXPECT_GT(asked, 0);
}

TEST(TimeArgument, IsReadFromRecordedTextsToo) {
  if (!System::SetZone("CET-1CEST,M3.5.0/2,M10.5.0/3")) {
    GTEST_SKIP() << "the zone of this process is another one";
  }
  std::ifstream rows(SOURCE "/tests/stated-times.txt");
  std::string row;
  std::getline(rows, row);  // says what they are
  int count = 0;
  for (; std::getline(rows, row); ++count) {
    const std::size_t begin = row.rfind(' ') + 1;
    const std::string text = row.substr(0, row.find_last_not_of(' ', begin - 1) + 1);
    const std::string expected = row.substr(begin);
    EXPECT_EQ(Ts::StatedTime(text), expected == "-" ? std::nullopt : Store::Microseconds(expected)) << row;
  }
  EXPECT_GT(count, 20);
}

}  // namespace
