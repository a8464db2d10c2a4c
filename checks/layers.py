#!/usr/bin/python3
"""Holds the two rules that keep the house standing.

  Direction   A file includes its own folder and lower ones, never higher ones, and no two files include each
              other in a circle. The command-line program, an application, sees the outer classes only.
  Platform    Nothing of the operating system stands outside platform/: no system header, no question after the
              operating system or the compiler. The headers of platform/ itself are free of both, so that the
              two ports below them stay the only files that know either.

Prints one line for each fault, as FILE:LINE: WHAT, and exits with 1 when there is one.
Another folder than the repository can be given as the argument.
"""

import pathlib
import re
import sys
from typing import NamedTuple

# The library, lowest folder first.
LIBRARY = ["platform", "host", "dicom", "records", "directory", "media", "wrappers", "sr"]

# Folders on top of the library; nothing else includes them, but what attacks the program.
PROGRAM = "cli"
FUZZ = "fuzz"
TOPS = [PROGRAM, FUZZ, "bench"]

# What the program may include beside its own files: what every host application may.
PROGRAM_SEES_FOLDERS = {"wrappers", "host", "sr"}
PROGRAM_SEES_FILES = {"dicom/TException.h", "platform/FileException.h", "platform/CodePage.h",
                      "platform/Console.h"}

PORTS = ["windows", "posix"]
SOURCES = {".h", ".hpp", ".cpp", ".cc", ".inl"}

STANDARD_HEADERS = set("""
    algorithm any array atomic barrier bit bitset cassert cctype cerrno cfenv cfloat charconv chrono cinttypes
    climits clocale cmath codecvt compare complex concepts condition_variable coroutine csetjmp csignal cstdarg
    cstddef cstdint cstdio cstdlib cstring ctime cuchar cwchar cwctype deque exception execution filesystem
    forward_list fstream functional future initializer_list iomanip ios iosfwd iostream istream iterator latch
    limits list locale map memory memory_resource mutex new numbers numeric optional ostream queue random ranges
    ratio regex scoped_allocator semaphore set shared_mutex source_location span sstream stack stdexcept
    stop_token streambuf string string_view strstream syncstream system_error thread tuple type_traits typeindex
    typeinfo unordered_map unordered_set utility valarray variant vector version
    """.split())

# Headers of installed packages, and the folders that may use them.
PACKAGES = {
    "tests": ("gtest/", "gmock/"),
    "bench": ("benchmark/",),
    PROGRAM: ("CLI/", "nlohmann/", "jpeglib.h"),
}

SYSTEM_WORDS = re.compile(
    r"\b(_WIN32|_WIN64|WIN32|__WIN32__|_MSC_VER|__MINGW32__|__MINGW64__|__CYGWIN__|__linux__|__linux|"
    r"__unix__|__unix|__APPLE__|__FreeBSD__|_POSIX_VERSION|_POSIX_C_SOURCE|_GNU_SOURCE|_CRT_\w+|"
    r"__declspec|__stdcall|__cdecl)\b")
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
COMPUTED_INCLUDE = re.compile(r"^\s*#\s*include\s*[^<\"\s]")
HAS_INCLUDE = re.compile(r"__has_include\s*\(\s*[<\"]")

# What is not code: comments and literals. Matched in one go, so that "//" inside a text is no comment.
NOT_CODE = re.compile(
    r"""//(?:\\\n|[^\n])*"""
    r"""|/\*.*?\*/"""
    r"""|(?:u8|u|U|L)?R"(?P<mark>[^()\\\s]{0,16})\(.*?\)(?P=mark)\""""
    r"""|(?P<include>^[ \t]*\#[ \t]*include[^\n]*)"""
    r'''|"(?:\\.|[^"\\\n])*"'''
    r"""|(?<![0-9A-Fa-f])'(?:\\.|[^'\\\n])+'""",
    re.DOTALL | re.MULTILINE)


class Include(NamedTuple):
    line: int
    system: bool
    name: str


class Source(NamedTuple):
    path: str
    code: list  # lines without comments and literals
    includes: list


def code_only(text):
    """The text with comments and literals blanked; line numbers stay."""

    def blank(match):
        if match["include"]:
            return re.sub(r"//.*|/\*.*?\*/", "", match[0])
        return " " + "\n" * match[0].count("\n")

    return NOT_CODE.sub(blank, text)


def read_source(root, path):
    code = code_only((root / path).read_text(encoding="utf-8", errors="replace")).split("\n")
    found = [(number, INCLUDE.match(line)) for number, line in enumerate(code, 1)]
    includes = [Include(number, match[1] == "<", match[2]) for number, match in found if match]
    return Source(path, code, includes)


def find_sources(root):
    folders = LIBRARY + TOPS + ["tests"]
    files = (file for folder in folders for file in (root / folder).rglob("*") if file.suffix in SOURCES)
    return {path: read_source(root, path) for path in sorted(file.relative_to(root).as_posix() for file in files)}


def resolve(root, including, name):
    """The file of the repository that a quoted include names, or None."""
    for base in (root, (root / including).parent):
        candidate = base / name
        if candidate.is_file():
            try:
                return candidate.resolve().relative_to(root.resolve()).as_posix()
            except ValueError:
                return None
    return None


def place(path):
    """(top folder, library folder that counts): a test counts as the folder that it tests."""
    parts = path.split("/")
    if parts[0] == "tests":
        return "tests", parts[1] if len(parts) > 2 else ""
    return parts[0], parts[0]


def port_of(path):
    parts = path.split("/")
    return parts[1] if parts[0] == "platform" and len(parts) > 2 else ""


def is_support(path):
    return path.startswith("tests/support/")


def may_use_test_code(path, target):
    """Tests use what tests of their own folder and of lower ones have, the program's those of the whole library; fuzz
    targets and benchmarks use all."""
    top, folder = place(path)
    if top in ("fuzz", "bench") or (top == "tests" and is_support(target)):
        return True
    if top != "tests":
        return False
    target_folder = place(target)[1]
    if target_folder in LIBRARY and folder == PROGRAM:
        return True
    if folder in LIBRARY and target_folder in LIBRARY:
        return LIBRARY.index(target_folder) <= LIBRARY.index(folder)
    return folder == target_folder


def direction_fault(path, target):
    """Why `path` must not include `target`, or None."""
    top, folder = place(path)
    target_top, target_folder = place(target)

    if port_of(target) and port_of(path) != port_of(target) and top != "tests":
        return "a port is known to its own files only"
    if target_top == "tests":
        return None if may_use_test_code(path, target) else f"test code of {target_folder}/ does not belong here"
    if target_top in TOPS:
        own = target_top in (top, folder) or (top == FUZZ and target_top == PROGRAM)
        return None if own else f"nothing includes {target_top}/"
    if target_top not in LIBRARY:
        return f"{target_top}/ is no folder of the library"
    if top == PROGRAM:
        seen = target_top in PROGRAM_SEES_FOLDERS or target in PROGRAM_SEES_FILES
        return None if seen else "the program uses the outer classes, not what lies below them"
    if folder in LIBRARY and LIBRARY.index(target_top) > LIBRARY.index(folder):
        return f"{folder}/ lies below {target_top}/"
    return None


def may_know_system(path):
    """The ports, what stands in for a part of the system in their tests, and the sources (never the headers) of
    platform/ that both share."""
    if path.startswith(tuple(f"tests/platform/{port}/" for port in PORTS)):
        return True
    return path.startswith("platform/") and (port_of(path) or path.endswith(".cpp"))


def is_known_header(path, name):
    if name in STANDARD_HEADERS:
        return True
    prefixes = PACKAGES.get(place(path)[0], ()) + PACKAGES.get(place(path)[1], ())
    return name.startswith(prefixes) if prefixes else False


def include_faults(root, source):
    for include in source.includes:
        if include.system:
            if not may_know_system(source.path) and not is_known_header(source.path, include.name):
                yield include.line, f"<{include.name}> is neither standard C++ nor a package of this folder"
            continue
        target = resolve(root, source.path, include.name)
        if target is None:
            yield include.line, f'"{include.name}" is no file of the repository'
            continue
        fault = direction_fault(source.path, target)
        if fault:
            yield include.line, f'"{include.name}": {fault}'


def system_faults(source):
    for number, line in enumerate(source.code, 1):
        if COMPUTED_INCLUDE.match(line):
            yield number, "an include that only the preprocessor can read"
        if may_know_system(source.path):
            continue
        word = SYSTEM_WORDS.search(line)
        if word:
            yield number, f"{word[1]}: only the ports in platform/ know the system"
        if HAS_INCLUDE.search(line):
            yield number, "__has_include: only the ports in platform/ ask what the system has"


def circles(root, sources):
    """Each circle of includes once, as a list of paths that ends where it began."""
    graph = {}
    for path, source in sources.items():
        targets = (resolve(root, path, include.name) for include in source.includes if not include.system)
        graph[path] = [target for target in targets if target in sources]

    done, found = set(), []

    def walk(path, way):
        if path in way:
            found.append(way[way.index(path):] + [path])
        elif path not in done:
            for target in graph[path]:
                walk(target, way + [path])
            done.add(path)

    for path in graph:
        walk(path, [])
    return found


def all_faults(root):
    sources = find_sources(root)
    if not sources:
        yield f"{root}: no sources found"
    for source in sources.values():
        for line, what in sorted([*include_faults(root, source), *system_faults(source)]):
            yield f"{source.path}:{line}: {what}"
    for circle in circles(root, sources):
        yield f"{circle[0]}:1: a circle of includes: " + " -> ".join(circle)


def main():
    here = pathlib.Path(__file__).resolve().parent.parent
    root = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else here
    faults = list(all_faults(root))
    for fault in faults:
        print(fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
