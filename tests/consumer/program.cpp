#include <tlvforge/tlvforge.h>
#include <cstdio>
#include <vector>

int main() {
    std::vector<uint8_t> oid(32);
    uint32_t length = oid.size();
    if (ConvertStringToOid("1.2.643.2.2.31.1", oid.data(), &length) != StatusOk) return 1;
    oid.resize(length);
    for (const uint8_t byte : oid) std::printf("%02X", byte);
}
