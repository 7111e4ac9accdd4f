#include "cades/value_parts.h"

#include "engine/oids.h"

namespace tlvforge {

Status GetTypedValue(const TypedValue* record, Output type, Output value) {
    if (record == nullptr) return StoreNothing(type, value);
    return ReadOutputs(
        OutputRule::kAllFirst, [&] { return GetAsn1Oid(record->type, type.buffer, type.length); },
        BytesInto(record->value, value.buffer, value.length));
}

}  // namespace tlvforge
