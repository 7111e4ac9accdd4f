/* Times of documents as times of <chrono>, in UTC. */
#ifndef TLVFORGE_CPP_TIME_HPP
#define TLVFORGE_CPP_TIME_HPP

#include <chrono>
#include <string>

#include "tlvforge/cpp/result.hpp"
#include "tlvforge/tlvforge.h"

namespace tlvforge {

/*
 * What the times of documents become: seconds, and microseconds for the precise ones. Calls that take a LibraryTime
 * take any time_point of the system clock too, without its fraction of a second.
 */
namespace types {
using TimePoint = std::chrono::time_point<std::chrono::system_clock, std::chrono::seconds>;
using PreciseTimePoint = std::chrono::time_point<std::chrono::system_clock, std::chrono::microseconds>;
}  // namespace types

namespace detail {

// Days from 1970-01-01 to a date of the Gregorian calendar, the year counted from March so that the leap day is its
// last.
constexpr int64_t DaysOf(int64_t year, int64_t month, int64_t day) noexcept {
    if (month < 3) --year;
    const int64_t fromMarch = (month + 9) % 12;
    return 365 * year + year / 4 - year / 100 + year / 400 + (153 * fromMarch + 2) / 5 + day - 719469;
}

template <class Record>
constexpr TimePoint SecondsOf(const Record& time) noexcept {
    const int64_t days = DaysOf(time.year, time.month, time.day);
    return TimePoint(std::chrono::seconds(((days * 24 + time.hour) * 60 + time.minute) * 60 + time.second));
}

constexpr bool IsSet(const LibraryTime& time) noexcept { return time.month != 0; }

// The record of a time; the null time for one outside the years 1900 to 2100.
constexpr LibraryTime RecordOf(TimePoint time) noexcept {
    const int64_t seconds = time.time_since_epoch().count();
    constexpr int64_t kFirst = DaysOf(1900, 1, 1) * 86400, kEnd = DaysOf(2101, 1, 1) * 86400;
    if (seconds < kFirst || seconds >= kEnd) return {};
    const int64_t second = ((seconds % 86400) + 86400) % 86400, days = (seconds - second) / 86400;
    // The average year is a little shorter than 365.25 days: at most one year too late, then one month.
    int64_t year = 1970 + (days + 366) / 365;
    while (DaysOf(year, 1, 1) > days) --year;
    int64_t month = 12;
    while (DaysOf(year, month, 1) > days) --month;
    return {static_cast<uint32_t>(year),
            static_cast<uint32_t>(month),
            static_cast<uint32_t>(days - DaysOf(year, month, 1) + 1),
            static_cast<uint32_t>(second / 3600),
            static_cast<uint32_t>(second / 60 % 60),
            static_cast<uint32_t>(second % 60)};
}

}  // namespace detail

/** ToChrono is the time that a record stands for. The null time, which stands for none, becomes a time before 1900. */
constexpr TimePoint ToChrono(const LibraryTime& time) noexcept { return detail::SecondsOf(time); }
constexpr PreciseTimePoint ToChrono(const LibraryPreciseTime& time) noexcept {
    return detail::SecondsOf(time) + std::chrono::microseconds(time.millisecond * 1000 + time.microsecond);
}

/** ToText writes a time as RFC 3339 does: 2026-03-31T23:59:59Z. */
inline std::string ToText(const LibraryTime& time) {
    const auto padded = [](uint32_t number, size_t width) {
        const std::string digits = std::to_string(number);
        return digits.size() < width ? std::string(width - digits.size(), '0') + digits : digits;
    };
    return padded(time.year, 4) + "-" + padded(time.month, 2) + "-" + padded(time.day, 2) + "T" + padded(time.hour, 2) +
           ":" + padded(time.minute, 2) + ":" + padded(time.second, 2) + "Z";
}

namespace nothrow {

using tlvforge::ToChrono;
using tlvforge::ToText;

/** ToLibraryTime and ToLibraryPreciseTime make the record of a time. StatusBadTime outside the years 1900 to 2100. */
template <class Duration>
Result<LibraryTime> ToLibraryTime(std::chrono::time_point<std::chrono::system_clock, Duration> time) {
    const LibraryTime record = detail::RecordOf(std::chrono::floor<std::chrono::seconds>(time));
    if (!detail::IsSet(record)) return detail::OwnFailure(StatusBadTime, "ToLibraryTime");
    return record;
}

template <class Duration>
Result<LibraryPreciseTime> ToLibraryPreciseTime(std::chrono::time_point<std::chrono::system_clock, Duration> time) {
    const TimePoint whole = std::chrono::floor<std::chrono::seconds>(time);
    const LibraryTime record = detail::RecordOf(whole);
    if (!detail::IsSet(record)) return detail::OwnFailure(StatusBadTime, "ToLibraryPreciseTime");
    const auto part = static_cast<uint32_t>(std::chrono::floor<std::chrono::microseconds>(time - whole).count());
    return LibraryPreciseTime{record.year,   record.month,  record.day,  record.hour,
                              record.minute, record.second, part / 1000, part % 1000};
}

}  // namespace nothrow

#if defined(__cpp_exceptions)
template <class Duration>
LibraryTime ToLibraryTime(std::chrono::time_point<std::chrono::system_clock, Duration> time) {
    return nothrow::ToLibraryTime(time).value();
}
template <class Duration>
LibraryPreciseTime ToLibraryPreciseTime(std::chrono::time_point<std::chrono::system_clock, Duration> time) {
    return nothrow::ToLibraryPreciseTime(time).value();
}
#endif

}  // namespace tlvforge

#endif
