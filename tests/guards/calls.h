// Calls of any function by its name, with arguments that are drawn by their types.
#pragma once

#include <functional>
#include <map>

#include "../support.h"

namespace calls {

using support::Bytes;

// An argument or a result of any type.
using Word = uintptr_t;

struct Parameter {
    std::string type, name;
    bool IsPointer() const { return type.back() == '*' || type == "RsaAttributes" || type == "X509Extensions"; }
    bool IsSize() const { return type == "uint32_t" && (name == "length" || name.ends_with("Length")); }
    bool IsBuffer() const { return type == "uint8_t*" || type == "char*"; }
    bool IsNumber() const { return type == "uint32_t*" || type == "int32_t*"; }
    bool IsSlot() const { return type.ends_with("**") || type == "RsaAttributes*" || type == "X509Extensions*"; }
    // The type of the object that is handed in.
    std::string Object() const {
        const size_t begin = type.starts_with("const ") ? 6 : 0;
        return type.substr(begin, type.find('*') - begin);
    }
};

struct Prototype {
    std::string result;
    std::vector<Parameter> parameters;
};

// The recorded prototypes, and the functions, by name.
extern const std::map<std::string, Prototype> kPrototypes;
extern const std::map<std::string, Word (*)(const Word*)> kFunctions;

// Each function's row of a table in tests/ is what `rowOf` returns; without one nothing. The rows as they are today are
// left in a file of the same name in the working directory, for a change that is meant.
void CompareWithTable(const std::string& file, std::string (*rowOf)(const std::string& function));

// Objects are full ones, with what their row of arguments.tsv holds, or new ones; or their lists have so many members
// that the next one needs a larger table. The first one may be a record without anything.
enum State { kFull, kNew, kBlank, kMany };
constexpr uint32_t kRoom = 16384, kBlankSize = 256;

// A call with its arguments. What they point at stays until the process ends.
struct Call {
    // With `first`, if there is one, as its first argument.
    Call(const std::string& function, State state, Word first = 0);
    Word Make() const { return kFunctions.at(name)(words.data()); }
    // Frees the objects among the arguments.
    void FreeObjects() const;

    std::string name;
    const std::vector<Parameter>& parameters;
    std::vector<Word> words = {};

private:
    Word Draw(State state);  // the next argument
    uint32_t lastSize_ = 0;  // of bytes that were drawn
};

// A status by its name, another result as a number.
std::string NameOf(const std::string& function, Word result);

// What work(write) writes in a process of its own, which may end in the middle of it.
std::string InProcess(const std::function<void(const std::function<void(const std::string&)>& write)>& work);

}  // namespace calls
