// Exports that are one and the same function: several names of one symbol. The compiler compares the types.
#pragma once

// NOLINTBEGIN(bugprone-macro-parentheses): a name that is declared has none
#define TLVFORGE_ALIAS(name, target) decltype(target) name __attribute__((alias(#target)))

// The same for a function over another opaque handle, whose type can't be compared: the handles are one record.
#define TLVFORGE_ALIAS_OF_HANDLE(name, target) decltype(name) name __attribute__((alias(#target)))
// NOLINTEND(bugprone-macro-parentheses)
