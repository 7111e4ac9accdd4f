// Every function with arguments that fit, and then with one of them missing, zero or out of range: guards.tsv has what
// each call gives, and a sum of what all of them leave. The calls of a function are made in a process of its own, which
// frees nothing.
#include "guards/calls.h"

#include <set>
#include <sstream>

namespace {

using namespace calls;
using support::SetZone;

// The outputs of a call as they are.
std::vector<Bytes> Outputs(const Call& call) {
    const std::map<std::string, size_t> records = {{"LibraryTime*", sizeof(LibraryTime)},
                                                   {"LibraryPreciseTime*", sizeof(LibraryPreciseTime)},
                                                   {"Accuracy*", sizeof(Accuracy)}};
    std::vector<Bytes> outputs;
    for (size_t i = 0; i < call.words.size(); ++i) {
        const auto* const at = reinterpret_cast<const uint8_t*>(call.words[i]);
        const Parameter& parameter = call.parameters[i];
        const auto record = records.find(parameter.type);
        const size_t size = record != records.end() ? record->second
                            : parameter.IsBuffer()  ? kRoom
                            : parameter.IsNumber()  ? 4
                            : parameter.IsSlot()    ? 8
                                                    : 0;
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

// Adds to a checksum (FNV-1a) what a call has left: its outputs, and the encodings of its first object and of those it
// gave.
void AddEffects(const Call& call, uint32_t* sum) {
    const auto add = [sum](const Bytes& bytes) {
        for (const uint8_t byte : bytes) *sum = (*sum ^ byte) * 16777619;
    };
    const std::vector<Bytes> outputs = Outputs(call);
    for (size_t i = 0; i < outputs.size(); ++i) {
        const Parameter& parameter = call.parameters[i];
        if (!parameter.IsSlot()) add(outputs[i]);
        const std::string encode = "Encode" + (parameter.IsPointer() ? parameter.Object() : "");
        if (call.words[i] == 0 || (i > 0 && !parameter.IsSlot()) || !kPrototypes.contains(encode)) continue;
        const Word object = parameter.IsSlot() ? *reinterpret_cast<const Word*>(call.words[i]) : call.words[i];
        if (object == 0) continue;
        const Call encoded(encode, kFull, object);
        add({static_cast<uint8_t>(encoded.Make())});
        for (const Bytes& bytes : Outputs(encoded)) add(bytes);
    }
}

// False for what frees its object or those that it gave or reads the clock, and for a recipient that is a number here.
bool HasEffects(const std::string& function) {
    return !function.starts_with("Free") && !function.starts_with("GetCurrent") &&
           function != "DecodeExtensionIssuingDistributionPoint" && function != "AddCmsEnvelopedDataRecipientInfo";
}

bool IsList(const Parameter& parameter) {
    const std::set<std::string> names = {"certificates", "crls", "list", "names", "responses", "strings", "texts"};
    const std::set<std::string> types = {"SeveralData", "X509Name"};
    return parameter.IsPointer() && !parameter.IsSlot() &&
           (names.contains(parameter.name) || types.contains(parameter.Object()));
}

// Makes all calls of a function: writes the name of each when it begins, and its result, or "same" for that of the full
// objects.
void MeasureAll(const std::string& function, const auto& write) {
    std::map<std::string, std::string> results;
    uint32_t effects = 0;
    const auto measure = [&](const std::string& name, const std::string& of, const Call& call) {
        write(name + '\t');
        const std::string result = Measure(call);
        write((results[of] == result ? "same" : result) + '\n');
        results.try_emplace(name, result);
        if (result == "Ok" && name != "blank" && HasEffects(function)) AddEffects(call, &effects);
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
    if (Call call(function, kFull); IsList(parameters.empty() ? Parameter() : parameters[0])) {
        auto* const list = reinterpret_cast<Asn1List*>(call.words[0]);
        if (list->count != 0) list->items[0] = nullptr;
        measure("hole", "full", call);
    }
    if (effects != 0) write("leaves\t" + std::to_string(effects) + '\n');
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

TEST(Guards, Table) {
    SetZone("XYZ-5:30");
    CompareWithTable("guards/guards.tsv", RowOf);
    SetZone(nullptr);
}

}  // namespace
