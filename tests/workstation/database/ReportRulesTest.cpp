#include "workstation/database/ReportRules.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <limits>

namespace workstation {
namespace {

ShelvedReport reportAt(ContentTime time, int instanceNumber = 1, std::string sopUid = "1.1") {
  ShelvedReport report;
  report.contentTime = std::move(time);
  report.instanceNumber = instanceNumber;
  report.sopInstanceUid = std::move(sopUid);
  report.seriesInstanceUid = "7.7";
  report.labelling.emplace();
  return report;
}

struct OrderRow {
  const char* name;
  ShelvedReport earlier;
  ShelvedReport later;
};

class Order : public testing::TestWithParam<OrderRow> {};

TEST_P(Order, OneIsEarlierAndNotTheOther) {
  EXPECT_TRUE(isEarlier(GetParam().earlier, GetParam().later));
  EXPECT_FALSE(isEarlier(GetParam().later, GetParam().earlier));
  EXPECT_FALSE(isEarlier(GetParam().earlier, GetParam().earlier));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Order,
    testing::Values(
        OrderRow{"TheDateDecides", reportAt({"20201231", "235959.999999"}), reportAt({"20210101", "000000.000000"})},
        OrderRow{"ThenTheTime", reportAt({"20200101", "095959.999999"}), reportAt({"20200101", "100000.000000"})},
        OrderRow{"ToTheMicrosecond", reportAt({"20200101", "100000.000001"}), reportAt({"20200101", "100000.000002"})},
        OrderRow{"TimeGoesBeforeInstanceNumber", reportAt({"20200101", "100000"}, 9),
                 reportAt({"20200101", "100001"}, 1)},
        OrderRow{"ThenTheInstanceNumberAsANumber", reportAt({"20200101", "100000"}, 9, "2"),
                 reportAt({"20200101", "100000"}, 10, "1")},
        OrderRow{"ThenTheUidAsAString", reportAt({"20200101", "100000"}, 1, "1.10"),
                 reportAt({"20200101", "100000"}, 1, "1.9")},
        OrderRow{"ACutTimeIsFilledWithZeros", reportAt({"20200101", "10"}, 1), reportAt({"20200101", "1000"}, 2)},
        OrderRow{"ACutFractionToo", reportAt({"20200101", "100000.19"}), reportAt({"20200101", "100000.2"})},
        OrderRow{"PaddingIsNoPartOfIt", reportAt({"20200101 ", "100000 "}, 1), reportAt({"20200101", "100000"}, 2)},
        OrderRow{"AnAbsentTimeIsMidnight", reportAt({"20200101", ""}), reportAt({"20200101", "000000.000001"})},
        OrderRow{"ALeapSecondIsATime", reportAt({"20161231", "235959.9"}), reportAt({"20161231", "235960"})},
        OrderRow{"NoDateComesFirst", reportAt({"", "235959"}, 99), reportAt({"19000101", "000000"}, 1)},
        OrderRow{"NoCalendarDateComesFirst", reportAt({"20230229", "100000"}), reportAt({"19000101", "000000"})},
        OrderRow{"NoTimeOfDayComesFirst", reportAt({"20230201", "250000"}), reportAt({"19000101", "000000"})},
        OrderRow{"OddDigitsComeFirst", reportAt({"20230201", "101"}), reportAt({"19000101", "000000"})}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Counting, IsNoneWithoutAReadableReport) {
  EXPECT_EQ(countingReport({}), nullptr);
  ShelvedReport unreadable = reportAt({"20200101", "100000"});
  unreadable.labelling.reset();
  EXPECT_EQ(countingReport({unreadable}), nullptr);
}

TEST(Counting, IsTheNewestWhateverTheOrderOfTheFiles) {
  const std::vector<ShelvedReport> reports{reportAt({"20200102", "1000"}, 1, "b"),
                                           reportAt({"20200103", "1000"}, 1, "c"),
                                           reportAt({"20200101", "1000"}, 1, "a")};
  EXPECT_EQ(countingReport(reports), &reports[1]);
}

TEST(Counting, PassesOverANewerOneThatCannotBeRead) {
  std::vector<ShelvedReport> reports{reportAt({"20200101", "1000"}), reportAt({"20200102", "1000"})};
  reports[1].labelling.reset();
  EXPECT_EQ(countingReport(reports), &reports[0]);
}

/// In UTC, so that the expected times can be written down.
class Place : public testing::Test {
 protected:
  void SetUp() override { setZone("UTC"); }
  void TearDown() override { unsetenv("TZ"); }
  static void setZone(const char* zone) {
    setenv("TZ", zone, 1);
    tzset();
  }
  /// 2020-09-13 12:26:40.123456 UTC
  const std::chrono::system_clock::time_point now =
      std::chrono::system_clock::from_time_t(1'600'000'000) + std::chrono::microseconds(123456);
};

TEST_F(Place, IsNowAndOneInAnEmptyStudy) {
  EXPECT_EQ(placeAfter({}, "7.7", now), (ReportPlace{{"20200913", "122640.123456"}, 1}));
}

TEST_F(Place, IsInLocalTime) {
  setZone("XYZ-2");  // two hours ahead of UTC
  EXPECT_EQ(contentTimeAt(now), (ContentTime{"20200913", "142640.123456"}));
}

TEST_F(Place, IsNowAfterAnOlderReport) {
  const auto place = placeAfter({reportAt({"20200913", "122640.123455"})}, "7.7", now);
  EXPECT_EQ(place, (ReportPlace{{"20200913", "122640.123456"}, 2}));
}

TEST_F(Place, IsAMicrosecondAfterOneOfThisVeryMoment) {
  const auto place = placeAfter({reportAt({"20200913", "122640.123456"})}, "7.7", now);
  EXPECT_EQ(place.contentTime, (ContentTime{"20200913", "122640.123457"}));
}

TEST_F(Place, IsAMicrosecondAfterAReportFromTheFuture) {
  const auto place = placeAfter({reportAt({"20200913", "130000"}), reportAt({"20200101", "100000"})}, "7.7", now);
  EXPECT_EQ(place, (ReportPlace{{"20200913", "130000.000001"}, 3}));
}

TEST_F(Place, IsAlsoLaterThanOneThatCannotBeRead) {
  ShelvedReport unreadable = reportAt({"20210101", "100000"});
  unreadable.labelling.reset();
  EXPECT_EQ(placeAfter({unreadable}, "7.7", now).contentTime, (ContentTime{"20210101", "100000.000001"}));
}

TEST_F(Place, IsLaterThanReportsOfEverySeriesButCountsItsOwn) {
  ShelvedReport other = reportAt({"20210101", "100000"});
  other.seriesInstanceUid = "8.8";
  EXPECT_EQ(placeAfter({other, other}, "7.7", now), (ReportPlace{{"20210101", "100000.000001"}, 1}));
}

TEST_F(Place, CarriesIntoTheNextYear) {
  const auto after = [&](const char* date, const char* time) {
    return placeAfter({reportAt({date, time})}, "7.7", now).contentTime;
  };
  EXPECT_EQ(after("20201231", "235959.999999"), (ContentTime{"20210101", "000000.000000"}));
  EXPECT_EQ(after("20240228", "235959.999999"), (ContentTime{"20240229", "000000.000000"}));
  EXPECT_EQ(after("20210101", "105959.999999"), (ContentTime{"20210101", "110000.000000"}));
  EXPECT_EQ(after("20210101", "100059.999999"), (ContentTime{"20210101", "100100.000000"}));
}

TEST_F(Place, AtTheEndOfTheCalendarTheInstanceNumberTells) {
  const ShelvedReport last = reportAt({"99991231", "235959.999999"}, 41);
  const auto place = placeAfter({last}, "7.7", now);
  EXPECT_EQ(place, (ReportPlace{{"99991231", "235959.999999"}, 42}));
  EXPECT_TRUE(isEarlier(last, reportAt(place.contentTime, place.instanceNumber, "0")));
  EXPECT_EQ(
      placeAfter({reportAt({"99991231", "235959.999999"}, std::numeric_limits<int>::max())}, "7.7", now).instanceNumber,
      2);
}

TEST_F(Place, IsNowWhereNoReportSaysWhenItWasMade) {
  EXPECT_EQ(placeAfter({reportAt({"", ""}), reportAt({"nonsense", "x"})}, "7.7", now),
            (ReportPlace{{"20200913", "122640.123456"}, 3}));
}

}  // namespace
}  // namespace workstation
