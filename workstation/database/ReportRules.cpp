#include "workstation/database/ReportRules.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <limits>
#include <optional>
#include <tuple>

#include "workstation/dicom/Padding.h"

namespace workstation {
namespace {

constexpr std::int64_t microsecondsPerSecond = 1'000'000;
/// No date has more than four digits of year.
const ContentTime lastMoment{"99991231", "235959.999999"};

/// A calendar date and time of day. The second may be 60 (a leap second).
struct Moment {
  int year = 0;
  int month = 1;
  int day = 1;
  int hour = 0;
  int minute = 0;
  int second = 0;
  int microsecond = 0;
  // NOLINTNEXTLINE(modernize-use-nullptr): the check takes the zero of a defaulted comparison for a pointer
  auto operator<=>(const Moment&) const = default;
};

bool areDigits(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char character) { return character >= '0' && character <= '9'; });
}

int numberIn(std::string_view digits) {
  int number = 0;
  for (const char digit : digits) number = number * 10 + (digit - '0');
  return number;
}

/// HH, HHMM, HHMMSS or HHMMSS.F to HHMMSS.FFFFFF.
bool readTime(std::string_view text, Moment& moment) {
  const std::size_t point = text.find('.');
  const std::string_view whole = text.substr(0, point);
  if (whole.empty() || whole.size() > 6 || whole.size() % 2 != 0 || !areDigits(whole)) return false;
  moment.hour = numberIn(whole.substr(0, 2));
  if (whole.size() > 2) moment.minute = numberIn(whole.substr(2, 2));
  if (whole.size() > 4) moment.second = numberIn(whole.substr(4, 2));
  if (point != std::string_view::npos) {
    std::string fraction(text.substr(point + 1));
    if (whole.size() != 6 || fraction.empty() || fraction.size() > 6 || !areDigits(fraction)) return false;
    fraction.resize(6, '0');
    moment.microsecond = numberIn(fraction);
  }
  return moment.hour < 24 && moment.minute < 60 && moment.second <= 60;
}

std::optional<Moment> momentOf(const ContentTime& content) {
  const std::string_view date = withoutPadding(content.date);
  if (date.size() != 8 || !areDigits(date)) return std::nullopt;
  Moment moment{numberIn(date.substr(0, 4)), numberIn(date.substr(4, 2)), numberIn(date.substr(6, 2))};
  const std::chrono::year_month_day calendar(std::chrono::year(moment.year),
                                             std::chrono::month(static_cast<unsigned>(moment.month)),
                                             std::chrono::day(static_cast<unsigned>(moment.day)));
  const std::string_view time = withoutPadding(content.time);
  if (!calendar.ok() || (!time.empty() && !readTime(time, moment))) return std::nullopt;
  return moment;
}

ContentTime written(const Moment& moment) {
  std::array<char, 64> date{};
  std::array<char, 64> time{};
  std::snprintf(date.data(), date.size(), "%04d%02d%02d", moment.year, moment.month, moment.day);
  std::snprintf(time.data(), time.size(), "%02d%02d%02d.%06d", moment.hour, moment.minute, moment.second,
                moment.microsecond);
  return {date.data(), time.data()};
}

/// A microsecond later; the same moment when there is no later one.
Moment nextMicrosecond(Moment moment) {
  if (written(moment) >= lastMoment) return moment;
  if (++moment.microsecond < microsecondsPerSecond) return moment;
  moment.microsecond = 0;
  if (++moment.second < 60) return moment;
  moment.second = 0;
  if (++moment.minute < 60) return moment;
  moment.minute = 0;
  if (++moment.hour < 24) return moment;
  moment.hour = 0;
  using namespace std::chrono;
  const year_month_day tomorrow = sys_days(year(moment.year) / moment.month / moment.day) + days(1);
  moment.year = static_cast<int>(tomorrow.year());
  moment.month = static_cast<int>(static_cast<unsigned>(tomorrow.month()));
  moment.day = static_cast<int>(static_cast<unsigned>(tomorrow.day()));
  return moment;
}

}  // namespace

ContentTime contentTimeAt(std::chrono::system_clock::time_point moment) {
  const auto whole = std::chrono::floor<std::chrono::seconds>(moment);
  const std::time_t seconds = std::chrono::system_clock::to_time_t(whole);
  std::tm local{};
  localtime_r(&seconds, &local);
  const auto rest = std::chrono::floor<std::chrono::microseconds>(moment - whole);
  return written({local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec,
                  static_cast<int>(rest.count())});
}

bool isEarlier(const ShelvedReport& a, const ShelvedReport& b) {
  // An absent moment orders before every present one.
  return std::make_tuple(momentOf(a.contentTime), a.instanceNumber, std::string_view(a.sopInstanceUid)) <
         std::make_tuple(momentOf(b.contentTime), b.instanceNumber, std::string_view(b.sopInstanceUid));
}

const ShelvedReport* countingReport(const std::vector<ShelvedReport>& reports) {
  const ShelvedReport* newest = nullptr;
  for (const ShelvedReport& report : reports) {
    if (report.labelling && (!newest || isEarlier(*newest, report))) newest = &report;
  }
  return newest;
}

ReportPlace placeAfter(const std::vector<ShelvedReport>& there, const std::string& seriesUid,
                       std::chrono::system_clock::time_point now) {
  const auto inSeries = std::count_if(
      there.begin(), there.end(), [&](const ShelvedReport& report) { return report.seriesInstanceUid == seriesUid; });
  ReportPlace place{contentTimeAt(now), static_cast<int>(inSeries) + 1};
  const auto last = std::max_element(there.begin(), there.end(), isEarlier);
  if (last == there.end()) return place;
  const auto follows = momentOf(last->contentTime);
  if (!follows || *follows < *momentOf(place.contentTime)) return place;
  place.contentTime = written(nextMicrosecond(*follows));
  // At the end of the calendar only the instance number can still tell that it is later.
  if (place.contentTime == written(*follows) && place.instanceNumber <= last->instanceNumber &&
      last->instanceNumber < std::numeric_limits<int>::max()) {
    place.instanceNumber = last->instanceNumber + 1;
  }
  return place;
}

}  // namespace workstation
