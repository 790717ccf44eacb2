#!/usr/bin/env python3
"""Runs include_arrows.py on small trees, so that the check is known to fail where it should, and only there."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(__file__).with_name("include_arrows.py")


def run_on(files):
    """The exit code and the violations, without the tree's own path, for a tree of these files."""
    with tempfile.TemporaryDirectory() as folder:
        for name, text in files.items():
            path = Path(folder, name)
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="utf-8")
        done = subprocess.run([sys.executable, SCRIPT, folder], capture_output=True, text=True, check=False)
        lines = [line.removeprefix(folder + "/") for line in done.stdout.splitlines()]
        return done.returncode, lines[:-1]


def header(*lines):
    return "\n".join(["#pragma once", *lines, ""])


class IncludeArrows(unittest.TestCase):
    def assert_clean(self, files):
        self.assertEqual(run_on(files), (0, []))

    def assert_found(self, files, *expected):
        self.assertEqual(run_on(files), (1, list(expected)))

    def test_a_good_tree_is_clean(self):
        self.assert_clean(
            {
                "base/status.h": header("#include <string>"),
                "timecode/time.h": header('#include "base/status.h"'),
                "timecode/time.cpp": '#include "timecode/time.h"\n\n#include <mutex>\nstd::lock_guard guard(m);\n',
                "backends/time/clock.cpp": "#include <thread>\nstd::mutex m; auto t = steady_clock::now();\n",
                "backends/media/file.cpp": "#include <libavformat/avformat.h>\n",
                "backends/qt/settings.cpp": "#include <QSettings>\n#include <QtCore/QString>\n",
                "backends/firewire/deck.cpp": "#include <libraw1394/raw1394.h>\n",
                "host/main.cpp": '#include <QApplication>\n#include "timecode/time.h"\n',
                "platform/recursive_lock.h": header("#include <thread>", "std::thread::id owner;"),
            }
        )

    def test_an_include_upwards(self):
        self.assert_found(
            {"base/low.h": header('#include "capture/high.h"'), "capture/high.h": header()},
            "base/low.h:2: base may not include capture: capture/high.h",
        )

    def test_an_include_between_backends(self):
        self.assert_found(
            {"backends/deck/deck.h": header('#include "backends/media/file.h"'), "backends/media/file.h": header()},
            "backends/deck/deck.h:2: backends/deck may not include backends/media: backends/media/file.h",
        )

    def test_a_library_in_the_wrong_folder(self):
        self.assert_found(
            {
                "capture/window.h": header("#include <QWidget>", "#include <QtCore/qglobal.h>"),
                "host/main.cpp": "#include <libavcodec/avcodec.h>\n#include <libavc1394/avc1394.h>\n",
            },
            "capture/window.h:2: capture may not see Qt: QWidget",
            "capture/window.h:3: capture may not see Qt: QtCore/qglobal.h",
            "host/main.cpp:1: host may not see libav: libavcodec/avcodec.h",
            "host/main.cpp:2: host may not see 1394: libavc1394/avc1394.h",
        )

    def test_an_include_that_is_not_from_src(self):
        self.assert_found(
            {"dv/block.h": header('#include "pack.h"'), "dv/pack.h": header()},
            "dv/block.h:2: not a path from src/: pack.h",
        )

    def test_an_own_header_in_angle_brackets(self):
        self.assert_found(
            {"dv/block.h": header("#include <dv/pack.h>"), "dv/pack.h": header()},
            "dv/block.h:2: the project's own headers are included with quotes: dv/pack.h",
        )

    def test_the_own_header_not_first(self):
        self.assert_found(
            {"dv/pack.h": header(), "dv/pack.cpp": '#include <string>\n#include "dv/pack.h"\n'},
            "dv/pack.cpp:1: does not include its own header first: dv/pack.h",
        )

    def test_a_header_without_pragma_once(self):
        self.assert_found({"dv/pack.h": "int pack();\n"}, "dv/pack.h:1: no #pragma once")

    def test_an_unknown_folder(self):
        self.assert_found(
            {"misc/junk.h": header()}, "misc/junk.h:1: its folder is not in the table of include_arrows.py"
        )

    def test_threads_and_clocks_outside_their_folder(self):
        uses = {
            "std::mutex m;": "makes a mutex",
            "std::recursive_mutex m;": "makes a mutex",
            "std::thread t(run);": "makes a thread",
            "std::async(run);": "makes a thread",
            "std::this_thread::sleep_for(1s);": "sleeps",
            "usleep(10);": "sleeps",
            "nanosleep(&t, nullptr);": "sleeps",
            "std::chrono::steady_clock::now();": "reads a clock",
            "std::chrono::system_clock::now();": "reads a clock",
        }
        for code, what in uses.items():
            with self.subTest(code):
                self.assert_found({"dv/a.cpp": f"\n{code}\n"}, f"dv/a.cpp:2: only backends/time {what}")
        for name in ("thread", "condition_variable", "future"):
            with self.subTest(name):
                self.assert_found(
                    {"dv/a.cpp": f"#include <{name}>\n"}, f"dv/a.cpp:1: only backends/time includes <{name}>"
                )

    def test_comments_and_literals_may_speak_of_them(self):
        self.assert_clean(
            {"dv/a.cpp": '// no std::mutex\n/* nor\n std::thread t */\nauto s = "usleep(1)"; int n = 1\'000\'000;\n'}
        )

    def test_code_after_a_comment_is_read(self):
        self.assert_found(
            {"dv/a.cpp": "/* two\nlines */ int n = 1'000; std::mutex m;\n"},
            "dv/a.cpp:2: only backends/time makes a mutex",
        )

    def test_an_empty_tree_is_no_success(self):
        self.assertNotEqual(run_on({})[0], 0)


if __name__ == "__main__":
    unittest.main()
