#!/usr/bin/env python3
"""Checks which folder of src/ includes which, and who touches the system's threads and clocks.

Usage: include_arrows.py SRC

Prints each violation as FILE:LINE: WHAT; exits 1 when there is one. The link targets of the rooms keep calls from going
upwards; this keeps headers, which need no linking, from it too.
"""

import re
import sys
from pathlib import Path

# What each folder may include besides itself. Libraries are named in angle brackets.
ARROWS = {
    "base": [],
    "timecode": ["base"],
    "dv": ["base", "timecode"],
    "platform": ["base", "timecode"],
    "catalogue": ["base", "timecode", "platform"],
    "outlets": ["base", "timecode", "catalogue", "platform"],
    "capture": ["base", "dv", "timecode", "platform", "outlets"],
    "recapture": ["base", "dv", "timecode", "platform", "outlets", "capture", "catalogue"],
    "skin": ["base", "<Qt>"],
    "views": ["base", "timecode", "catalogue", "platform", "outlets", "skin", "<Qt>"],
    "controls": ["base", "timecode", "catalogue", "platform", "outlets", "skin", "<Qt>"],
    "interface": ["base", "timecode", "catalogue", "platform", "outlets", "skin", "views", "controls", "<Qt>"],
    "backends/deck": ["base", "timecode", "platform", "dv"],
    "backends/time": ["base", "platform"],
    "backends/settings": ["base", "platform"],
    "backends/files": ["base", "platform"],
    "backends/session": ["base", "timecode", "platform", "dv"],
    "backends/media": ["base", "timecode", "platform", "dv", "<libav>"],
    "backends/qt": ["base", "platform", "<Qt>"],
    "backends/firewire": ["base", "platform", "dv", "<1394>"],
}
ARROWS["host"] = [*ARROWS, "<Qt>"]

# Libraries that only some folders may see, by how their headers are named.
LIBRARIES = {
    "<Qt>": re.compile(r"Q[A-Z]\w*(/|$)|Qt\w*/|q[a-z]+\.h$"),
    "<libav>": re.compile(r"lib(av(codec|device|filter|format|util)|swscale|swresample|postproc)/"),
    "<1394>": re.compile(r"lib(raw1394|iec61883|avc1394|rom1394)/"),
}

# Threads and time belong to one folder; everyone else asks platform/ for them.
TIME_FOLDER = "backends/time"
TIME_HEADERS = {"thread", "condition_variable", "future", "shared_mutex", "semaphore", "latch", "barrier", "pthread.h"}
# Thread ids, which name a thread and do not make one.
TIME_HEADERS_ALLOWED = {("platform/recursive_lock.h", "thread")}
TIME_USES = [
    (re.compile(r"std::(recursive_|timed_|shared_|recursive_timed_|shared_timed_)?mutex\b"), "makes a mutex"),
    (re.compile(r"std::condition_variable"), "makes a condition variable"),
    (re.compile(r"std::(thread\b(?!::id)|jthread\b|async\b)"), "makes a thread"),
    (re.compile(r"std::this_thread::(sleep|yield)|\b(usleep|nanosleep|clock_nanosleep|sleep)\s*\("), "sleeps"),
    (
        re.compile(r"\b(steady|system|high_resolution|utc|file)_clock::now\b|\b(clock_gettime|gettimeofday)\s*\("),
        "reads a clock",
    ),
    (re.compile(r"\bpthread_\w+\s*\("), "uses the system's threads"),
]

INCLUDE = re.compile(r'^\s*#\s*include\s*(["<])([^">]+)[">]')
# Comments and literals, which may speak of what the code may not do. A quote in a number (1'000) opens no literal.
NOT_CODE = re.compile(
    r"""//[^\n]*|/\*.*?\*/"""
    r"""|R"(?P<tag>[^()\s\\]*)\(.*?\)(?P=tag)"|"(?:\\.|[^"\\\n])*\""""
    r"""|(?<![0-9A-Fa-f])'(?:\\.|[^'\\\n])+'""",
    re.DOTALL,
)


def folder_of(path):
    """The folder of ARROWS that holds this path relative to src/, or None."""
    for depth in (2, 1):
        folder = "/".join(path.parts[:-1][:depth])
        if folder in ARROWS:
            return folder
    return None


def without_comments_and_literals(text):
    """The code only, on the lines where it stood."""
    return NOT_CODE.sub(lambda match: "\n" * match.group().count("\n"), text)


def includes_of(text):
    """(line number, quote or angle bracket, header) of each #include that is not commented out."""
    for number, line in enumerate(text.splitlines(), 1):
        match = INCLUDE.match(line)
        if match:
            yield number, match.group(1), match.group(2)


def check_include(src, path, folder, bracket, header):
    """What is wrong with one #include, or None."""
    for library, pattern in LIBRARIES.items():
        if bracket == "<" and pattern.match(header) and library not in ARROWS[folder]:
            return f"{folder} may not see {library[1:-1]}: {header}"
    if header in TIME_HEADERS and folder != TIME_FOLDER and (path.as_posix(), header) not in TIME_HEADERS_ALLOWED:
        return f"only {TIME_FOLDER} includes <{header}>"
    if bracket == "<":
        if (src / header).is_file():
            return f"the project's own headers are included with quotes: {header}"
        return None
    if not (src / header).is_file():
        return f"not a path from src/: {header}"
    target = folder_of(Path(header))
    if target != folder and target not in ARROWS[folder]:
        return f"{folder} may not include {target}: {header}"
    return None


def check_file(src, path):
    """(line number, what) of each violation in one file."""
    folder = folder_of(path)
    if folder is None:
        yield 1, "its folder is not in the table of include_arrows.py"
        return
    text = (src / path).read_text(encoding="utf-8")
    includes = list(includes_of(text))

    if path.suffix == ".h" and not re.search(r"^#pragma once$", text, re.MULTILINE):
        yield 1, "no #pragma once"
    own_header = path.with_suffix(".h")
    if path.suffix == ".cpp" and (src / own_header).is_file():
        if not includes or includes[0][2] != own_header.as_posix():
            yield includes[0][0] if includes else 1, f"does not include its own header first: {own_header.as_posix()}"

    for number, bracket, header in includes:
        what = check_include(src, path, folder, bracket, header)
        if what:
            yield number, what
    if folder != TIME_FOLDER:
        for number, line in enumerate(without_comments_and_literals(text).split("\n"), 1):
            for pattern, what in TIME_USES:
                if pattern.search(line):
                    yield number, f"only {TIME_FOLDER} {what}"


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    src = Path(sys.argv[1])
    paths = sorted(path.relative_to(src) for path in src.rglob("*") if path.suffix in (".h", ".cpp"))
    if not paths:
        sys.exit(f"{src}: no sources found")
    violations = 0
    for path in paths:
        for number, what in sorted(check_file(src, path)):
            print(f"{src / path}:{number}: {what}")
            violations += 1
    print(f"{len(paths)} files, {violations} violations")
    sys.exit(1 if violations else 0)


if __name__ == "__main__":
    main()
