#include "tlvforge/time.h"

#include <atomic>
#include <new>

#include "common/platform.h"
#include "engine/failure.h"
#include "engine/tmalloc.h"

using namespace tlvforge;

namespace {

// The fields of each record in their order, most significant first.
template <class Record>
struct Fields;

template <>
struct Fields<LibraryTime> {
    static constexpr uint32_t LibraryTime::*kAll[] = {&LibraryTime::year, &LibraryTime::month,  &LibraryTime::day,
                                                      &LibraryTime::hour, &LibraryTime::minute, &LibraryTime::second};
};

template <>
struct Fields<LibraryPreciseTime> {
    static constexpr uint32_t LibraryPreciseTime::*kAll[] = {
        &LibraryPreciseTime::year,        &LibraryPreciseTime::month,      &LibraryPreciseTime::day,
        &LibraryPreciseTime::hour,        &LibraryPreciseTime::minute,     &LibraryPreciseTime::second,
        &LibraryPreciseTime::millisecond, &LibraryPreciseTime::microsecond};
};

template <>
struct Fields<Accuracy> {
    static constexpr uint32_t Accuracy::*kAll[] = {&Accuracy::seconds, &Accuracy::milliseconds,
                                                   &Accuracy::microseconds};
};

template <class Record>
Status CreateRecord(Record** out) {
    if (out == nullptr) return Fail(StatusBadArgument);
    *out = nullptr;
    void* block = Allocate(sizeof(Record));
    if (block == nullptr) return Fail(StatusOutOfMemory);
    *out = new (block) Record{};
    return StatusOk;
}

template <class Record>
Status FreeRecord(Record* record) {
    Release(record);
    return StatusOk;
}

template <class Record>
Status CopyRecord(Record* destination, const Record* source) {
    if (AnyNull(destination, source)) return Fail(StatusBadArgument);
    *destination = *source;
    return StatusOk;
}

template <class Record>
uint32_t IsNull(const Record* record) {
    if (record == nullptr) return 1;
    for (const auto field : Fields<Record>::kAll) {
        if (record->*field != 0) return 0;
    }
    return 1;
}

// Outputs in the order of the fields.
template <class Record, class... Outputs>
void StoreFields(const Record& record, Outputs*... outputs) {
    static_assert(sizeof...(Outputs) == sizeof(Record) / sizeof(uint32_t));
    const auto* field = Fields<Record>::kAll;
    ((*outputs = record.*(*field++)), ...);
}

template <class Record, class... Outputs>
Status GetFields(const Record* record, Outputs*... outputs) {
    if (AnyNull(outputs...)) return Fail(StatusBadArgument);
    StoreFields(record == nullptr ? Record{} : *record, outputs...);
    return record == nullptr ? Fail(StatusBadArgument) : StatusOk;
}

constexpr uint32_t kFebruary = 2;
constexpr uint32_t kDecember = 12;

// What a day may be, by month: 29 February passes in every year, see docs/oddities.md.
constexpr uint32_t kLastDay[] = {0, 31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

// What additions count with, but for February: they change its length, and all threads together remember it, see
// docs/oddities.md.
constexpr uint32_t kDaysOfMonth[] = {0, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
constinit std::atomic<uint32_t> daysOfFebruary = 28;

void SetDaysOfFebruary(uint32_t days) { daysOfFebruary.store(days, std::memory_order_relaxed); }

uint32_t DaysOf(uint32_t month) {
    return month == kFebruary ? daysOfFebruary.load(std::memory_order_relaxed) : kDaysOfMonth[month];
}

struct Component {
    uint32_t* field;
    uint32_t value;
    uint32_t least;
    uint32_t most;
};

// No rollback: what stands before the first bad component remains stored.
template <uint32_t Count>
Status StoreInOrder(const Component (&components)[Count]) {
    for (const Component& component : components) {
        if (component.value < component.least || component.value > component.most) return Fail(StatusBadTime);
        *component.field = component.value;
    }
    return StatusOk;
}

template <class Record>
Status SetCalendar(Record* record, uint32_t day, int32_t month, int32_t year, uint32_t hour, uint32_t minute,
                   uint32_t second) {
    if (record == nullptr) return Fail(StatusBadArgument);
    const uint32_t unsignedMonth = static_cast<uint32_t>(month);
    return StoreInOrder({{&record->month, unsignedMonth, 1, kDecember},
                         {&record->day, day, 1, unsignedMonth <= kDecember ? kLastDay[unsignedMonth] : 0},
                         {&record->year, static_cast<uint32_t>(year), 1900, 2100},
                         {&record->hour, hour, 0, 23},
                         {&record->minute, minute, 0, 59},
                         {&record->second, second, 0, 59}});
}

// Stands for a set with all zeros, which the check of the month refuses. Callers depend on the record staying as it is.
Status RefuseNullTime(const void* record) { return Fail(record == nullptr ? StatusBadArgument : StatusBadTime); }

template <class Record>
Status SetToNow(Record* record) {
    if (record == nullptr) return Fail(StatusBadArgument);
    const time_t now = ::time(nullptr);
    tm utc{};
    if (!SplitUtc(now, &utc)) return Fail(StatusBadArgument);
    return SetCalendar(record, static_cast<uint32_t>(utc.tm_mday), utc.tm_mon + 1, utc.tm_year + 1900,
                       static_cast<uint32_t>(utc.tm_hour), static_cast<uint32_t>(utc.tm_min),
                       static_cast<uint32_t>(utc.tm_sec));
}

template <class Record>
Status ToLocal(const Record* record, Record* local) {
    if (record == nullptr) return Fail(StatusBadArgument);
    tm fields{};
    fields.tm_year = static_cast<int>(record->year - 1900);
    fields.tm_mon = static_cast<int>(record->month - 1);
    fields.tm_mday = static_cast<int>(record->day);
    fields.tm_hour = static_cast<int>(record->hour);
    fields.tm_min = static_cast<int>(record->minute);
    fields.tm_sec = static_cast<int>(record->second);
    const time_t seconds = JoinUtc(&fields);
    if (seconds < 0) return Fail(StatusBadArgument);  // times before 1970 are refused as well
    if (!SplitLocal(seconds, &fields)) return Fail(StatusBadArgument);
    local->year = static_cast<uint32_t>(fields.tm_year) + 1900;
    local->month = static_cast<uint32_t>(fields.tm_mon) + 1;
    local->day = static_cast<uint32_t>(fields.tm_mday);
    local->hour = static_cast<uint32_t>(fields.tm_hour);
    local->minute = static_cast<uint32_t>(fields.tm_min);
    local->second = static_cast<uint32_t>(fields.tm_sec);
    return StatusOk;
}

template <class Record, class... Outputs>
Status GetLocalFields(const Record* record, Outputs*... outputs) {
    if (AnyNull(outputs...)) return Fail(StatusBadArgument);
    Record local{};
    const Status status = ToLocal(record, &local);
    StoreFields(local, outputs...);
    return status;
}

bool IsLeapYear(uint32_t year) { return year % 400 == 0 || (year % 4 == 0 && year % 100 != 0); }

template <class Record>
Status AddDays(Record* record, uint32_t days) {
    if (record == nullptr) return Fail(StatusBadArgument);
    if (record->month > kDecember) return Fail(StatusBadTime);
    // In a common year the cell stays as it is: only a change of the year makes it 28 again.
    if (IsLeapYear(record->year)) SetDaysOfFebruary(29);
    uint32_t year = record->year;
    uint32_t month = record->month;
    uint32_t day = record->day + days;
    for (uint32_t length = DaysOf(month); day > length; length = DaysOf(month)) {
        day -= length;
        if (++month <= kDecember) continue;
        month = 1;
        ++year;
        SetDaysOfFebruary(IsLeapYear(year) ? 29 : 28);
    }
    record->year = year;
    record->month = month;
    record->day = day;
    return StatusOk;
}

}  // namespace

Status CreateLibraryTime(LibraryTime** out) { return CreateRecord(out); }

Status CreateLibraryPreciseTime(LibraryPreciseTime** out) { return CreateRecord(out); }

Status CreateAccuracy(Accuracy** out) { return CreateRecord(out); }

Status FreeLibraryTime(LibraryTime* time) { return FreeRecord(time); }

Status FreeLibraryPreciseTime(LibraryPreciseTime* time) { return FreeRecord(time); }

Status FreeAccuracy(Accuracy* accuracy) { return FreeRecord(accuracy); }

Status CopyLibraryTime(LibraryTime* destination, const LibraryTime* source) { return CopyRecord(destination, source); }

Status CopyLibraryPreciseTime(LibraryPreciseTime* destination, const LibraryPreciseTime* source) {
    return CopyRecord(destination, source);
}

Status CopyAccuracy(Accuracy* destination, const Accuracy* source) { return CopyRecord(destination, source); }

Status SetLibraryTime(LibraryTime* time, uint32_t day, int32_t month, int32_t year, uint32_t hour, uint32_t minute,
                      uint32_t second) {
    return SetCalendar(time, day, month, year, hour, minute, second);
}

Status SetLibraryPreciseTime(LibraryPreciseTime* time, uint32_t day, int32_t month, int32_t year, uint32_t hour,
                             uint32_t minute, uint32_t second, uint32_t millisecond, uint32_t microsecond) {
    const Status status = SetCalendar(time, day, month, year, hour, minute, second);
    if (status != StatusOk) return status;
    return StoreInOrder({{&time->millisecond, millisecond, 0, 999}, {&time->microsecond, microsecond, 0, 999}});
}

Status SetAccuracy(Accuracy* accuracy, uint32_t seconds, uint32_t milliseconds, uint32_t microseconds) {
    if (accuracy == nullptr) return Fail(StatusBadArgument);
    *accuracy = {seconds, milliseconds, microseconds};
    return StatusOk;
}

Status SetLibraryTimeToNull(const LibraryTime* time) { return RefuseNullTime(time); }

Status SetLibraryPreciseTimeToNull(const LibraryPreciseTime* time) { return RefuseNullTime(time); }

Status SetAccuracyToNull(Accuracy* accuracy) { return SetAccuracy(accuracy, 0, 0, 0); }

Status GetLibraryTime(const LibraryTime* time, uint32_t* day, uint32_t* month, uint32_t* year, uint32_t* hour,
                      uint32_t* minute, uint32_t* second) {
    return GetFields(time, year, month, day, hour, minute, second);
}

Status GetLibraryPreciseTime(const LibraryPreciseTime* time, uint32_t* day, uint32_t* month, uint32_t* year,
                             uint32_t* hour, uint32_t* minute, uint32_t* second, uint32_t* millisecond,
                             uint32_t* microsecond) {
    return GetFields(time, year, month, day, hour, minute, second, millisecond, microsecond);
}

Status GetAccuracy(const Accuracy* accuracy, uint32_t* seconds, uint32_t* milliseconds, uint32_t* microseconds) {
    return GetFields(accuracy, seconds, milliseconds, microseconds);
}

Status GetLibraryLocalTime(const LibraryTime* time, uint32_t* day, uint32_t* month, uint32_t* year, uint32_t* hour,
                           uint32_t* minute, uint32_t* second) {
    return GetLocalFields(time, year, month, day, hour, minute, second);
}

Status GetLibraryLocalPreciseTime(const LibraryPreciseTime* time, uint32_t* day, uint32_t* month, uint32_t* year,
                                  uint32_t* hour, uint32_t* minute, uint32_t* second, uint32_t* millisecond,
                                  uint32_t* microsecond) {
    return GetLocalFields(time, year, month, day, hour, minute, second, millisecond, microsecond);
}

Status GetCurrentLibTime(LibraryTime* time) { return SetToNow(time); }

Status GetCurrentLibPreciseTime(LibraryPreciseTime* time) {
    const Status status = SetToNow(time);
    if (status != StatusOk) return status;
    time->millisecond = 0;
    time->microsecond = 0;
    return StatusOk;
}

uint32_t IsLibraryTimeNull(const LibraryTime* time) { return IsNull(time); }

uint32_t IsLibraryPreciseTimeNull(const LibraryPreciseTime* time) { return IsNull(time); }

uint32_t IsAccuracyNull(const Accuracy* accuracy) { return IsNull(accuracy); }

Status AddDaysToLibTime(LibraryTime* time, uint32_t days) { return AddDays(time, days); }

Status AddDaysToLibPreciseTime(LibraryPreciseTime* time, uint32_t days) { return AddDays(time, days); }

int32_t CompareTime(const LibraryTime* left, const LibraryTime* right) {
    const LibraryTime nullTime{};
    if (left == nullptr) left = &nullTime;
    if (right == nullptr) right = &nullTime;
    for (const auto field : Fields<LibraryTime>::kAll) {
        if (left->*field != right->*field) return left->*field < right->*field ? -1 : 1;
    }
    return 0;
}

uint32_t TestTimeValidity(const LibraryTime* notBefore, const LibraryTime* now, const LibraryTime* notAfter) {
    return CompareTime(notBefore, now) <= 0 && CompareTime(now, notAfter) <= 0 ? 0 : 1;
}
