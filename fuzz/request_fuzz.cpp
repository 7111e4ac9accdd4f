#include "walk_x509.h"

// The bytes as a request, a set of attributes, and one of them.
void walk::WalkInput(const Bytes& in) {
    WALK(RsaAttribute, in, [](RsaAttribute* from) {
        Sure(Get(GetRsaAttributeOid, from));
        const auto add = [=](uint32_t i) {
            Carry<Octets>(Of(GetRsaAttributeValue, from, i), Of(AddRsaAttributeValue, from));
        };
        Each(GetRsaAttributeValuesCount, from, add);
    });
    WALK(RsaAttributes, in, WalkAttributes);
    WALK(PKCS10CertReq, in, WalkAndChangeRequest);
}
