#include <cstdio>
#include <tlvforge/tlvforge.hpp>

int main() {
    const tlvforge::Bytes oid = tlvforge::Get(ConvertStringToOid, "1.2.643.2.2.31.1");
    std::printf("%s", tlvforge::ToHex(oid).c_str());
}
