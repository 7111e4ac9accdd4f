#include <stdio.h>
#include <tlvforge/tlvforge.h>

int main(void) {
    uint8_t oid[32];
    uint32_t length = sizeof oid;
    if (ConvertStringToOid("1.2.643.2.2.31.1", oid, &length) != StatusOk) return 1;
    for (uint32_t i = 0; i < length; ++i) printf("%02X", oid[i]);
    return 0;
}
