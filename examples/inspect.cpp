// inspect [OPTION]... [FILE]...: prints an outline of documents, DER or PEM; --help tells the options.
//
// How each part of a document is read from the library and printed stands in outline/, where documents come from and
// what is said about bytes that are none, in inspect/.

#include <getopt.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <new>
#include <optional>

#include "inspect/kinds.h"
#include "inspect/source.h"
#include "outline/json_outline.h"
#include "outline/text_outline.h"
#include "sample_certificate.h"

using namespace examples;

namespace {

enum ExitStatus { kFine = 0, kSomeFailed = 1, kWrongUsage = 2 };

constexpr char kUsage[] = "usage: inspect [--kind KIND] [--pem N|LABEL] [--json] [--color[=WHEN]] [FILE]...\n";

constexpr char kHelp[] = R"(
Prints an outline of each document in the files: certificates, revocation lists, requests, CMS messages, OCSP and
time-stamps, DER or PEM. Without a file, and for -, standard input is read.

  --kind KIND     take every document for one of this kind, instead of trying all
  --pem N|LABEL   of PEM show block N, counted from 1, or those with a label, such as CERTIFICATE, instead of all
  --json          one document a line, as JSON, with nothing left out
  --color[=WHEN]  colours, and values in a column: always, never, or auto (the default), which is on a terminal
                  unless NO_COLOR is set
  --sample        show a sample certificate
  -h, --help      show this

A line of JSON is {"file", "block" and "label" (of PEM), "kind", "outline": [ENTRY...]}, or has "error" in place of the
last two. An entry has a "name", "value" (text), "hex", "status" and "meaning" (where the library refuses a part),
"count" (of a list), and "members", which are entries; each where there is one.
In texts \u{202E} stands for a character that can't be shown, \xFF for a byte that is none, and \\ for a backslash.

Exit status: 0 everything was shown, 1 some document or file could not be, 2 the command line is wrong.
)";

struct Options {
    const Kind* kind = nullptr;
    const char* pem = nullptr;  // a number or a label
    bool json = false;
    bool sample = false;
    bool coloured = false;
};

// What isn't from a document may hold any bytes as well.
std::string Shown(std::string_view text) { return Escape(ReadUtf8({text.begin(), text.end()})); }

class Inspector {
public:
    Inspector(const Options& options, Outline& outline) : options_(options), outline_(outline) {}

    bool IsComplete() const { return complete_; }

    void InspectPath(const char* path, bool alone) {
        const bool isInput = strcmp(path, "-") == 0;
        if (isInput && isatty(STDIN_FILENO) != 0) fprintf(stderr, "inspect: reading standard input\n");
        Inspect(Origin(isInput ? "standard input" : Shown(path), alone),
                [&](Bytes& bytes) { return isInput ? ReadToEnd(stdin, bytes) : ReadPath(path, bytes); });
    }

    void InspectSample() {
        Inspect(Origin("sample"), [](Bytes& bytes) {
            const std::string_view sample = kSampleCertificate;
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
            if (!IsDer(bytes)) return InspectPem(origin, bytes);
            if (options_.pem != nullptr) return Refuse(origin, "DER, and without blocks");
            InspectDocument(origin, bytes, {});
        } catch (const std::bad_alloc&) {
            Refuse(origin, "not enough memory");
        }
    }

    bool IsSelected(const PemBlock& block, size_t number) const {
        return options_.pem == nullptr || block.label == options_.pem || std::to_string(number) == options_.pem;
    }

    void InspectPem(const Origin& file, const Bytes& bytes) {
        const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        const std::vector<PemBlock> blocks = SplitPem(text);
        if (blocks.empty()) return InspectBase64(file, text);
        bool found = false;
        for (size_t i = 0; i < blocks.size(); ++i) {
            const PemBlock& block = blocks[i];
            if (!IsSelected(block, i + 1)) continue;
            found = true;
            Origin origin = file;
            origin.block = i + 1;
            origin.label = Shown(block.label);
            if (blocks.size() > 1) origin.name += ", block " + std::to_string(i + 1);
            origin.alone = file.alone && blocks.size() == 1;
            InspectBlock(origin, block);
        }
        if (found) return;
        Refuse(file, "no block " + Shown(options_.pem) + " of PEM, which has " + std::to_string(blocks.size()));
    }

    // Without armour.
    void InspectBase64(const Origin& origin, std::string_view text) {
        if (options_.pem != nullptr) return Refuse(origin, "no PEM, and without blocks");
        const Fetched der = Get(DecodePem, text.data(), static_cast<uint32_t>(text.size()));
        if (der.status == StatusOk) return InspectDocument(origin, der.bytes, {"in Base64"});
        const Bytes start(text.begin(), text.begin() + static_cast<ptrdiff_t>(std::min<size_t>(text.size(), 8)));
        const std::string beginning = text.empty() ? "empty" : "it begins with " + ToHex(start);
        Refuse(origin, "neither DER nor PEM", {DescribeStatus(der.status), beginning});
    }

    void InspectBlock(const Origin& origin, const PemBlock& block) {
        const std::string place = "in the block " + origin.label + (origin.label.empty() ? "of line " : " of line ") +
                                  std::to_string(block.line);
        const Fetched der = Get(DecodePem, block.text.data(), static_cast<uint32_t>(block.text.size()));
        if (der.status == StatusOk) return InspectDocument(origin, der.bytes, {place});
        Refuse(origin, "no PEM that can be read", {DescribeStatus(der.status), place});
    }

    // With no kind given, the first one whose decoder takes the bytes.
    void InspectDocument(const Origin& origin, const Bytes& bytes, const std::vector<std::string>& place) {
        Refusals refusals(bytes);
        for (const Kind& kind : kKinds) {
            if (options_.kind != nullptr && options_.kind != &kind) continue;
            outline_.Begin(origin, kind.name);
            // Also when memory ends inside.
            const std::unique_ptr<Outline, void (*)(Outline*)> end(&outline_, [](Outline* begun) { begun->End(); });
            const Status status = kind.print(outline_, bytes);
            if (status == StatusOk) return PrintTrailingBytes(outline_, bytes);
            if (status == StatusOutOfMemory) throw std::bad_alloc();
            refusals.Add(kind, status);
        }
        std::vector<std::string> details = refusals.Describe();
        details.insert(details.end(), place.begin(), place.end());
        Refuse(origin, options_.kind != nullptr ? "not of this kind" : "not a known document", details);
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
    return isatty(STDOUT_FILENO) != 0 && (noColour == nullptr || *noColour == 0);
}

// Whether it was one of the three words.
bool SetColour(Options& options, std::string_view when) {
    options.coloured = when == "always" || (when == "auto" && IsForTerminal());
    return when == "always" || when == "auto" || when == "never";
}

int Complain(const char* what, const char* value) {
    fprintf(stderr, "inspect: %s %s\n%skinds:", what, Shown(value).c_str(), kUsage);
    for (const Kind& kind : kKinds) fprintf(stderr, " %s", kind.name);
    fprintf(stderr, "\n");
    return kWrongUsage;
}

int Help() {
    printf("%s%s\nKinds:", kUsage, kHelp);
    for (const Kind& kind : kKinds) printf(" %s", kind.name);
    printf("\n");
    return kFine;
}

// The exit status, unless there is something to be done.
std::optional<int> ReadOptions(int count, char** arguments, Options& options) {
    enum Name { kKind = 256, kPem, kJson, kColor, kSample, kHelpName };
    static constexpr option kOptions[] = {{"kind", required_argument, nullptr, kKind},
                                          {"pem", required_argument, nullptr, kPem},
                                          {"json", no_argument, nullptr, kJson},
                                          {"color", optional_argument, nullptr, kColor},
                                          {"sample", no_argument, nullptr, kSample},
                                          {"help", no_argument, nullptr, kHelpName},
                                          {}};
    options.coloured = IsForTerminal();
    opterr = 0;
    for (int name = 0; (name = getopt_long(count, arguments, ":h", kOptions, nullptr)) != -1;) {
        switch (name) {
            case kKind:
                options.kind = FindKind(optarg);
                if (options.kind == nullptr) return Complain("there is no kind", optarg);
                break;
            case kPem: options.pem = optarg; break;
            case kJson: options.json = true; break;
            case kColor:
                if (!SetColour(options, optarg != nullptr ? optarg : "always")) {
                    return Complain("colours are always, never or auto, not", optarg);
                }
                break;
            case kSample: options.sample = true; break;
            case 'h':
            case kHelpName: return Help();
            case ':': return Complain("a value is missing behind", arguments[optind - 1]);
            default: {
                // Of several letters behind a hyphen, the one.
                const char letter[] = {'-', static_cast<char>(optopt), 0};
                const bool isLetter = optopt > 0 && optopt < kKind;
                return Complain("there is no option", isLetter ? letter : arguments[optind - 1]);
            }
        }
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
    if (const std::optional<int> result = ReadOptions(count, arguments, options)) return *result;
    JsonOutline json;
    TextOutline text(options.coloured);
    Inspector inspector(options, options.json ? static_cast<Outline&>(json) : text);
    if (options.sample) {
        inspector.InspectSample();
    } else {
        InspectAll(inspector, count - optind, arguments + optind);
    }
    const bool written = fflush(stdout) == 0 && ferror(stdout) == 0;
    if (!written) fprintf(stderr, "inspect: the outline can't be written\n");
    return inspector.IsComplete() && written ? kFine : kSomeFailed;
}
