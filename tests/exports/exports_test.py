"""What the shared library exports, and what it needs.

    exports_test.py LIBRARY bridge|plain [--instrumented] [--agreed FILE] [--nm NM] [--readelf READELF]
        [--objdump OBJDUMP]

The exports are what the public headers declare and, with the bridge, a native method for each of these. The library
needs the C library alone, and has no path of the place where it was built. What prototypes.txt records hasn't changed.
Where the list of agreed names exists, names and parameters of the natives are as agreed.
"""
import argparse
import subprocess
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
ROOT = HERE.parent.parent
SYMBOL = "Java_kestrelon_x509_tlvforge_Tlvforge_dll_1"

faults = []


def expect_within(left, right, text):
    faults.extend(f"FAILED: {name} {text}" for name in sorted(set(left) - set(right)))


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout.splitlines()


# In what objdump prints of a DLL, a heading, a line for each name, and an empty line.
def names_exported_by_dll(headers):
    first = next(at for at, line in enumerate(headers) if line.startswith("[Ordinal/Name Pointer] Table")) + 1
    return [line.split()[-1] for line in headers[first:headers.index("", first)]]


def interface(what):
    return output_of(sys.executable, str(ROOT / "scripts/interface.py"), what)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("library", type=Path)
    parser.add_argument("kind", choices=["bridge", "plain"])
    parser.add_argument("--instrumented", action="store_true")
    parser.add_argument("--agreed", type=Path, default="/nowhere")
    for tool in ("nm", "readelf", "objdump"):
        parser.add_argument(f"--{tool}", default=tool)
    arguments = parser.parse_args()

    declared = interface("names")
    natives = {SYMBOL + name.replace("_", "_1") for name in declared} if arguments.kind == "bridge" else set()
    if arguments.library.suffix == ".dll":
        headers = output_of(arguments.objdump, "-p", arguments.library)
        exported = names_exported_by_dll(headers)
        needed = [line.split()[-1].lower() for line in headers if "DLL Name:" in line]
        system, paths = ["kernel32.dll", "msvcrt.dll"], []
    else:
        symbols = output_of(arguments.nm, "-D", "--defined-only", "-P", arguments.library)
        exported = [line.split()[0] for line in symbols]
        dynamic = output_of(arguments.readelf, "-d", "-W", arguments.library)
        needed = [line.split("[")[1].rstrip("]") for line in dynamic if "(NEEDED)" in line]
        system, paths = ["libc.so.6"], [line for line in dynamic if "PATH)" in line]
    print(f"{len(declared)} functions and {len(natives)} natives declared, {len(exported)} symbols exported")
    expect_within(declared, exported, "is declared, but not exported")
    expect_within(natives, exported, "is the native method of a function, but not exported")
    expect_within(exported, natives.union(declared), "is exported, but neither a function nor a native method")
    if arguments.instrumented:
        print("SKIPPED: needed libraries and build paths, the sanitizers and counters add theirs")
    else:
        expect_within(needed, system, "is needed besides the system and its C library")
        expect_within(paths, [], "is a run path")
        found = f"{ROOT}/".encode() in arguments.library.read_bytes()
        expect_within([f"{ROOT}/"] * found, [], "is a path of the build in the library")

    recorded = (HERE / "prototypes.txt").read_text().splitlines()
    expect_within(recorded, interface("prototypes"), "has been released with this prototype, and it has changed or gone")
    expect_within([""], ["" for _ in recorded], "the record of prototypes is empty")

    if arguments.agreed.exists():
        agreed = arguments.agreed.read_text().splitlines()
        names = [line.split("\t")[0] for line in agreed[1:]]
        expect_within(declared, names, "is exported, but not among the agreed names")
        expect_within(names, declared, "is an agreed name, but not exported")
        expect_within(interface("natives"), agreed, "is not how the parameters of the native method were agreed")
    else:
        print(f"SKIPPED: agreed names, {arguments.agreed} is not there")
    print(*faults, sep="\n")
    return 1 if faults else 0


sys.exit(main())
