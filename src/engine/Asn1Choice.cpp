#include "engine/nodes.h"

using namespace tlvforge;

namespace tlvforge {

Asn1Choice* AllocAsn1Choice(uint32_t selected, void* value) {
    Asn1Choice* choice = NewRecord<Asn1Choice>();
    if (choice != nullptr) *choice = {selected, value};
    return choice;
}

Status ClearAsn1Choice(const Asn1Item& item, Asn1Choice* choice) {
    if (choice == nullptr) return Fail(StatusBadArgument);
    if (choice->value == nullptr) return StatusOk;
    if (choice->selected >= item.childCount || item.children == nullptr) return Fail(StatusBadArgument);
    FreeAsn1Object(item.children[choice->selected], choice->value);
    choice->value = nullptr;
    return StatusOk;
}

}  // namespace tlvforge

Status GetAsn1ChoiceUnderlyingType(void** value, const Asn1Item** item) {
    if (AnyNull(value, item) || AnyNull(*static_cast<Cell*>(value), *item)) return Fail(StatusBadArgument);
    const Asn1Choice& choice = *static_cast<const Asn1Choice*>(*static_cast<Cell*>(value));
    if (choice.selected >= (*item)->childCount || (*item)->children == nullptr) return Fail(StatusBadAlternative);
    *static_cast<Cell*>(value) = choice.value;
    *item = (*item)->children[choice.selected];
    return StatusOk;
}
