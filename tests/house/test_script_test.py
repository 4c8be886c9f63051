"""What ./test and .ci/run call, in which order, and how they end."""

import subprocess
import unittest

from scripts import ScriptTest


class TestScriptTest(ScriptTest):
    def setUp(self):
        super().setUp()
        self.fake("install-packages", path=self.project / "tools/install-packages")
        self.fake("cmake")
        self.fake("ctest")
        self.fake("ccache")
        self.fake("nproc", "echo 3")

    def calls_of(self, *names):
        return [call for call in self.called() if call.split()[0] in names]

    def test_builds_and_tests_in_order(self):
        self.assertEqual(self.start("test").returncode, 0)
        self.assertEqual(
            self.calls_of("install-packages", "cmake", "ctest"),
            ["install-packages ", "cmake --preset dev", "cmake --build --preset dev",
             "ctest --preset dev --output-on-failure --parallel 3"])

    def test_arguments_go_to_ctest(self):
        self.start("test", "-R", "two words")
        self.assertTrue(self.calls_of("ctest")[0].endswith(" --parallel 3 -R two words"))

    def test_any_failing_step_ends_it(self):
        for name in ("cmake", "ctest"):
            self.fake(name, "exit 8")
            self.assertEqual(self.start("test").returncode, 8)
            self.assertEqual(self.start(".ci/run").returncode, 8)
            self.fake(name)
        self.fake("install-packages", "exit 1", path=self.project / "tools/install-packages")
        self.assertEqual(self.start("test").returncode, 1)

    def test_ci_gives_a_test_three_tries(self):
        self.assertEqual(self.start(".ci/run").returncode, 0)
        self.assertTrue(self.calls_of("ctest")[0].endswith(" --repeat until-pass:3"))

    def test_ci_ends_with_the_summary_of_ctest(self):
        self.fake("ctest", "echo '100% tests passed'")
        self.assertTrue(self.start(".ci/run").stdout.endswith("100% tests passed\n"))

    def test_closed_input_and_no_home_are_no_trouble(self):
        self.fake("cmake", f'read -r line; echo "read $? store $CCACHE_DIR" >>"{self.calls}"')
        command = f"exec <&-; umask 077; exec bash '{self.project}/.ci/run'"
        result = subprocess.run(["bash", "-c", command], env=self.environment, cwd="/",
                                capture_output=True, text=True, timeout=120, check=False)
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertIn(f"read 1 store {self.project}/.cache/ccache", self.called())

    def test_a_link_to_the_script_finds_the_project(self):
        (self.folder / "link").symlink_to(self.project / "test")
        result = subprocess.run([str(self.folder / "link")], env=self.environment, cwd="/",
                                stdin=subprocess.DEVNULL, capture_output=True, text=True,
                                timeout=120, check=False)
        self.assertEqual(result.returncode, 0, result.stderr)


if __name__ == "__main__":
    unittest.main()
