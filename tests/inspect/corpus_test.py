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

TEXT_TYPES = {12: "utf-8", 18: "ascii", 19: "ascii", 20: "latin-1", 22: "ascii", 23: "latin-1", 24: "latin-1", 26: "ascii",
              28: "utf-32-be", 30: "utf-16-be"}


def read_header(data, at):
    """The first octet, whether the form is indefinite, and where the content begins and ends."""
    identifier, at = data[at], at + 1
    if identifier & 31 == 31:
        while data[at] & 128:
            at += 1
        at += 1
    length, at = data[at], at + 1
    if length == 128:
        return identifier, True, at, len(data)
    if length > 128:
        length, at = int.from_bytes(data[at : at + length - 128], "big"), at + length - 128
    if at + length > len(data):
        raise ValueError
    return identifier, False, at, at + length


def walk(data, at, end, marked=False):
    """Yields the primitive elements, as (identifier octet, content), and returns where they end."""
    while at < end and not (marked and data[at : at + 2] == b"\0\0"):
        identifier, indefinite, start, stop = read_header(data, at)
        if identifier & 32:
            at = yield from walk(data, start, end if indefinite else stop, indefinite)
        else:
            yield identifier, data[start:stop]
            at = stop
    return at + 2 if marked else at


def leaves(data):
    return list(walk(data, 0, len(data)))


def dotted(content):
    arcs = [0]
    for octet in content:
        arcs[-1] = arcs[-1] << 7 | octet & 127
        if octet < 128:
            arcs.append(0)
    first = min(arcs[0] // 40, 2)
    whole = [first, arcs[0] - 40 * first, *arcs[1:-1]]
    return ".".join(map(str, whole)) if len(arcs) > 1 else content.hex().upper()


def readings(identifier, content):
    """What an entry may say for a leaf."""
    yield content.hex().upper()
    tags = [identifier & 31] if identifier & 192 == 0 else [1, 2, 3, 6, 10, 12, 22, 23, 24]
    yield from (reading for tag in tags for reading in universal(tag, content))
    if identifier & 192 != 0 and len(content) in (4, 16):
        yield str(ipaddress.ip_address(content))
    if identifier & 192 != 0 and len(content) in (8, 32):
        half = len(content) // 2
        yield f"{ipaddress.ip_address(content[:half])}/{ipaddress.ip_address(content[half:])}"


def universal(tag, content):
    if tag == 1:
        yield from ("critical", "true") if content != b"\0" else ("false",)
    if tag in (2, 10) and 0 < len(content) <= 8:
        number = int.from_bytes(content, "big", signed=True)
        yield from (str(number), str(number + 1))  # a version
    if tag == 3 and content:
        yield content[1:].hex().upper()
    if tag == 5:
        yield "NULL"
    if tag == 6 and content:
        yield dotted(content)
    if tag in TEXT_TYPES:
        yield content.decode(TEXT_TYPES[tag], "replace")
    if tag == 23 or tag == 24 and re.fullmatch(rb"\d{10,}(\.\d+)?Z", content):
        digits = content.decode("latin-1").rstrip("Z").split(".")[0]
        if tag == 23:
            digits = ("20" if digits < "5" else "19") + digits
        yield re.sub(r"(?s)(....)(..)(..)(..)(..)(..).*", r"\1-\2-\3T\4:\5:\6", digits.ljust(14, "0"))


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

    def find(self, identifier, content):
        wanted = list(dict.fromkeys(readings(identifier, content)))
        for at, text in enumerate(self.texts):
            named = identifier & 223 in (3, 129, 131) and names_bits(content, text)
            if named or any(stands_in(reading, text) for reading in wanted):
                del self.texts[:at]
                return True
        return False

    def missing(self, found):
        for identifier, content in found:
            inner = content[1:] if identifier == 3 else content
            if self.find(identifier, content):
                continue
            if identifier == 4 and len(content) > 48 and int.from_bytes(content[:2], "big") == len(content) - 2:
                yield from self.missing(timestamps(content))
            elif is_elements(inner):
                yield from self.missing(leaves(inner))
            else:
                yield identifier, content


def check_leaves(lines):
    failures = checked = 0
    for line in lines:
        found = leaves(pathlib.Path(line["file"]).read_bytes()) if "outline" in line else []
        faults = [f"no entry for {identifier:02X} {content[:40].hex().upper()}"
                  for identifier, content in Search(line.get("outline", [])).missing(found)]
        for fault in faults if "outline" in line else [line["error"]]:
            print(f"{line['file']}: {fault}")
            failures += 1
        checked += len(found)
    print(f"{checked} leaves of {len(lines)} documents, {failures} not shown")
    return failures != 0 or not lines


def main():
    program, what, *folders = sys.argv[1:]
    files = sorted(path for folder in folders for path in pathlib.Path(folder).glob("*") if path.is_file())
    if not files:
        print(f"Skipped: there are no documents in {folders[0]}")
        return 77
    run = subprocess.run([program, "--json", *files], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False)
    lines = [json.loads(line) for line in run.stdout.decode().splitlines()]
    if what == "leaves":
        return check_leaves(lines)
    silent = set(map(str, files)) - {line["file"] for line in lines}
    print(f"status {run.returncode}, {len(lines)} documents in {len(files)} files, without a line: {sorted(silent)}")
    return bool(silent) or run.returncode not in (0, 1)


sys.exit(main())
