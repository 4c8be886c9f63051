"""When tools/install-packages installs what, and what it says when it can't."""

import unittest

from scripts import ScriptTest

LIST = """# what this list is
# build
alpha
beta
# running
gamma
# tests and tools
delta
"""


class InstallPackagesTest(ScriptTest):
    def setUp(self):
        super().setUp()
        (self.project / "packaging/debian-packages.txt").write_text(LIST)
        self.fake("apt-get")
        self.be_user(0)
        self.have("alpha", "beta", "gamma", "delta")

    def be_user(self, number):
        self.write_program(self.commands / "id", f"echo {number}")

    def have(self, *packages, others=""):
        lines = "\n".join(f'echo "installed {name}"' for name in packages)
        self.write_program(self.commands / "dpkg-query", f"{lines}\n{others}\nexit 1")

    def install(self, *arguments, **settings):
        return self.start("tools/install-packages", *arguments, **settings)

    def assert_installs(self, result, *packages):
        self.assertEqual(result.returncode, 0, result.stderr)
        calls = self.called()
        self.assertEqual(len(calls), 2, calls)
        self.assertTrue(calls[0].endswith(" update"), calls)
        self.assertTrue(calls[1].endswith(f"--no-install-recommends {' '.join(packages)}"), calls)

    def test_nothing_missing_asks_nobody(self):
        result = self.install()
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "", ""))
        self.assertEqual(self.called(), [])

    def test_only_what_is_missing_is_installed(self):
        self.have("alpha", "delta")
        self.assert_installs(self.install(), "beta", "gamma")

    def test_a_removed_package_with_its_settings_left_is_missing(self):
        self.have("alpha", "beta", "gamma", others='echo "config-files delta"')
        self.assert_installs(self.install(), "delta")

    def test_a_section_is_enough(self):
        self.have("alpha")
        self.assert_installs(self.install("build", "running"), "beta", "gamma")

    def test_sections_are_known_by_their_first_word(self):
        self.have()
        self.assert_installs(self.install("tests"), "delta")

    def test_an_unknown_section_is_an_error(self):
        result = self.install("nonsense")
        self.assertEqual(result.returncode, 1)
        self.assertIn("has no packages for: nonsense", result.stderr)

    def test_no_question_is_asked(self):
        self.have()
        self.fake("apt-get", f'echo "frontend $DEBIAN_FRONTEND umask $(umask)" >>"{self.calls}"')
        self.install(umask=0o077)
        self.assertEqual(self.called()[1], "frontend noninteractive umask 0022")

    def test_a_failure_of_apt_is_told(self):
        self.have("alpha")
        self.fake("apt-get", 'echo "no network" >&2; exit 100')
        result = self.install("build")
        self.assertEqual(result.returncode, 1)
        self.assertIn("no network", result.stderr)
        self.assertIn("sudo apt-get update && sudo apt-get install beta", result.stderr)
        self.assertEqual(len(self.called()), 1)

    def test_an_ordinary_user_goes_through_sudo(self):
        self.have("alpha")
        self.be_user(1000)
        self.write_program(self.commands / "sudo", f'echo "sudo $1" >>"{self.calls}"; shift; "$@"')
        self.assertEqual(self.install("build").returncode, 0)
        self.assertEqual(self.called()[0], "sudo -n")
        self.assertTrue(self.called()[1].endswith(" update"))

    def test_without_sudo_an_ordinary_user_learns_what_to_do(self):
        self.without("sudo")
        self.be_user(1000)
        self.have("alpha")
        result = self.install()
        self.assertEqual(result.returncode, 1)
        self.assertIn("As root, run:\n    apt-get install beta gamma delta\n", result.stderr)
        self.assertEqual(self.called(), [])

    def test_without_sudo_a_complete_machine_is_fine(self):
        self.without("sudo")
        self.be_user(1000)
        self.assertEqual(self.install().returncode, 0)

    def test_another_system_is_told_and_goes_on(self):
        (self.commands / "dpkg-query").unlink()
        (self.commands / "apt-get").unlink()
        self.without("dpkg-query", "apt-get")
        result = self.install()
        self.assertEqual(result.returncode, 0)
        self.assertIn("This isn't a Debian system", result.stderr)
        self.assertIn("packaging/debian-packages.txt", result.stderr)


if __name__ == "__main__":
    unittest.main()
