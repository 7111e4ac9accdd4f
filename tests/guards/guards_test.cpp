// Every function with arguments that fit, and then with one of them missing, zero or out of range: guards.tsv has what
// each call gives. The calls of a function are made in a process of its own, which frees nothing.
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <map>
#include <optional>
#include <sstream>

#include "../support.h"

namespace {

using support::Bytes, support::Size, support::operator+;

// ---- What is called ----

// An argument or a result of any type.
using Word = uintptr_t;

template <class T>
T As(Word word) {
    if constexpr (std::is_pointer_v<T>)
        return reinterpret_cast<T>(word);
    else
        return static_cast<T>(word);
}

template <class Result, class... T>
Word Invoke(Result (*function)(T...), const Word* arguments) {
    return [&]<size_t... I>(std::index_sequence<I...>)->Word {
        if constexpr (std::is_void_v<Result>)
            return function(As<T>(arguments[I])...), 0;
        else if constexpr (std::is_pointer_v<Result>)
            return function(As<T>(arguments[I])...) != nullptr;
        else
            return static_cast<Word>(function(As<T>(arguments[I])...));
    }
    (std::index_sequence_for<T...>());
}

const std::map<std::string, Word (*)(const Word*)> kFunctions = {
#define FUNCTION(name) {#name, [](const Word* arguments) { return Invoke(name, arguments); }},
#include "guards.inc"
};

struct Parameter {
    std::string type, name;
    bool IsHandle() const { return type == "RsaAttributes" || type == "X509Extensions"; }
    bool IsPointer() const { return type.back() == '*' || IsHandle(); }
    bool IsSize() const { return type == "uint32_t" && (name == "length" || name.ends_with("Length")); }
    bool IsBuffer() const { return type == "uint8_t*" || type == "char*"; }
    bool IsNumber() const { return type == "uint32_t*" || type == "int32_t*"; }
    bool IsSlot() const { return type.ends_with("**") || type == "RsaAttributes*" || type == "X509Extensions*"; }
    bool IsOutput() const { return IsBuffer() || IsNumber() || IsSlot(); }
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

// The recorded prototypes by name.
const std::map<std::string, Prototype> kPrototypes = [] {
    const auto split = [](const std::string& text) {
        const size_t name = text.find_last_of(" *") + 1, type = text.find_first_not_of(' ');
        return Parameter{text.substr(type, text.find_last_not_of(' ', name - 1) + 1 - type), text.substr(name)};
    };
    std::map<std::string, Prototype> prototypes;
    std::ifstream in(TLVFORGE_SOURCE_DIR "/tests/exports/prototypes.txt");
    for (std::string line; std::getline(in, line);) {
        const size_t open = line.find('(');
        const Parameter head = split(line.substr(0, open));
        Prototype& prototype = prototypes[head.name] = {head.type, {}};
        std::istringstream rest(line.substr(open + 1, line.size() - open - 2));
        for (std::string part; std::getline(rest, part, ',');) prototype.parameters.push_back(split(part));
    }
    return prototypes;
}();

// ---- What it is called with ----

// The rest of each line by its first column.
using Table = std::map<std::string, std::string>;
Table ReadTable(const char* file) {
    std::ifstream in(std::string(TLVFORGE_SOURCE_DIR "/tests/guards/") + file);
    Table table;
    for (std::string line; std::getline(in, line);)
        if (const size_t tab = line.find('\t'); line[0] != '#' && tab != std::string::npos)
            table[line.substr(0, tab)] = line.substr(tab + 1);
    return table;
}

// Hex, where braces stand for their content with its length before it, $x stands for the row x, and "x" for the text x.
Bytes Read(const Table& table, std::istream& in) {
    Bytes bytes;
    for (char c = 0; in >> c && c != '}';) {
        std::string word;
        if (c == '{') {
            const Bytes inner = support::Tlv(0, Read(table, in));
            bytes.insert(bytes.end(), inner.begin() + 1, inner.end());
        } else if (c == '"') {
            std::getline(in, word, '"');
            bytes = bytes + support::Text(word);
        } else if (c == '$') {
            while (isalnum(in.peek())) word += static_cast<char>(in.get());
            std::istringstream row(table.at(word));
            bytes = bytes + Read(table, row);
        } else {
            bytes.push_back(support::Hex(std::string{c, static_cast<char>(in.get())}).at(0));
        }
    }
    return bytes;
}
std::optional<Bytes> Find(const std::string& name) {
    static const Table table = ReadTable("arguments.tsv");
    const auto row = table.find(name);
    if (row == table.end()) return std::nullopt;
    std::istringstream in(row->second);
    return Read(table, in);
}

// Objects are full ones, with what their row holds, or new ones. The first one may be a record without anything.
enum State { kFull, kNew, kBlank };
constexpr uint32_t kRoom = 4096, kBlankSize = 256;
constexpr uint8_t kUntouched = 0xA5;

// A call with its arguments. What they point at stays until the process ends.
struct Call {
    // With `first`, if there is one, as its first argument.
    Call(const std::string& function, State state, Word first = 0)
        : name(function), parameters(kPrototypes.at(function).parameters) {
        if (first != 0) words.push_back(first);
        while (words.size() < parameters.size()) words.push_back(Draw(parameters[words.size()], words.size(), state));
    }
    Word Make() const { return kFunctions.at(name)(words.data()); }

    std::string name;
    const std::vector<Parameter>& parameters;
    std::vector<Word> words = {};

private:
    template <class T>
    static Word Keep(T value) {
        return reinterpret_cast<Word>(new T(value));
    }
    static Word KeepBytes(const Bytes& bytes) { return reinterpret_cast<Word>((new Bytes(bytes))->data()); }
    std::optional<Bytes> Written(const std::string& parameter) const {
        const auto own = Find(name + "." + parameter);
        return own ? own : Find("." + parameter);
    }
    Word Draw(const Parameter& parameter, size_t at, State state);
    Bytes Octets(const std::string& parameter, size_t at) const {
        if (const auto written = Written(parameter)) return *written;
        if (const auto value = name.starts_with("Decode") && at == 0 ? Find(name.substr(6)) : std::nullopt)
            return *value;
        return at + 1 < parameters.size() && parameters[at + 1].IsSize() ? Bytes{2, 1, 5} : Bytes{2, 0x2A, 3};
    }
    uint32_t lastSize_ = 0;
};

// A record of the engine with a number in it, or nothing for other types.
void* EngineRecord(const std::string& type) {
    auto* const octets = static_cast<uint8_t*>(calloc(1, 8));
    std::copy_n("\2\1\5", 3, octets);
    if (type == "Asn1Item") return new Asn1Item{0, 0, 0, Asn1KindInteger, -1, 0, nullptr, 0, nullptr};
    if (type == "Asn1Value" || type == "void") return AllocAsn1Integer(5);
    if (type == "Asn1Any") return new Asn1Any{Asn1KindInteger, 3, octets};
    if (type == "Asn1BitString") return new Asn1BitString{0, 3, octets};
    if (type == "Asn1List") return new Asn1List{1, new void*(AllocAsn1Integer(5)), 1, nullptr, 1};
    return nullptr;
}

// Made by the functions that the row of the type names: the first one stores it, the others get it as their first
// argument. Usually by that which decodes it.
Word Object(const std::string& type, State state) {
    if (void* const record = EngineRecord(type)) return reinterpret_cast<Word>(record);
    if (state == kBlank || !kPrototypes.contains("Create" + type)) return reinterpret_cast<Word>(calloc(1, kBlankSize));
    Word object = 0;
    const auto makers = Find("makers " + type);
    std::istringstream functions(state == kNew ? "Create" + type
                                 : makers      ? std::string(makers->begin(), makers->end())
                                               : "Decode" + type);
    for (std::string function; functions >> function;) {
        const Call call(function, state, object);
        if (call.Make() != StatusOk) throw std::runtime_error(function + " makes no " + type);
        for (size_t i = 0; i < call.words.size(); ++i)
            if (object == 0 && call.parameters[i].IsSlot() && call.parameters[i].Object() == type)
                object = *reinterpret_cast<Word*>(call.words[i]);
    }
    return object;
}

Word Call::Draw(const Parameter& parameter, size_t at, State state) {
    if (parameter.type == "const uint8_t*") {
        const Bytes octets = Octets(parameter.name, at);
        lastSize_ = Size(octets);
        return KeepBytes(octets);
    }
    if (parameter.type == "const char*") {
        const Bytes text = Written(parameter.name).value_or(support::Text("1.2.3"));
        lastSize_ = Size(text);
        return KeepBytes(text + Bytes{0});
    }
    if (parameter.IsBuffer()) return KeepBytes(Bytes(kRoom, kUntouched));
    if (parameter.IsNumber()) return Keep(at > 0 && parameters[at - 1].IsBuffer() ? kRoom : 0xA5A5A5A5u);
    if (parameter.IsSlot()) return Keep(calloc(1, kBlankSize));
    if (parameter.IsPointer()) return Object(parameter.Object(), state == kBlank && at > 0 ? kFull : state);
    if (const auto number = Written(parameter.name)) {
        Word value = 0;
        for (const uint8_t byte : *number) value = value << 8 | byte;
        return value;
    }
    return parameter.IsSize() ? lastSize_ : 0;
}

// ---- What it gives ----

std::string NameOf(const std::string& function, Word result) {
    if (kPrototypes.at(function).result != "Status") return std::to_string(static_cast<int32_t>(result));
    return support::StatusName(static_cast<Status>(result));
}

// The outputs of a call as they are.
std::vector<Bytes> Outputs(const Call& call) {
    std::vector<Bytes> outputs;
    for (size_t i = 0; i < call.words.size(); ++i) {
        const auto* const at = reinterpret_cast<const uint8_t*>(call.words[i]);
        const Parameter& parameter = call.parameters[i];
        const size_t size = parameter.IsBuffer() ? kRoom : parameter.IsNumber() ? 4 : parameter.IsSlot() ? 8 : 0;
        outputs.push_back(at != nullptr && size != 0 ? Bytes(at, at + size) : Bytes());
    }
    return outputs;
}

// The result of a call, and after a failure the outputs that it has stored, with 0 for a zero.
std::string Measure(const Call& call) {
    const std::vector<Bytes> before = Outputs(call);
    const Word status = call.Make();
    std::string result = NameOf(call.name, status);
    if (result == "Ok" || kPrototypes.at(call.name).result != "Status") return result;
    const std::vector<Bytes> after = Outputs(call);
    for (size_t i = 0; i < after.size(); ++i) {
        if (after[i] == before[i]) continue;
        result += "," + call.parameters[i].name;
        if (std::count(after[i].begin(), after[i].end(), 0) == static_cast<ptrdiff_t>(after[i].size())) result += "=0";
    }
    return result;
}

// Makes all calls of a function: writes the name of each when it begins, and its result, or "same" for that of the full
// objects.
void MeasureAll(const std::string& function, const auto& write) {
    std::map<std::string, std::string> results;
    const auto measure = [&](const std::string& name, const std::string& of, const Call& call) {
        write(name + '\t');
        const std::string result = Measure(call);
        write((results[of] == result ? "same" : result) + '\n');
        results.try_emplace(name, result);
    };
    const auto& parameters = kPrototypes.at(function).parameters;
    (void)GetAsn1Int32(nullptr, nullptr);  // for GetLastFileErrorAsn
    measure("full", "", Call(function, kFull));
    measure("new", "full", Call(function, kNew));
    measure("blank", "full", Call(function, kBlank));
    for (const State state : {kFull, kNew})
        for (size_t i = 0; i < parameters.size(); ++i) {
            const auto with = [&](const char* suffix, auto change) {
                Call call(function, state);
                change(call.words[i]);
                const std::string name = parameters[i].name + suffix;
                measure((state == kNew ? "new:" : "") + name, state == kNew ? name : "", call);
            };
            if (parameters[i].IsPointer())
                with("", [](Word& word) { word = 0; });
            else if (parameters[i].IsSize())
                with("=0", [](Word& word) { word = 0; });
            else
                with("=max", [](Word& word) { word = UINT32_MAX; });
            if (parameters[i].IsNumber() && i > 0 && parameters[i - 1].IsBuffer())
                with("=0", [](Word word) { *reinterpret_cast<uint32_t*>(word) = 0; });
        }
}

// What MeasureAll writes in a process of its own, up to the call that ends it.
std::string InProcess(const auto& work) {
    int ends[2];
    if (pipe(ends) != 0) throw std::runtime_error("pipe");
    const pid_t child = fork();
    if (child == 0) {
        try {
            work([&](const std::string& text) { (void)!write(ends[1], text.data(), text.size()); });
        } catch (const std::exception& error) {
            fprintf(stderr, "%s\n", error.what());
        }
        _exit(0);
    }
    close(ends[1]);
    std::string text;
    char part[4096];
    for (ssize_t size; (size = read(ends[0], part, sizeof part)) > 0;) text.append(part, static_cast<size_t>(size));
    close(ends[0]);
    waitpid(child, nullptr, 0);
    return text;
}

// A row: the calls by their results.
std::string RowOf(const std::string& function) {
    std::vector<std::pair<std::string, std::string>> groups;
    std::istringstream lines(InProcess([&](const auto& write) { MeasureAll(function, write); }));
    for (std::string name, result; std::getline(lines, name, '\t');) {
        if (!std::getline(lines, result)) result = "ends the process";
        if (result == "same") continue;
        auto group = std::find_if(groups.begin(), groups.end(), [&](const auto& g) { return g.first == result; });
        if (group == groups.end()) group = groups.insert(group, {result, ""});
        group->second += " " + name;
    }
    std::string row;
    for (const auto& [result, names] : groups) row += (row.empty() ? "" : " | ") + result + ":" + names;
    return row;
}

// The rows as they are today are left in guards.tsv of the working directory, for a change that is meant.
TEST(Guards, Table) {
    const Table expected = ReadTable("guards.tsv");
    std::ofstream measured("guards.tsv");
    for (const auto& [function, prototype] : kPrototypes) {
        ASSERT_TRUE(expected.contains(function)) << function << " has no row";
        const std::string row = RowOf(function);
        EXPECT_EQ(row, expected.at(function)) << function;
        measured << function << '\t' << row << '\n';
    }
    EXPECT_EQ(expected.size(), kPrototypes.size());
}

}  // namespace
