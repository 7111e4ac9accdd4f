#include "tlvforge/time.h"

#include "common/times.h"
#include "engine/failure.h"
#include "engine/items.h"
#include "engine/nodes.h"

using namespace tlvforge;

namespace {

// Alternatives of the CHOICE Time.
enum { kUtcTime = 0, kGeneralizedTime = 1 };

// Other bytes than digits become nonsense, which the range checks of the records catch in most cases.
uint32_t Number(const uint8_t* digits, uint32_t count) {
    uint32_t number = 0;
    for (uint32_t at = 0; at < count; ++at) number = number * 10 + digits[at] - '0';
    return number;
}

// Up to three digits of a fraction as thousandths.
uint32_t Thousandths(const uint8_t* digits, uint32_t available) {
    uint32_t count = available < 3 ? available : 3;
    uint32_t number = Number(digits, count);
    for (; count < 3; ++count) number *= 10;
    return number;
}

// What follows the year: two digits each of month, day, hour, minute and second.
struct RestOfText {
    int32_t month;
    uint32_t day, hour, minute, second;

    explicit RestOfText(const uint8_t* text)
        : month(static_cast<int32_t>(Number(text, 2))),
          day(Number(text + 2, 2)),
          hour(Number(text + 4, 2)),
          minute(Number(text + 6, 2)),
          second(Number(text + 8, 2)) {}
};

Status ReadText(uint32_t year, const uint8_t* text, LibraryTime* time) {
    const RestOfText rest(text);
    return SetLibraryTime(time, rest.day, rest.month, static_cast<int32_t>(year), rest.hour, rest.minute, rest.second);
}

Status CheckText(const Asn1Value* value, const void* time, uint32_t least) {
    if (time == nullptr) return Fail(StatusBadArgument);
    if (value == nullptr || value->data == nullptr) return Fail(StatusBadEncoding);
    return value->length < least ? Fail(StatusBadValue) : StatusOk;
}

Status ReadUtcTime(const Asn1Value* value, LibraryTime* time, uint32_t least) {
    const Status status = CheckText(value, time, least);
    if (status != StatusOk) return status;
    const uint32_t year = Number(value->data, 2);
    return ReadText(year + (year < 50 ? 2000 : 1900), value->data + 2, time);
}

// A text while it is being written. A record may hold any numbers; one that is too wide for its place spoils the text.
struct TimeText {
    char bytes[22];
    uint32_t length = 0;
    bool fits = true;

    void Put(uint32_t number, uint32_t digits) {
        length += digits;
        for (char* at = bytes + length; digits != 0; --digits, number /= 10)
            *--at = static_cast<char>('0' + number % 10);
        fits = fits && number == 0;
    }
    void Put(char byte) { bytes[length++] = byte; }

    // From the month to the second.
    template <class Record>
    void PutRest(const Record& time) {
        const uint32_t numbers[] = {time.month, time.day, time.hour, time.minute, time.second};
        for (const uint32_t number : numbers) Put(number, 2);
    }

    Asn1Value* NewValue(uint32_t type) const {
        return AllocAsn1Value(type, reinterpret_cast<const uint8_t*>(bytes), length);
    }
};

// False for the null time, and for a record with a number that is too wide.
bool Format(const LibraryTime* time, uint32_t type, TimeText* text) {
    if (IsLibraryTimeNull(time) != 0) return false;
    if (type == Asn1KindUTCTime) {
        text->Put(time->year % 100, 2);
    } else {
        text->Put(time->year, 4);
    }
    text->PutRest(*time);
    text->Put('Z');
    return text->fits;
}

Asn1Value* NewTimeValue(const LibraryTime* time, uint32_t type) {
    TimeText text;
    return Format(time, type, &text) ? text.NewValue(type) : nullptr;
}

template <class Element, class Node>
Status DecodeAndRead(Status (*read)(const Node*, LibraryTime*), const uint8_t* data, uint32_t length,
                     LibraryTime* time) {
    if (AnyNull(data, time)) return Fail(StatusBadArgument);
    Tree<Element> tree;
    const Status status = tree.Decode(data, length);
    return status != StatusOk ? status : read(tree.Get(), time);
}

}  // namespace

namespace tlvforge {

Status Asn1TimeToLibraryTime(const Asn1Choice* choice, LibraryTime* time) {
    if (time == nullptr) return Fail(StatusBadArgument);
    if (choice == nullptr || choice->value == nullptr) return Fail(StatusBadEncoding);
    const Asn1Value* value = static_cast<const Asn1Value*>(choice->value);
    if (choice->selected == kUtcTime) return ReadUtcTime(value, time, 13);
    if (choice->selected == kGeneralizedTime) return GeneralizedTimeToLibraryTime(value, time);
    return Fail(StatusBadValue);
}

Status UtcTimeToLibraryTime(const Asn1Value* value, LibraryTime* time) { return ReadUtcTime(value, time, 15); }

Status GeneralizedTimeToLibraryTime(const Asn1Value* value, LibraryTime* time) {
    const Status status = CheckText(value, time, 15);
    if (status != StatusOk) return status;
    return ReadText(Number(value->data, 4), value->data + 4, time);
}

Status GeneralizedTimeToPreciseTime(const Asn1Value* value, LibraryPreciseTime* time) {
    const Status status = CheckText(value, time, 15);
    if (status != StatusOk) return status;
    const uint8_t* text = value->data;
    if (text[value->length - 1] != 'Z') return Fail(StatusBadValue);
    // A text of 16 bytes has no room for a digit after the point: its byte before the "Z" isn't looked at.
    if (value->length > 16 && text[14] != '.') return Fail(StatusBadValue);
    const uint32_t digits = value->length > 16 ? value->length - 16 : 0;
    const RestOfText rest(text + 4);
    return SetLibraryPreciseTime(time, rest.day, rest.month, static_cast<int32_t>(Number(text, 4)), rest.hour,
                                 rest.minute, rest.second, Thousandths(text + 15, digits),
                                 digits > 3 ? Thousandths(text + 18, digits - 3) : 0);
}

Asn1Value* LibraryTimeToGeneralizedTime(const LibraryTime* time) { return NewTimeValue(time, Asn1KindGeneralizedTime); }

Asn1Value* LibraryTimeToUtcTime(const LibraryTime* time) { return NewTimeValue(time, Asn1KindUTCTime); }

Asn1Value* PreciseTimeToGeneralizedTime(const LibraryPreciseTime* time) {
    if (IsLibraryPreciseTimeNull(time) != 0) return nullptr;
    TimeText text;
    text.Put(time->year, 4);
    text.PutRest(*time);
    text.Put('.');
    text.Put(time->millisecond, 3);
    text.Put(time->microsecond, 3);
    if (!text.fits) return nullptr;
    while (text.bytes[text.length - 1] == '0') --text.length;
    if (text.bytes[text.length - 1] == '.') --text.length;
    text.Put('Z');
    return text.NewValue(Asn1KindGeneralizedTime);
}

Status LibraryTimeToAsn1Time(const LibraryTime* time, Asn1Choice* choice) {
    if (choice == nullptr) return Fail(StatusBadArgument);
    const bool utc = time != nullptr && time->year < 2050;
    const uint32_t type = utc ? Asn1KindUTCTime : Asn1KindGeneralizedTime;
    TimeText text;
    if (!Format(time, type, &text)) return Fail(StatusBadTime);
    const Status status = ClearAsn1Choice(itemOf<Time>, choice);
    if (status != StatusOk) return status;
    choice->selected = utc ? kUtcTime : kGeneralizedTime;
    choice->value = text.NewValue(type);
    return choice->value == nullptr ? Fail(StatusOutOfMemory) : StatusOk;
}

}  // namespace tlvforge

Status DecodeTime(const uint8_t* data, uint32_t length, LibraryTime* time) {
    return DecodeAndRead<Time>(Asn1TimeToLibraryTime, data, length, time);
}

Status EncodeTime(const LibraryTime* time, uint8_t* buffer, uint32_t* length) {
    if (length == nullptr) return Fail(StatusBadArgument);
    Tree<Time> choice;
    Status status = choice.Create();
    if (status != StatusOk) return status;
    status = LibraryTimeToAsn1Time(time, choice.Get());
    if (status == StatusOutOfMemory) return status;
    // An invalid time has left the choice empty, and the encoder answers for it.
    return choice.Encode(buffer, length);
}

Status DecodeAsn1GeneralizedTime(const uint8_t* data, uint32_t length, LibraryTime* time) {
    return DecodeAndRead<schema::GeneralizedTime>(GeneralizedTimeToLibraryTime, data, length, time);
}

Status EncodeAsn1GeneralizedTime(const LibraryTime* time, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(time, length)) return Fail(StatusBadArgument);
    Tree<schema::GeneralizedTime> value(LibraryTimeToGeneralizedTime(time));
    // A time without a text is reported like a lack of memory, which callers of this function depend on.
    if (!value) return Fail(StatusOutOfMemory);
    return value.Encode(buffer, length);
}
