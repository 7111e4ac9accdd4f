#include "java/text.h"

#include "common/texts.h"

namespace tlvforge::java {
namespace {

// The sign that a text begins with, and the length of its UTF-8 form; 0 without one.
struct FoundSign {
    uint8_t byte = 0;
    uint8_t length = 0;

    explicit FoundSign(const uint8_t* text) {
        for (const Cp1251Sign& sign : kCp1251Signs) {
            char form[3];
            const char* end = PutUtf8(sign.byte, form);
            uint8_t same = 0;  // a terminating zero is in no form, so that nothing after it is read
            while (form + same != end && text[same] == static_cast<uint8_t>(form[same])) ++same;
            if (form + same != end) continue;
            byte = sign.byte;
            length = same;
            return;
        }
    }
};

}  // namespace

uint32_t ConvertUtf8ToCp1251(const uint8_t* source, uint8_t* destination) {
    uint8_t* out = destination;
    Cp1251FromUtf8 reader;
    while (*source != 0) {
        const FoundSign sign(source);
        if (sign.length != 0 && !reader.IsInSequence()) {
            *out++ = sign.byte;
            source += sign.length;
        } else if (uint8_t character = 0; reader.Take(*source++, &character)) {
            *out++ = character;
        }
    }
    *out = 0;
    return static_cast<uint32_t>(out - destination);
}

}  // namespace tlvforge::java
