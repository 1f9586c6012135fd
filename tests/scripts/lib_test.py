# SPDX-License-Identifier: MIT
"""What scripts/lib.sh makes of a system: its packages' names, its package manager, and what a
build prints; and what scripts/run says and starts."""
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest
import weakref

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
TOOLS = "bash cat dirname env grep sort mktemp rm tail".split()


class System:
    """A system that has nothing but these commands, which are shell scripts."""

    def __init__(self, **commands):
        self.path = pathlib.Path(tempfile.mkdtemp())
        weakref.finalize(self, shutil.rmtree, self.path)
        for tool in TOOLS:
            (self.path / tool).symlink_to(shutil.which(tool))
        for name, script in {"id": "echo 0", **commands}.items():
            command = self.path / name.replace("_", "-")
            command.write_text(f"#!{shutil.which('bash')}\n{script}\n")
            command.chmod(0o755)

    def run(self, script, folder=ROOT, **environment):
        return subprocess.run(
            [shutil.which("bash"), "-c", f". scripts/lib.sh; {script}"], cwd=folder,
            env={"PATH": str(self.path), "WORLD": str(self.path), **environment}, check=False,
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)


class Packages(unittest.TestCase):
    def test_have_the_names_of_the_system(self):
        for manager, name in (("dnf", "libuv-devel"), ("pacman", "libuv"),
                              ("zypper", "libuv-devel"), ("apt_get", "libuv1-dev")):
            said = System(**{manager: "exit 1"}).run("missing_packages build").stdout.split()
            self.assertIn(name, said, manager)

    def test_that_a_system_does_not_have_are_not_named(self):
        said = System(pacman="exit 1").run("missing_packages package").stdout.split()
        self.assertNotIn("-", said)
        self.assertNotIn("dpkg-dev", said)

    def test_have_a_name_for_each_system_on_every_line(self):
        for line in (ROOT / "scripts/packages").read_text().splitlines():
            if not line.startswith("#"):
                self.assertEqual(len(line.split()), 6, line)

    def test_are_named_and_not_installed_where_there_is_no_apt(self):
        done = System(dnf='echo "dnf was run"').run("need build; echo went on")
        self.assertNotIn("dnf was run", done.stdout)
        self.assertRegex(done.stdout, "Install them as root: dnf install .*libuv-devel")

    def test_that_the_build_needs_end_the_script_and_others_do_not(self):
        system = System(dnf="exit 1")
        self.assertNotIn("went on", system.run("need build window; echo went on").stdout)
        self.assertIn("went on", system.run("need peers; echo went on").stdout)

    def test_that_cannot_be_installed_end_the_script_with_their_names(self):
        apt = """
case $* in
  *" update") ;;
  *conky-std*) echo "E: no such package"; exit 100 ;;
esac"""
        done = System(apt_get=apt).run("need peers; echo went on")
        self.assertIn("E: no such package", done.stdout)
        self.assertIn("Could not install: conky-std\n", done.stdout)
        self.assertNotIn("went on", done.stdout)

    def test_are_installed_by_a_package_manager_that_speaks_English_behind_sudo(self):
        done = System(id="echo 1000", sudo='env -i PATH="$PATH" "$@"',
                      apt_get="echo $LC_ALL $DEBIAN_FRONTEND; exit 100").run("need peers")
        self.assertIn("C noninteractive\n", done.stdout)

    def test_wait_for_a_package_manager_that_is_busy(self):
        busy_twice = """
if [ ! -e $WORLD/again ]; then
  [ ! -e $WORLD/asked ] || echo > $WORLD/again
  echo > $WORLD/asked
  echo "E: Could not get lock /var/lib/dpkg/lock-frontend"
  exit 100
fi"""
        done = System(apt_get=busy_twice, sleep=":").run("need peers; echo went on")
        self.assertEqual(done.stdout.count("Another package manager is at work here"), 1)
        self.assertIn("went on", done.stdout)

    def test_that_are_being_installed_leave_the_status_lines_out_of_the_log(self):
        said = "dlstatus:1:12.5:Retrieving\\npmstatus:x:50:Unpacking\\nE: no space"
        done = System().run(
            f"printf '{said}\\n' | show_installing $WORLD/log; cat $WORLD/log")
        self.assertEqual(done.stdout, "E: no space\n")


class Progress(unittest.TestCase):
    def test_of_a_build_that_fails_leaves_what_the_compiler_said(self):
        cmake = """
[ "$1" = --build ] || exit 0
echo "[1/2] Building a.cpp"
echo "FAILED: b.cpp"
echo "b.cpp:1: error: expected"
exit 1"""
        done = System(cmake=cmake).run("build dev; echo went on")
        self.assertIn("b.cpp:1: error: expected", done.stdout)
        self.assertIn("The build 'dev' failed.", done.stdout)
        self.assertNotIn("Building a.cpp", done.stdout)
        self.assertNotIn("went on", done.stdout)

    def test_does_not_fill_a_log_that_is_no_terminal(self):
        done = System().run("echo '[0/4] a' | show_progress Building $WORLD/log; cat $WORLD/log")
        self.assertEqual(done.stdout, "[0/4] a\n")


class Run(unittest.TestCase):
    def start(self, **environment):
        """scripts/run in a folder of its own, where everything is installed and built."""
        system = System(cmake="exit 0", dpkg_query="echo install ok installed")
        folder = system.path / "sources"
        (folder / "scripts").mkdir(parents=True)
        for name in ("lib.sh", "packages", "run"):
            shutil.copy(ROOT / "scripts" / name, folder / "scripts")
        (folder / "build/release/bin").mkdir(parents=True)
        for name in ("vantora", "vantora-print"):
            program = folder / "build/release/bin" / name
            program.write_text(f"#!{shutil.which('bash')}\necho started {name} $*\n")
            program.chmod(0o755)
        return system.run("bash scripts/run", folder, **environment).stdout

    def test_says_where_the_item_is_to_be_seen_and_starts_the_agent(self):
        said = self.start(DISPLAY=":7", XDG_CURRENT_DESKTOP="ubuntu:GNOME")
        self.assertRegex(said, "in the top bar, .*AppIndicator extension")
        self.assertTrue(said.endswith("started vantora\n"), said)
        self.assertIn("in the panel's tray, as a square",
                      self.start(WAYLAND_DISPLAY="wayland-0", XDG_CURRENT_DESKTOP="KDE"))

    def test_follows_the_readings_in_the_terminal_without_a_display(self):
        self.assertTrue(self.start().endswith("started vantora-print --follow\n"))


if __name__ == "__main__":
    unittest.main()
