# SPDX-License-Identifier: MIT
"""packaging/macos/check-bundle, on bundles that are only drawn: programs that are scripts with
the first bytes of machine code's, and tools that read what a test wrote beside each file."""

import os
import shutil
import subprocess
import tempfile
import unittest

ROOT = os.path.abspath(os.path.join(os.path.dirname(__file__), "../../.."))
HELPER = "Contents/Helpers/vantora-settings.app/Contents/"
PLUGIN = HELPER + "PlugIns/platforms/libqcocoa.dylib"
NOTICES = "Contents/Resources/THIRD-PARTY-NOTICES"
# otool answers from the file's notes; what it would be asked of a Mac's files.
OTOOL = """#!/bin/sh
case $1 in
  -L) echo "$2:"; sed 's/$/ (compatibility version 1.0.0, current version 1.0.0)/' "$2.libraries" ;;
  -l) cat "$2.commands" 2> /dev/null ;;
esac
exit 0
"""
# Every file is machine code but the notes, as far as od says.
OD = """#!/bin/sh
for last in "$@"; do :; done
case $last in *.libraries | *.commands) echo ' 23 21 2f 62' ;; *) echo ' cf fa ed fe' ;; esac
"""


class ABundle(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.folder)
        self.app = os.path.join(self.folder, "Vantora.app")
        self.put("Contents/MacOS/Vantora", "#!/bin/sh\ntrap 'exit 0' TERM\nsleep 30 & wait\n")
        self.put("Contents/MacOS/vantora-print", "#!/bin/sh\nexit 0\n")
        self.put(HELPER + "MacOS/vantora-settings", "#!/bin/sh\ncat\n")
        self.put(PLUGIN, "")
        self.put(NOTICES, "")
        self.put("Contents/Resources/LICENSE", "")
        for name, text in (("otool", OTOOL), ("od", OD), ("codesign", "#!/bin/sh\nexit 0\n")):
            self.write(os.path.join(self.folder, "bin", name), text)

    def write(self, path, text):
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        os.chmod(path, 0o755)

    def put(self, name, text, libraries="/usr/lib/libSystem.B.dylib"):
        path = os.path.join(self.app, name)
        self.write(path, text)
        self.write(path + ".libraries", f"\t{libraries}\n")

    def check(self):
        variables = dict(os.environ, PATH=os.path.join(self.folder, "bin") + ":" + os.environ["PATH"])
        done = subprocess.run([os.path.join(ROOT, "packaging/macos/check-bundle"), self.app],
                              env=variables, check=False, stderr=subprocess.PIPE)
        return done.returncode, done.stderr.decode()

    def assert_refused(self, words):
        status, said = self.check()
        self.assertEqual(status, 1)
        self.assertIn(words, said)

    def test_that_is_whole_passes(self):
        self.assertEqual(self.check(), (0, ""))

    def test_without_the_platform_plug_in_is_refused(self):
        os.remove(os.path.join(self.app, PLUGIN))
        self.assert_refused("missing: " + PLUGIN)

    def test_without_the_notices_is_refused(self):
        os.remove(os.path.join(self.app, NOTICES))
        self.assert_refused("missing: " + NOTICES)

    def test_that_needs_a_library_outside_is_refused(self):
        self.put(HELPER + "Frameworks/libuv.1.dylib", "", "/opt/homebrew/lib/libuv.1.dylib")
        self.assert_refused("looks outside: /opt/homebrew/lib/libuv.1.dylib")

    def test_that_searches_a_folder_outside_is_refused(self):
        self.write(os.path.join(self.app, "Contents/MacOS/Vantora.commands"),
                   "     cmd LC_RPATH\n cmdsize 32\n    path /opt/homebrew/lib (offset 12)\n")
        self.assert_refused("looks outside: /opt/homebrew/lib")

    def test_with_a_program_that_does_not_start_is_refused(self):
        self.put(HELPER + "MacOS/vantora-settings", "#!/bin/sh\nexit 134\n")
        self.assert_refused("vantora-settings does not start")

    def test_whose_agent_ends_at_once_is_refused(self):
        self.put("Contents/MacOS/Vantora", "#!/bin/sh\nexit 1\n")
        self.assert_refused("Vantora does not go on")

    def test_whose_signature_does_not_hold_is_refused(self):
        self.write(os.path.join(self.folder, "bin", "codesign"), "#!/bin/sh\nexit 1\n")
        self.assert_refused("signature")


if __name__ == "__main__":
    unittest.main()
