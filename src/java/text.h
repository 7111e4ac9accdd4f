// Texts from Java.
#pragma once

#include <stdint.h>

namespace tlvforge::java {

// Converts zero-terminated modified UTF-8, as GetStringUTFChars returns it, to CP1251 and a terminating zero, and
// returns the number of bytes without that zero. Both may be one buffer: the output never runs ahead of the input. This
// is no general converter: it knows the letters of Russian text and a few characters more. Any other character becomes
// a wrong byte if it has two bytes, and vanishes if it is longer; file names depend on it.
uint32_t ConvertUtf8ToCp1251(const uint8_t* source, uint8_t* destination);

}  // namespace tlvforge::java
