#!/usr/bin/env python3
"""Reads the public headers, and makes what is made of them.

    interface.py names              the exported functions, one a line
    interface.py prototypes         their prototypes, one a line
    interface.py natives            the native methods, with the letters of their parameters
    interface.py java               the Java class that declares the native methods
    interface.py reference FILE     a header or a page of docs/ as Doxygen wants it
    interface.py check              nothing; fails when a function or a parameter is not documented, or when
                                    docs/map.md has a name that no header declares

With --output FILE as first argument, what is made goes into a file.

A comment covers the declarations that follow it up to an empty line. It is prose, then lines of the form
"@param name text" or "@param name, name text", and "@return text" where the result is no status. A parameter
without a line of its own has the text that docs/conventions.md has for its name.
"""
import contextlib
import fnmatch
import re
import sys
from dataclasses import dataclass, field
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
HEADERS = sorted((ROOT / "include/tlvforge").glob("*.h"))
HANDLES = ("X509Extensions", "RsaAttributes")
RECORDS = ("LibraryTime", "LibraryPreciseTime", "Accuracy")

DECLARATION = re.compile(r"^TLVFORGE_(?:(STATUS)|API ([^\n(;]*?[ *]))\s*(\w+)\(([^;]*)\);[^\n]*\n", re.M)
PART = re.compile(
    r"^/\*(?P<comment>.*?)\*/[ \t]*\n"
    r"|(?P<function>" + DECLARATION.pattern[1:] + r")"
    r"|^TLVFORGE_NUMBER\((?P<status>\w+), (?P<number>\d+)\)\s*/\* (?P<meaning>.*?) \*/\n"
    r"|^(?P<block>(?:typedef )?(?:enum|struct)(?: \w+)? \{.*?\}[^;\n]*;)\n"
    r"|^(?P<type>typedef [^\n;]*\b(?P<type_name>\w+);[^\n]*)\n"
    r"|^(?P<blank>)\n", re.M | re.S)


class Fault(Exception):
    pass


@dataclass
class Comment:
    prose: list = field(default_factory=list)  # lines
    parameters: dict = field(default_factory=dict)
    result: str = ""


@dataclass
class Parameter:
    type: str
    name: str


@dataclass
class Function:
    header: str
    name: str
    result: str
    parameters: list
    comment: Comment
    family: list  # the functions under the same comment


def read_comment(text):
    comment = Comment()
    tags = []
    for line in (re.sub(r"^\s*\*? ?", "", line).rstrip() for line in text.lstrip("*").strip().split("\n")):
        if line.startswith("@"):
            tags.append(line)
        elif tags and line:
            tags[-1] += " " + line.strip()
        else:
            comment.prose.append(line)
    for tag in tags:
        match = re.match(r"@(?:param (\w+(?:, \w+)*)|return) (.+)$", tag)
        if not match:
            raise Fault("not a line of a comment: " + tag)
        if not match[1]:
            comment.result = match[2]
        for name in (match[1] or "").split(", "):
            comment.parameters[name] = match[2]
    comment.parameters.pop("", None)
    return comment


def read_parameters(text):
    parameters = []
    for entry in re.sub(r"\s+", " ", text).split(","):
        match = re.match(r" ?(.*[ *])(\w+) ?$", entry)
        if match:
            parameters.append(Parameter(match[1].strip(), match[2]))
    return parameters


class Interface:
    def __init__(self):
        self.functions = {}
        self.statuses = {}  # name: (number, meaning)
        self.types = {}  # name: header
        self.parts = {}  # header: [(kind, match or function)]
        self.numbers = []  # (name, number, meaning) of statuses and enumerators
        self.by_name = []  # (globs of parameters, text)
        for path in HEADERS:
            self.read_header(path.name, path.read_text(encoding="utf-8"))
        page = (ROOT / "docs/conventions.md").read_text(encoding="utf-8")
        table = re.search(r"^## Parameters by their names\n(.*?)(?=^## |\Z)", page, re.M | re.S)
        for row in re.finditer(r"^\| (`.*?) \| (.*?) \|$", table[1] if table else "", re.M):
            self.by_name.append((re.findall(r"`([\w*]+)`", row[1]), row[2]))

    def read_header(self, header, text):
        comment, family = Comment(), []
        parts = self.parts[header] = []
        for match in PART.finditer(text):
            if match["comment"] is not None:
                comment, family = read_comment(match["comment"]), []
                parts.append(("comment", comment))
            elif match["function"]:
                declaration = DECLARATION.match(match["function"])
                function = Function(header, declaration[3], "Status" if declaration[1] else declaration[2].strip(),
                                    read_parameters(declaration[4]), comment, family)
                if function.name in self.functions:
                    raise Fault(f"{header}: {function.name} is declared twice")
                family.append(function)
                self.functions[function.name] = function
                parts.append(("function", function))
            elif match["status"]:
                self.statuses[match["status"]] = (match["number"], match["meaning"])
                self.numbers.append((match["status"], match["number"], match["meaning"] + "."))
                parts.append(("status", match))
            elif match["block"]:
                self.read_numbers(match["block"], " ".join(comment.prose))
                parts.append(("block", match["block"]))
            elif match["type"]:
                if any(comment.prose) or "/*" in match["type"]:  # not a name that another header documents
                    self.types[match["type_name"]] = header
                parts.append(("type", match["type"]))
            else:
                comment, family = Comment(), []
                parts.append(("blank", ""))
        marks = re.findall(r"^TLVFORGE_(?:STATUS|API)\b", text, re.M)
        if len(marks) != sum(kind == "function" for kind, _ in parts):
            raise Fault(f"{header}: a declaration isn't written as all others are")

    def read_numbers(self, block, common):
        if not block.startswith("enum {"):
            return
        for name, number, meaning in re.findall(r"(\w+) = (\w+),?(?: */\*\*?<? (.*) \*/)?", block):
            text = (re.sub(r"\.$", ": ", common) + meaning + ".") if meaning and common else common or meaning + "."
            self.numbers.append((name, number, text.strip()))

    def text_of(self, function, parameter):
        """What the comment says of a parameter, else what its name says, else nothing."""
        if parameter.name in function.comment.parameters:
            return function.comment.parameters[parameter.name]
        owned = re.match(r"(\w+)\*\*$|(" + "|".join(HANDLES) + r")\*$", parameter.type)
        if owned:
            free = "Free" + (owned[1] or owned[2])
            if re.match(r"Create|Copy|Decode|Alloc", function.name) and free in self.functions:
                return f"receives the new object, *owned* by the caller ({free})."
            return "receives the object, *lent*."
        if is_object(parameter):
            return ""
        for globs, text in self.by_name:
            if any(fnmatch.fnmatchcase(parameter.name, glob) for glob in globs):
                return text
        return ""

    def faults(self):
        for function in self.functions.values():
            where = f"{function.header}: {function.name}"
            if not any(function.comment.prose):
                yield f"{where} has no comment"
            if function.result not in ("Status", "void") and not function.comment.result:
                yield f"{where} has no @return"
            for parameter in function.parameters:
                if not is_object(parameter) and not self.text_of(function, parameter):
                    yield (f"{where}: neither its comment nor docs/conventions.md says what {parameter.type} "
                           f"{parameter.name} is")
            names = {parameter.name for other in function.family for parameter in other.parameters}
            for name in function.comment.parameters.keys() - names:
                yield f"{where} has no parameter {name}"
        known = self.functions.keys() | self.types.keys() | self.statuses.keys() | {name for name, *_ in self.numbers}
        for name in re.findall(r"`(\w{4,})`", (ROOT / "docs/map.md").read_text(encoding="utf-8")):
            if name not in known:
                yield f"docs/map.md: no header declares {name}"


def prototype(function):
    parameters = ", ".join(f"{parameter.type} {parameter.name}" for parameter in function.parameters)
    return f"{function.result} {function.name}({parameters or 'void'})"


def is_object(parameter):
    """A pointer to a tree or a handle, of which its type says enough."""
    bare = re.sub(r"const |\*", "", parameter.type).strip()
    return not re.match(r"u?int\d+_t$|char$|void$", bare) and not parameter.type.endswith("**")


def direction(function, parameter):
    kind = parameter.type
    if re.match(r"const .*\*$", kind) or not kind.endswith("*"):
        return "in"
    if kind.endswith("**") or kind.rstrip("*") in HANDLES:
        return "out"
    if kind == "uint32_t*" and parameter.name.lower().endswith("length"):
        return "in,out"
    if kind.rstrip("*") in RECORDS and re.match(r"Get|Decode", function.name):
        return "out"
    if is_object(parameter):
        return "in" if function.name.startswith("Free") else "in,out"
    return "out"


# ---- The Java class ----

LETTERS = {"h": ["long"], "i": ["int"], "b": ["byte[]", "int"], "r": ["byte[]"], "o": ["byte[]", "int[]"],
           "n": ["int[]"], "l": ["long[]"], "s": ["String"]}

# What the kinds that depart from their letters mean for the caller.
NOTES = {
    "l_object": "{}: the handle is read from element 0, which stays as it is.",
    "l_inout": "{}: the handle in element 0 is read and replaced.",
    "r_node": "{}: the address of the record, in the first eight bytes in the byte order of the machine.",
    "r_nodecell": "{}: an address in the first eight bytes, in the byte order of the machine, is replaced.",
    "o_oid": "{}: is read; the number comes back in the int[] after it.",
    "oi_element": "{}: the only certificate, and certificateCount is 1, or 0 for none.",
}
NOTES["o_node"] = NOTES["r_node"]
NOTES["o_nodecell"] = NOTES["r_nodecell"]


def read_natives():
    """Name and kinds of each row of the table; the one that is written by hand has an object."""
    text = (ROOT / "src/java/natives.cpp").read_text(encoding="utf-8")
    natives = {}
    for named, row in re.findall(r"^NATIVE(_AS)?\((.*)\)$", text, re.M):
        name, *kinds = row.split(", ")
        natives[name.replace("_1", "_")] = kinds[1:] if named else kinds
    for name in re.findall(r"_dll_1(\w+)\(JNIEnv\* env, jclass,\s+jobject", text):
        natives[name] = ["h"]
    return dict(sorted(natives.items()))


def letters(kinds):
    return "".join(kind.split("_")[0] for kind in kinds)


def types_of(kind):
    return [type_ for letter in letters([kind]) for type_ in LETTERS[letter]]


class JavaClass:
    def __init__(self, interface):
        self.interface = interface
        self.natives = read_natives()
        missing = interface.functions.keys() ^ self.natives.keys()
        if missing:
            raise Fault("in a header or in src/java/natives.cpp, not in both: " + ", ".join(sorted(missing)))
        self.linked = {name: "#dll_" + name for name in interface.functions}
        self.linked.update({name: "#" + name for name, *_ in interface.numbers})

    def html(self, text, own=""):
        for character, entity in (("&", "&amp;"), ("<", "&lt;"), (">", "&gt;"), ("@", "&#64;"), ("{", "&#123;")):
            text = text.replace(character, entity)
        text = re.sub(r"\[([^]]*)\]\([^)]*\)", r"\1", text)
        text = re.sub(r"\*(owne?[sd]|len[dt]s?|adopt(?:s|ed))\*", r"<em>\1</em>", text)
        text = re.sub(r"\*\*(.*?)\*\*", r"<strong>\1</strong>", text)
        text = re.sub(r"`([^`]+)`", r"<code>\1</code>", text)
        return re.sub(r"(?<![#\w])\w{5,}\b(?!</code>)", lambda name: "{@link %s %s}" % (self.linked[name[0]], name[0])
                      if name[0] in self.linked and name[0] != own else name[0], text)

    def parameter_text(self, type_, text):
        """The text of a C parameter in the forms of Java."""
        if re.match(r"(int|long)\[\]", type_):
            text = re.sub(r"^receives", "element 0 receives", text)
        if type_ == "String":
            text = text.replace(", zero-terminated", "").replace("zero-terminated", "a text")
        return text

    def method(self, function):
        kinds = self.natives[function.name]
        version = function.name == "GetVersionInfo"
        names = [parameter.name for parameter in function.parameters]
        declared, notes, at = [], [], 0
        for kind in kinds:
            if kind in NOTES:
                notes.append(NOTES[kind].format(names[at]))
            for type_ in types_of(kind):
                declared.append(("StringBuffer" if version else type_, names[at]))
                at += 1
        if version:
            notes.append("text: its content is replaced; null is left alone, and the result is 0.")
        elif at < len(names):
            notes.append("the bytes are checked, and that is all.")
        lines = [self.html(line, function.name) for line in paragraphs(function.comment.prose, "<br>")]
        lines += ["<br>In Java: " + note for note in notes]
        for (type_, name), parameter in zip(declared, function.parameters):
            text = self.interface.text_of(function, parameter)
            if text and not version:
                lines.append(f"@param {name} {self.html(self.parameter_text(type_, text), function.name)}")
        if version:
            lines.append("@param text a buffer, or null")
        result = function.comment.result or ("always 0" if function.result == "void" else "a status")
        lines.append("@return " + self.html(result))
        head = "public static native {} dll_{}(".format("long" if function.result.endswith("*") else "int", function.name)
        return javadoc(lines) + "    " + head + ", ".join(map(" ".join, declared)) + ");\n\n"

    def text(self):
        numbers = "".join(f"{javadoc([self.html(meaning, name)])}    public static final int {name} = {number};\n\n"
                          for name, number, meaning in self.interface.numbers)
        sentences = (ROOT / "include/tlvforge/status_text.h").read_text(encoding="utf-8")
        cases = "".join(f'            case {self.interface.statuses[name][0]} -> "{name}: {sentence}";\n'
                        for name, sentence in re.findall(r'case (\w+): return "(.*)";', sentences))
        template = (ROOT / "src/java/Tlvforge.java.in").read_text(encoding="utf-8")
        methods = "".join(map(self.method, self.interface.functions.values()))
        return template.replace("@numbers@", numbers).replace("@cases@", cases).replace("@methods@", methods)


def javadoc(lines):
    return "    /**\n" + "".join(f"     * {line}\n" for line in lines) + "     */\n"


def paragraphs(lines, break_):
    """Lines that begin a new thought get a mark."""
    new = re.compile(r"(Getting|Setting|Decoding|Encoding)[: ]")
    return [(break_ if i and new.match(line) else "") + line for i, line in enumerate(lines) if line or break_ == "\n"]


# ---- As Doxygen wants it ----

class Reference:
    def __init__(self, interface):
        self.interface = interface
        self.linked = interface.functions.keys() | interface.statuses.keys()

    def escape(self, text):
        text = re.sub(r"\[([^]]*)\]\((?:(\w+)\.md)?#([^)]*)\)",
                      lambda link: f"\0ref {link[2] or 'conventions'}-{link[3]} \"{link[1]}\"", text)
        text = re.sub(r"\bdocs/\w+\.md\b", lambda page: f"[{page[0]}]({page[0]})", text)
        text = re.sub(r"([\\@<>&%#])", r"\\\1", text)
        # Stars that make no emphasis are pointers.
        text = re.sub(r"(?<!\*)\*(?!\*)(?!(?:own[se]d?|len[dt]s?|adopt(?:s|ed))\*)(?=\w)", r"\\*", text)
        text = re.sub(r"\b\w{5,}\b", lambda name: "#" + name[0] if name[0] in self.linked else name[0], text)
        return text.replace("\0", "@")

    def prose(self, lines):
        # A number with a full stop at the beginning of a line is no list.
        text = "\n".join(paragraphs([re.sub(r"^(\d+)\. ", r"\1\\. ", line.strip()) for line in lines], "\n"))
        return self.escape(text).split("\n")

    def function(self, function):
        family = [other.name for other in function.family if other is not function]
        lines = []
        if family and function is not function.family[0] and function.name not in " ".join(function.comment.prose):
            lines += [f"Described together with #{function.family[0].name}:", ""]
        lines += self.prose(function.comment.prose) + [""]
        for parameter in function.parameters:
            text = self.interface.text_of(function, parameter)
            if text:
                lines.append(f"@param[{direction(function, parameter)}] {parameter.name} {self.escape(text)}")
        if function.comment.result:
            lines.append("@return " + self.escape(function.comment.result))
        if family and len(family) < 40:
            lines.append("@see " + ", ".join("#" + name for name in family))
        return block(lines) + prototype(function) + ";\n\n"

    def group(self, name, title, prose, parts):
        """The beginning of a group: comments that stand alone go on top of it."""
        lines = self.prose(prose)
        for i, (kind, part) in enumerate(parts):
            if kind == "comment" and heading(part):
                break
            following = next((other for other, _ in parts[i + 1:] if other != "blank"), "comment")
            if kind == "comment" and following == "comment":
                lines += [""] + self.prose(part.prose)
        title = title[:1].upper() + title[1:]
        return f"/** @defgroup {name} {title}\n" + "".join(f" * {line}\n" for line in lines) + " * @{ */\n\n"

    def header(self, name):
        base = name[:-2]
        (_, about), *parts = self.interface.parts[name]
        brief = " ".join(about.prose).split("  ")[0]
        out = [f"/** @file\n * {self.escape(brief)} */\n"]
        out.append(self.group(base, title_of(brief, 0), about.prose, parts))
        open_, comment = False, Comment()
        for i, (kind, part) in enumerate(parts):
            if kind == "comment":
                comment = part
                if heading(part):
                    text = heading(part)
                    title = title_of(text, 55)
                    text = re.sub(r"^(?:[.:,] |$)", "", text[len(title):] if text.startswith(title) else text)
                    out += ["/** @} */\n"] * open_
                    slug = re.sub(r"[^a-z0-9]+", "_", title.lower()).strip("_")
                    out.append(self.group(f"{base}_{slug}", title, [text[:1].upper() + text[1:]], parts[i + 1:]))
                    open_, comment = True, Comment()
            elif kind == "blank":
                comment = Comment()
            elif kind == "function":
                out.append(self.function(part))
            elif kind in ("type", "block"):
                if kind == "block" or self.interface.types.get(re.search(r"(\w+);", part)[1]) == name:
                    out.append(self.type(kind, part, comment, parts[i + 1:i + 2]))
            elif kind == "status":
                # Enumerators, as they are in C; those that follow each other are one enumeration.
                row = f"    {part['status']} = {part['number']}, /**< {self.escape(part['meaning'])} */\n"
                first, last = parts[i - 1][0] != kind, parts[i + 1][0] != kind
                out.append("/** Numbers of statuses. */\nenum {\n" * first + row + "};\n\n" * last)
        return "".join(out) + "/** @} */\n" * (1 + open_)

    def type(self, kind, text, comment, following):
        # A record that is named before its fields: the comment is for the record.
        name = re.match(r"typedef struct (\w+)", text)
        if kind == "type" and name and following and str(following[0][1]).startswith(f"struct {name[1]} "):
            return ""
        text = re.sub(r"^struct (\w+) (.*)\};$", r"typedef struct \1 \2} \1;", text, flags=re.S)
        text = re.sub(r"/\*\*?<? (.*?) \*/", lambda match: "/**< " + self.escape(match[1]) + " */", text)
        documented = any(comment.prose) and (kind == "block" or "/**<" not in text)
        return (block(self.prose(comment.prose)) if documented else "") + text + "\n"

    def page(self, name, text):
        """Outside of programs, names in backquotes become links, and headings anchors under the name of their page."""
        anchors = {}

        def link(match):
            label, target = match.groups()
            plain = label.replace("`", "")
            anchor = re.match(r"(?:([\w-]+)\.md)?#(.+)$", target)
            if anchor:
                return f"[{plain}](@ref {anchor[1] or name}-{anchor[2]})"
            header = re.search(r"include/tlvforge/(\w+\.h(?:pp)?)$", target)
            if header:
                return f"[{plain}](@ref {header[1]})"
            if re.match(r"\w+:", target):
                return match[0]
            page = re.match(r"(?:\.\./)?([\w-]+\.md)$", target)
            return f"[{plain}]({target})" if page and (ROOT / "docs" / page[1]).exists() else label

        def anchor(match):
            slug = re.sub(r"[^\w\- ]", "", match[2].lower()).replace(" ", "-")
            times = anchors[slug] = anchors.get(slug, -1) + 1
            return f"{match[0]} {{#{name}-{slug}{f'-{times}' if times else ''}}}"

        parts = re.split(r"^(```.*?^```)$", text, flags=re.M | re.S)
        for i in range(0, len(parts), 2):
            parts[i] = re.sub(r"\[([^\]]*)\]\(([^)\s]+)\)", link, parts[i])
            parts[i] = re.sub(r"^(##+ )(.*)$", anchor, parts[i], flags=re.M)
            # A number with a full stop at the beginning of a line is no list, unless it is a small one.
            parts[i] = re.sub(r"^(\d\d+)\. ", r"\1\\. ", parts[i], flags=re.M)
            parts[i] = re.sub(r"`(\w+)`", lambda code: "#" + code[1] if code[1] in self.linked else code[0], parts[i])
        return "".join(parts)


def heading(comment):
    match = re.match(r"-{3,4} (.*?) -{3,4}$", " ".join(comment.prose))
    return match[1] if match else ""


def title_of(text, limit):
    """The first words of a text: what stands before a full stop, or before a colon or comma when that is long."""
    title = re.sub(r"\.(?: .*)?$", "", re.sub(r" \([^)]*\)", "", text))
    for end in (": ", ", "):
        if len(title) > limit:
            title = title.split(end)[0]
    return title


def block(lines):
    return "/**\n" + "".join(f" * {line}".rstrip() + "\n" for line in lines) + " */\n"


def main(arguments):
    if arguments[:1] == ["--output"] and len(arguments) > 2:
        with open(arguments[1], "w", encoding="utf-8") as output, contextlib.redirect_stdout(output):
            return main(arguments[2:])
    interface = Interface()
    command = arguments[0] if arguments else ""
    functions = sorted(interface.functions.values(), key=lambda function: function.name)
    if command == "names":
        print(*(function.name for function in functions), sep="\n")
    elif command == "prototypes":
        print(*sorted(map(prototype, functions)), sep="\n")
    elif command == "natives":
        print("name\tshape", *(f"{name}\t{letters(kinds)}" for name, kinds in read_natives().items()), sep="\n")
    elif command == "java":
        print(JavaClass(interface).text(), end="")
    elif command == "reference" and len(arguments) == 2:
        path = Path(arguments[1])
        reference = Reference(interface)
        print(reference.header(path.name) if path.suffix == ".h" else reference.page(path.stem, path.read_text(encoding="utf-8")), end="")
    elif command == "check":
        faults = sorted(set(interface.faults()))
        print(*faults, sep="\n", file=sys.stderr, end="\n" if faults else "")
        return 1 if faults else 0
    else:
        print(__doc__.strip(), file=sys.stderr)
        return 0 if command in ("-h", "--help") else 2
    return 0


if __name__ == "__main__":
    try:
        sys.exit(main(sys.argv[1:]))
    except Fault as fault:
        sys.exit(f"interface.py: {fault}")
