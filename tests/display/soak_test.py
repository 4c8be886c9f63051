"""A short form of bench/soak: the program holds no more after some rounds than before them."""

import os
import subprocess
import sys
import unittest
from pathlib import Path

RUN = Path(__file__).parents[2] / "bench/soak/run"


class SoakTest(unittest.TestCase):
    @unittest.skipUnless(os.geteuid() == 0, "only root may look into the process")
    def test_ten_rounds_leave_nothing_behind(self):
        outcome = subprocess.run([sys.executable, "-B", RUN, "10", "--idle", "0"], text=True,
                                 capture_output=True, timeout=280, check=False)
        self.assertEqual(outcome.returncode, 0, outcome.stdout + outcome.stderr)
        self.assertRegex(outcome.stdout, r"(?m)^ +10 +\d+ +\d+ +0 ")


if __name__ == "__main__":
    unittest.main()
