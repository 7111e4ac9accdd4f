// tlvforge-inspect [OPTION]... [FILE]...: prints an outline of documents, DER or PEM; --help lists the options.

#include <getopt.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <optional>

#include "common/platform.h"
#include "kinds.h"
#include "sample.h"
#include "source.h"

using namespace inspect;

namespace {

enum ExitStatus { kFine = 0, kSomeFailed = 1, kWrongUsage = 2 };

constexpr char kUsage[] =
    "usage: tlvforge-inspect [--kind KIND] [--pem N|LABEL] [--certificates] [--limit N] [--json] [--color[=WHEN]]\n"
    "                        [FILE]...\n";

constexpr char kHelp[] = R"(
Prints an outline of each document in the files: certificates, revocation lists, requests, CMS messages, OCSP and
time-stamps, DER or PEM; keys as far as they are no secret. Without a file, and for -, standard input is read.

  --kind KIND     take every document for one of this kind, instead of trying all
  --pem N|LABEL   of PEM show block N, counted from 1, or those with a label, such as CERTIFICATE, instead of all
  --certificates  certificates inside of other documents whole, and not only their names and numbers
  --limit N       at most N bytes of a value and N members of a list
  --json          one document a line, as JSON, with nothing left out
  --color[=WHEN]  colours, and values in a column: always, never, or auto (the default), which is on a terminal
                  unless NO_COLOR is set
  --sample        show a sample certificate
  -h, --help      show this

A line of JSON is {"file", "block" and "label" (of PEM), "document" (of several in a file), "kind", "outline":
[ENTRY...]}, or has "error" in place of the last two. An entry has a "name", "value" (text), "hex", "remark", "status"
and "meaning" (where the library refuses a part), "count" (of a list), and "members", which are entries; each where
there is one.
In texts \u{202E} stands for a character that can't be shown, \xFF for a byte that is none, and \\ for a backslash.

Exit status: 0 everything was shown, 1 some document or file could not be, 2 the command line is wrong.
)";

struct Options {
    const Kind* kind = nullptr;
    const char* pem = nullptr;  // a number or a label
    size_t limit = SIZE_MAX;
    bool json = false;
    bool certificates = false;
    bool sample = false;
    bool coloured = false;
};

// What isn't from a document may hold any bytes as well.
View AsBytes(std::string_view text) { return {reinterpret_cast<const uint8_t*>(text.data()), text.size()}; }
std::string Shown(std::string_view text) { return ShowUtf8(AsBytes(text)); }

class Inspector {
public:
    Inspector(const Options& options, Outline& outline) : options_(options), outline_(outline) {}

    bool IsComplete() const { return complete_; }

    void InspectPath(const char* path, bool alone) {
        const bool isInput = strcmp(path, "-") == 0;
        if (isInput && tlvforge::IsTerminal(stdin)) {
            fprintf(stderr, "tlvforge-inspect: reading standard input; end it with Ctrl-D, or see --help\n");
        }
        Inspect(Origin(isInput ? "standard input" : Shown(path), alone),
                [&](Bytes& bytes) { return isInput ? ReadToEnd(stdin, bytes) : ReadPath(path, bytes); });
    }

    void InspectSample() {
        Inspect(Origin("sample"), [](Bytes& bytes) {
            const View sample = AsBytes(kSampleCertificate);
            bytes.assign(sample.begin(), sample.end());
            return std::string();
        });
    }

private:
    template <class Read>
    void Inspect(const Origin& origin, Read&& read) {
        try {
            Bytes bytes;
            const std::string wrong = read(bytes);
            if (!wrong.empty()) return Refuse(origin, wrong);
            if (bytes.empty()) return Refuse(origin, "empty");
            if (!IsDer(bytes)) return InspectPem(origin, bytes);
            if (options_.pem != nullptr) return Refuse(origin, "DER, and without blocks");
            InspectDocuments(origin, bytes, {});
        } catch (const std::bad_alloc&) {
            Refuse(origin, "not enough memory");
        }
    }

    bool IsSelected(const PemBlock& block, size_t number) const {
        return options_.pem == nullptr || block.label == options_.pem || std::to_string(number) == options_.pem;
    }

    void InspectPem(const Origin& file, View bytes) {
        const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        const std::vector<PemBlock> blocks = SplitPem(text);
        if (blocks.empty()) return InspectBase64(file, text);
        bool found = false;
        for (size_t i = 0; i < blocks.size(); ++i) {
            if (!IsSelected(blocks[i], i + 1)) continue;
            found = true;
            Origin origin = file;
            origin.block = i + 1;
            origin.label = Shown(blocks[i].label);
            if (blocks.size() > 1) origin.name += ", block " + std::to_string(i + 1);
            origin.alone = file.alone && blocks.size() == 1;
            InspectBlock(origin, blocks[i]);
        }
        if (found) return;
        Refuse(file, "no block " + Shown(options_.pem) + " of PEM, which has " + std::to_string(blocks.size()));
    }

    // Without armour.
    void InspectBase64(const Origin& origin, std::string_view text) {
        if (options_.pem != nullptr) return Refuse(origin, "no PEM, and without blocks");
        Bytes der;
        const std::string wrong = DecodeBase64(text, 1, der);
        if (wrong.empty()) return InspectDocuments(origin, der, {"in Base64"});
        const std::string_view start = text.substr(0, 8);
        Refuse(origin, "neither DER nor PEM", {"it begins with " + ToHex(AsBytes(start)), "as Base64, " + wrong});
    }

    void InspectBlock(const Origin& origin, const PemBlock& block) {
        const std::string place = "in the block " + origin.label + (origin.label.empty() ? "of line " : " of line ") +
                                  std::to_string(block.line);
        Bytes der;
        const std::string wrong = DecodeBase64(block.text, block.textLine, der);
        if (!wrong.empty()) return Refuse(origin, "no PEM that can be read", {wrong, place});
        if (block.isEncrypted) return Refuse(origin, "encrypted: " + origin.label, {place});
        InspectDocuments(origin, der, {place});
    }

    // One after the other, as long as an element follows that can be one.
    void InspectDocuments(const Origin& file, View bytes, const std::vector<std::string>& place) {
        const std::optional<Element> first = ReadElement(bytes);
        const View after = first ? bytes.subspan(first->whole.size()) : View();
        const std::optional<Element> second = ReadElement(after);
        if (!second || !second->IsUniversal(Asn1KindSequence)) {
            return InspectDocument(file, first ? first->whole : bytes, after, place);
        }
        for (Origin origin = file; !bytes.empty(); bytes = bytes.subspan(ReadElement(bytes)->whole.size())) {
            const Element element = *ReadElement(bytes);
            const View rest = bytes.subspan(element.whole.size());
            const std::optional<Element> next = ReadElement(rest);
            const bool isLast = !next || !next->IsUniversal(Asn1KindSequence);
            ++origin.document;
            origin.alone = false;
            origin.name = file.name + ", document " + std::to_string(origin.document);
            InspectDocument(origin, element.whole, isLast ? rest : View(), place);
            if (isLast) return;
        }
    }

    // With no kind given, the first one whose decoder takes the bytes.
    void InspectDocument(const Origin& origin, View bytes, View after, const std::vector<std::string>& place) {
        Refusals refusals(bytes);
        const Kind* const kind = Recognise(options_.kind, origin.label, bytes, refusals);
        const std::optional<Element> element = ReadWholeElement(bytes);
        if (kind == nullptr || !element) {
            std::vector<std::string> details = refusals.Describe();
            details.insert(details.end(), place.begin(), place.end());
            return Refuse(origin, options_.kind != nullptr ? "not of this kind" : "not a known document", details);
        }
        outline_.Begin(origin, kind->name);
        // Also when memory ends inside.
        const std::unique_ptr<Outline, void (*)(Outline*)> end(&outline_, [](Outline* begun) { begun->End(); });
        ShowDocument(outline_, *kind, *element, options_.certificates || options_.json);
        if (!after.empty()) outline_.Hex("After the document", after);
    }

    void Refuse(const Origin& origin, std::string reason, const std::vector<std::string>& details = {}) {
        complete_ = false;
        std::string message = origin.name + ": " + reason + "\n";
        for (const std::string& detail : details) {
            message.append("    ").append(detail).append("\n");
            reason.append("; ").append(detail);
        }
        fflush(stdout);
        fputs(message.c_str(), stderr);
        outline_.Refuse(origin, reason);
    }

    const Options& options_;
    Outline& outline_;
    bool complete_ = true;
};

// --- The command line ---

bool IsForTerminal() {
    const char* const noColour = getenv("NO_COLOR");
    return tlvforge::kTerminalsHaveColours && tlvforge::IsTerminal(stdout) && (noColour == nullptr || *noColour == 0);
}

// Whether it was one of the three words.
bool SetColour(Options& options, std::string_view when) {
    options.coloured = when == "always" || (when == "auto" && IsForTerminal());
    return when == "always" || when == "auto" || when == "never";
}

// Whether it was a number.
bool SetLimit(Options& options, const char* text) {
    char* end = nullptr;
    options.limit = strtoul(text, &end, 10);
    return *text >= '0' && *text <= '9' && *end == 0;
}

void PrintKinds(FILE* stream) {
    for (const Kind& kind : kKinds) fprintf(stream, " %s", kind.name);
    fprintf(stream, "\n");
}

int Complain(const char* what, const char* value) {
    fprintf(stderr, "tlvforge-inspect: %s %s\n%skinds:", what, Shown(value).c_str(), kUsage);
    PrintKinds(stderr);
    return kWrongUsage;
}

int Help() {
    printf("%s%s\nKinds:", kUsage, kHelp);
    PrintKinds(stdout);
    return kFine;
}

enum OptionName { kKind = 256, kPem, kLimit, kJson, kCertificates, kColor, kSample, kHelpName };

constexpr option kOptions[] = {{"kind", required_argument, nullptr, kKind},
                               {"pem", required_argument, nullptr, kPem},
                               {"limit", required_argument, nullptr, kLimit},
                               {"json", no_argument, nullptr, kJson},
                               {"certificates", no_argument, nullptr, kCertificates},
                               {"color", optional_argument, nullptr, kColor},
                               {"sample", no_argument, nullptr, kSample},
                               {"help", no_argument, nullptr, kHelpName},
                               {}};

// The exit status, unless the option was taken.
std::optional<int> TakeOption(int name, char** arguments, Options& options) {
    const char* const value = optarg != nullptr ? optarg : "always";
    // Of several letters after a hyphen, the one.
    const char letter[] = {'-', static_cast<char>(optopt), 0};
    const bool isLetter = optopt > 0 && optopt < kKind;
    switch (name) {
        case kKind: options.kind = FindKind(value); break;
        case kPem: options.pem = optarg; break;
        case kJson: options.json = true; break;
        case kCertificates: options.certificates = true; break;
        case kSample: options.sample = true; break;
        case kLimit:
            if (!SetLimit(options, value)) return Complain("a limit is a number, not", value);
            break;
        case kColor:
            if (!SetColour(options, value)) return Complain("colours are always, never or auto, not", value);
            break;
        case 'h':
        case kHelpName: return Help();
        case ':': return Complain("a value is missing after", arguments[optind - 1]);
        default: return Complain("there is no option", isLetter ? letter : arguments[optind - 1]);
    }
    if (name == kKind && options.kind == nullptr) return Complain("there is no kind", value);
    return std::nullopt;
}

std::optional<int> ReadOptions(int count, char** arguments, Options& options) {
    options.coloured = IsForTerminal();
    opterr = 0;
    for (int name = 0; (name = getopt_long(count, arguments, ":h", kOptions, nullptr)) != -1;) {
        if (const std::optional<int> result = TakeOption(name, arguments, options)) return result;
    }
    if (options.sample && optind < count) return Complain("the sample is shown alone, without", arguments[optind]);
    return std::nullopt;
}

void InspectAll(Inspector& inspector, int count, char** paths) {
    static char input[] = "-";
    if (count == 0) inspector.InspectPath(input, true);
    for (int i = 0; i < count; ++i) inspector.InspectPath(paths[i], count == 1);
}

}  // namespace

int main(int count, char** arguments) {
    Options options;
    tlvforge::PrepareStreams();
    if (const std::optional<int> result = ReadOptions(count, arguments, options)) return *result;
    const std::unique_ptr<Outline> outline =
        options.json ? MakeJsonOutline() : MakeTextOutline(options.coloured, options.limit);
    Inspector inspector(options, *outline);
    if (options.sample) {
        inspector.InspectSample();
    } else {
        InspectAll(inspector, count - optind, arguments + optind);
    }
    const bool written = fflush(stdout) == 0 && ferror(stdout) == 0;
    if (!written) fprintf(stderr, "tlvforge-inspect: the outline can't be written\n");
    return inspector.IsComplete() && written ? kFine : kSomeFailed;
}
