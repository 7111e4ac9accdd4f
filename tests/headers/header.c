/* A C program as users write it: the layout that it sees, and a schema of its own. */
#include "tlvforge/tlvforge.h"

#include <assert.h>
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* The records are part of the binary interface. */
#define AT(type, field, offset) static_assert(offsetof(type, field) == (offset), #type "." #field)
#define SIZE(type, size) static_assert(sizeof(type) == (size), #type)
// clang-format off
AT(Asn1Item, constructedBit, 1); AT(Asn1Item, itemFlags, 2);  AT(Asn1Item, kind, 3);        AT(Asn1Item, tagNumber, 4);
AT(Asn1Item, valueSize, 8);      AT(Asn1Item, children, 16);  AT(Asn1Item, childCount, 24);
AT(Asn1Item, defaultValue, 32);  AT(Asn1Choice, value, 8);    AT(Asn1Value, length, 4);      AT(Asn1Value, data, 8);
AT(Asn1BitString, length, 4);    AT(Asn1BitString, data, 8);  AT(Asn1List, items, 8);        AT(Asn1List, capacity, 16);
AT(Asn1List, comparator, 24);    AT(Asn1List, sorted, 32);    AT(LibraryTime, month, 4);
AT(LibraryTime, second, 20); AT(LibraryPreciseTime, second, 20); AT(LibraryPreciseTime, millisecond, 24);
SIZE(Asn1Item, 40); SIZE(Asn1Value, 16); SIZE(Asn1Any, 16); SIZE(LibraryPreciseTime, 32); SIZE(Accuracy, 12);
// clang-format on

/* Pair ::= SEQUENCE { number INTEGER, text UTF8String OPTIONAL } */
// clang-format off
static const Asn1Item kNumber = {.kind = Asn1KindInteger, .tagNumber = -1};
static const Asn1Item kText = {.kind = Asn1KindUTF8String, .tagNumber = -1, .itemFlags = Asn1FlagOptional};
static const Asn1Item* const kFields[] = {&kNumber, &kText};
static const Asn1Item kPair = {.kind = Asn1KindSequence, .constructedBit = Asn1Constructed, .tagNumber = -1,
                               .valueSize = 2 * sizeof(void*), .children = kFields, .childCount = 2};
// clang-format on
typedef struct Pair {
    Asn1Value *number, *text;
} Pair;

#define EXPECT(condition) \
    if (!(condition)) return fprintf(stderr, "line %d: %s\n", __LINE__, #condition), EXIT_FAILURE

int main(void) {
    static const uint8_t kDer[] = {0x30, 0x07, 0x02, 0x01, 0x2A, 0x0C, 0x02, 'h', 'i'};
    void* tree = NULL;
    uint32_t consumed = 0;
    EXPECT(Asn1DecodeItem(kDer, sizeof kDer, &kPair, &tree, &consumed) == StatusOk && consumed == sizeof kDer);

    const Pair* pair = tree;
    int32_t number = 0;
    EXPECT(GetAsn1Int32(pair->number, &number) == StatusOk && number == 42);
    EXPECT(pair->text->length == 2 && memcmp(pair->text->data, "hi", 2) == 0);

    uint8_t* der = NULL;
    uint32_t length = 0;
    EXPECT(Asn1Encode(tree, &kPair, &der, &length) == StatusOk);
    EXPECT(length == sizeof kDer && memcmp(der, kDer, length) == 0);
    free(der);
    FreeAsn1Object(&kPair, tree);
    return EXIT_SUCCESS;
}
