#include "common/texts.h"
#include "tlvforge/cms_tools.h"

using namespace tlvforge;

namespace {
constexpr char kVersionInfo[] = "TLVFORGE v1.0 (64bit) 05/02/2019 (R.3729) Kestrelon";
}  // namespace

Status GetVersionInfo(uint8_t* text, uint32_t* length) {
    if (AnyNull(text, length)) return Fail(StatusBadArgument);
    return CopyOutText(kVersionInfo, sizeof kVersionInfo - 1, text, length);
}
