"""corpus_test.py INSPECT leaves|lines FOLDER...: every document in the folders has a line of JSON from tlvforge-inspect, and
with "leaves" every leaf of it an entry there.

The documents are walked here once more, element by element and without a schema. Each primitive element must be found
in an entry, in the order of the document. Strings of octets or bits may also be shown as the elements inside of them.
"""

import ipaddress
import json
import pathlib
import re
import subprocess
import sys

TEXT_TYPES = {12: "utf-8", 18: "ascii", 19: "ascii", 20: "latin-1", 22: "ascii", 26: "ascii", 28: "utf-32-be", 30: "utf-16-be"}


def read_header(data, at):
    """The first octet, whether the form is indefinite, and where the content begins and ends."""
    identifier = data[at]
    at += 1
    if identifier & 31 == 31:
        while data[at] & 128:
            at += 1
        at += 1
    length = data[at]
    at += 1
    if length == 128:
        return identifier, True, at, len(data)
    if length > 128:
        count = length - 128
        length = int.from_bytes(data[at : at + count], "big")
        at += count
    if at + length > len(data):
        raise ValueError
    return identifier, False, at, at + length


def leaves(data):
    """The primitive elements, as (identifier octet, content)."""
    found = []
    at = 0

    def walk(at, end, marked):
        while at < end:
            if marked and data[at : at + 2] == b"\0\0":
                return at + 2
            identifier, indefinite, start, stop = read_header(data, at)
            if identifier & 32:
                at = walk(start, end if indefinite else stop, indefinite)
            else:
                found.append((identifier, data[start:stop]))
                at = stop
        return at

    walk(at, len(data), False)
    return found


def dotted(content):
    arcs, arc = [], 0
    for octet in content:
        arc = arc << 7 | octet & 127
        if octet < 128:
            arcs.append(arc)
            arc = 0
    if not arcs:
        return content.hex().upper()
    first = min(arcs[0] // 40, 2)
    return ".".join(map(str, [first, arcs[0] - 40 * first] + arcs[1:]))


def readings(identifier, content):
    """What an entry may say for a leaf."""
    yield content.hex().upper()
    if identifier & 192 == 0:
        tag = identifier & 31
    else:
        yield from (item for tag in (1, 2, 3, 6, 10, 22, 23, 24) for item in universal(tag, content))
        yield from addresses(content)
        tag = 12
    yield from universal(tag, content)


def addresses(content):
    half = len(content) // 2
    if len(content) in (4, 16):
        yield str(ipaddress.ip_address(content))
    if len(content) in (8, 32):
        yield f"{ipaddress.ip_address(content[:half])}/{ipaddress.ip_address(content[half:])}"


def universal(tag, content):
    if tag == 1:
        yield "critical" if content != b"\0" else "false"
        yield "true" if content != b"\0" else "false"
    if tag in (2, 10) and 0 < len(content) <= 8:
        number = int.from_bytes(content, "big", signed=True)
        yield str(number)
        yield str(number + 1)  # a version
    if tag == 3 and content:
        yield content[1:].hex().upper()
    if tag == 5:
        yield "NULL"
    if tag == 6 and content:
        yield dotted(content)
    if tag in (23, 24):
        text = content.decode("latin-1")
        yield text
        match = re.fullmatch(r"(\d*)(\d\d)(\d{8,10}?)(\.\d+)?Z", text)
        digits = text.rstrip("Z").split(".")[0]
        if tag == 23:
            digits = ("20" if digits < "5" else "19") + digits
        digits = digits.ljust(14, "0")
        if match or tag == 23:
            yield "-".join((digits[:4], digits[4:6], digits[6:8])) + "T" + ":".join((digits[8:10], digits[10:12], digits[12:14]))
    if tag in TEXT_TYPES:
        text = content.decode(TEXT_TYPES[tag], "replace")
        yield text


def unescape(text):
    text = re.sub(r"\\u\{([0-9A-F]+)\}", lambda match: chr(int(match[1], 16)), text)
    text = re.sub(r"\\x([0-9A-F]{2})", "\N{REPLACEMENT CHARACTER}", text)
    return text.replace("\\\\", "\\")


def entries(node):
    for entry in node:
        yield unescape("\n".join(str(entry.get(key, "")) for key in ("name", "value", "hex", "remark")))
        yield from entries(entry.get("members", []))


def is_elements(content):
    try:
        return len(content) > 1 and leaves(content) is not None and read_header(content, 0)[3] == len(content)
    except (ValueError, IndexError):
        return False


def stands_in(reading, text):
    """Whether it stands there as a word; a long one in hex also among others."""
    if len(reading) >= 16:
        return reading in text
    return re.search(r"(?<![\w.])" + re.escape(reading) + r"(?![\w.])", text) is not None


def names_bits(content, text):
    """Whether a text may list the names of the bits that are set in a short BIT STRING."""
    bits = int.from_bytes(content[1:], "big").bit_count()
    value = text.split("\n")[1]
    return 2 <= len(content) <= 5 and content[0] < 8 and 0 < bits == len(re.findall(r"[A-Za-z]+[^,]*", value))


def timestamps(content):
    """The logs and signatures in a list of signed certificate timestamps."""
    at = 2
    while at + 47 < len(content):
        size = int.from_bytes(content[at : at + 2], "big")
        one = content[at + 2 : at + 2 + size]
        extensions = int.from_bytes(one[41:43], "big")
        yield from ((4, one[1:33]), (4, one[47 + extensions :]))
        at += 2 + size


class Search:
    """Finds leaves in the entries of an outline, never before the entry of the one found last."""

    def __init__(self, outline):
        self.texts = list(entries(outline))
        self.at = 0

    def find(self, identifier, content):
        wanted = list(dict.fromkeys(readings(identifier, content)))
        for at in range(self.at, len(self.texts)):
            if any(stands_in(reading, self.texts[at]) for reading in wanted) or (
                identifier & 223 in (3, 129, 131) and names_bits(content, self.texts[at])
            ):
                self.at = at
                return True
        return False

    def missing(self, found):
        for identifier, content in found:
            kept = self.at
            if self.find(identifier, content):
                continue
            self.at = kept
            inner = content[1:] if identifier == 3 else content
            if identifier == 4 and len(content) > 48 and int.from_bytes(content[:2], "big") == len(content) - 2:
                yield from self.missing(timestamps(content))
                continue
            if is_elements(inner):
                yield from self.missing(leaves(inner))
            else:
                yield identifier, content


def check_leaves(program, files):
    failures = documents = checked = 0
    for document in inspect(program, files)[1]:
        path = pathlib.Path(document["file"])
        if "outline" not in document:
            print(f"{path}: {document['error']}")
            failures += 1
            continue
        found = leaves(path.read_bytes())
        documents += 1
        checked += len(found)
        for identifier, content in Search(document["outline"]).missing(found):
            print(f"{path}: no entry for {identifier:02X} {content[:40].hex().upper()}")
            failures += 1
    print(f"{checked} leaves of {documents} documents, {failures} not shown")
    return failures != 0 or documents == 0


def check_lines(program, files):
    status, lines = inspect(program, files)
    silent = set(map(str, files)) - {line["file"] for line in lines}
    print(f"status {status}, {len(lines)} documents in {len(files)} files, without a line: {sorted(silent)}")
    return bool(silent) or status not in (0, 1)


def inspect(program, files):
    run = subprocess.run([program, "--json", *files], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False)
    return run.returncode, [json.loads(line) for line in run.stdout.decode().splitlines()]


def main():
    program, what, *folders = sys.argv[1:]
    files = sorted(path for folder in folders for path in pathlib.Path(folder).glob("*") if path.is_file())
    if not files:
        print(f"Skipped: there are no documents in {folders[0]}")
        return 77
    return check_leaves(program, files) if what == "leaves" else check_lines(program, files)


sys.exit(main())
