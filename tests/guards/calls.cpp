#include "guards/calls.h"

#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <optional>
#include <sstream>

#ifdef TLVFORGE_COVERAGE
extern "C" void __gcov_dump();  // _exit doesn't write which lines have run
#else
static void __gcov_dump() {}
#endif

namespace calls {
namespace {

using support::Size, support::operator+;

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

// The rest of each line by its first column, of a file in tests/.
using Table = std::map<std::string, std::string>;
Table ReadTable(const std::string& file) {
    std::ifstream in(TLVFORGE_SOURCE_DIR "/tests/" + file);
    Table table;
    for (std::string line; std::getline(in, line);)
        if (const size_t tab = line.find('\t'); line[0] != '#' && tab != std::string::npos)
            table[line.substr(0, tab)] = line.substr(tab + 1);
    return table;
}

// Hex, where braces stand for their content with its length before it, $x stands for the row x, $x* for ten of it, and
// "x" for the text x.
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
            const Bytes once = Read(table, row);
            for (int i = in.peek() == '*' ? in.get(), 10 : 1; i > 0; --i) bytes = bytes + once;
        } else {
            bytes.push_back(support::Hex(std::string{c, static_cast<char>(in.get())}).at(0));
        }
    }
    return bytes;
}
std::optional<Bytes> Find(const std::string& name) {
    static const Table table = ReadTable("guards/arguments.tsv");
    const auto row = table.find(name);
    if (row == table.end()) return std::nullopt;
    std::istringstream in(row->second);
    return Read(table, in);
}

template <class T>
Word Keep(T value) {
    return reinterpret_cast<Word>(new T(value));
}
Word KeepBytes(const Bytes& bytes) { return reinterpret_cast<Word>((new Bytes(bytes))->data()); }

// What the tables have for a parameter of bytes: its row, or that of what is decoded from them.
std::optional<Bytes> Written(const Call& call, const Parameter& parameter, State state) {
    std::vector<std::string> rows = {call.name + "." + parameter.name, "." + parameter.name};
    if (call.name.starts_with("Decode") && call.words.empty()) {
        if (state == kMany) rows.push_back("many " + call.name.substr(6));
        rows.push_back(call.name.substr(6));
    }
    std::optional<Bytes> found;
    for (const std::string& row : rows)
        if (!found) found = Find(row);
    return found;
}

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

}  // namespace

const std::map<std::string, Word (*)(const Word*)> kFunctions = {
#define FUNCTION(name) {#name, [](const Word* arguments) { return Invoke(name, arguments); }},
#include "guards.inc"
};

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

void CompareWithTable(const std::string& file, std::string (*rowOf)(const std::string& function)) {
    Table expected = ReadTable(file);
    std::ofstream measured(file.substr(file.find('/') + 1));
    for (const auto& [function, prototype] : kPrototypes) {
        const std::string row = rowOf(function);
        EXPECT_EQ(row, expected[function]) << function;
        if (!row.empty()) measured << function << '\t' << row << '\n';
    }
    EXPECT_EQ(expected.size(), kPrototypes.size()) << "rows without a function";
}

Call::Call(const std::string& function, State state, Word first)
    : name(function), parameters(kPrototypes.at(function).parameters) {
    if (first != 0) words.push_back(first);
    while (words.size() < parameters.size()) words.push_back(Draw(state));
}

Word Call::Draw(State state) {
    const size_t at = words.size();
    const Parameter& parameter = parameters[at];
    const auto written = Written(*this, parameter, state);
    if (parameter.type == "const uint8_t*") {
        const bool hasSize = at + 1 < parameters.size() && parameters[at + 1].IsSize();
        const Bytes octets = written.value_or(hasSize ? Bytes{2, 1, 5} : Bytes{2, 0x2A, 3});
        lastSize_ = Size(octets);
        return KeepBytes(octets);
    }
    if (parameter.type == "const char*") {
        const Bytes text = written.value_or(support::Text("1.2.3"));
        lastSize_ = Size(text);
        return KeepBytes(text + Bytes{0});
    }
    if (parameter.IsBuffer()) return KeepBytes(Bytes(kRoom, 0xA5));
    if (parameter.IsNumber()) return Keep(at > 0 && parameters[at - 1].IsBuffer() ? kRoom : 0xA5A5A5A5u);
    if (parameter.IsSlot()) return Keep(calloc(1, kBlankSize));
    if (parameter.IsPointer()) return Object(parameter.Object(), state == kBlank && at > 0 ? kFull : state);
    if (!written) return parameter.IsSize() ? lastSize_ : 0;
    Word value = 0;
    for (const uint8_t byte : *written) value = value << 8 | byte;
    return value;
}

void Call::FreeObjects() const {
    for (size_t i = 0; i < words.size(); ++i) {
        const auto free = kFunctions.find("Free" + parameters[i].Object());
        if (free != kFunctions.end() && !parameters[i].IsSlot()) (void)free->second(&words[i]);
    }
}

std::string NameOf(const std::string& function, Word result) {
    if (kPrototypes.at(function).result != "Status") return std::to_string(static_cast<int32_t>(result));
    return support::StatusName(static_cast<Status>(result));
}

std::string InProcess(const std::function<void(const std::function<void(const std::string&)>& write)>& work) {
    int ends[2];
    if (pipe(ends) != 0) throw std::runtime_error("pipe");
    const pid_t child = fork();
    if (child == 0) {
        try {
            work([&](const std::string& text) { (void)!write(ends[1], text.data(), text.size()); });
        } catch (const std::exception& error) {
            fprintf(stderr, "%s\n", error.what());
        }
        __gcov_dump();
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

}  // namespace calls
