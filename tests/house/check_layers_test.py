"""What tools/check_layers.py allows and refuses, on small source trees made here."""

import contextlib
import importlib.util
import io
import tempfile
import unittest
from pathlib import Path

TOOL = Path(__file__).resolve().parents[2] / "tools" / "check_layers.py"
loading = importlib.util.spec_from_file_location("check_layers", TOOL)
check_layers = importlib.util.module_from_spec(loading)
loading.loader.exec_module(check_layers)

USES = {
    "nimbrel_crypto": "",
    "nimbrel_fs": "nimbrel_crypto",
    "nimbrel_fuse": "nimbrel_fs,nimbrel_crypto",
    "nimbrel_util": "nimbrel_fs",
    "nimbrel_app": "nimbrel_util",
}


class CheckLayersTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.source = Path(folder.name)
        self.layers = self.source / "layers.txt"
        self.layers.write_text("")

    def add(self, target, path, text=""):
        """A source of `target`; none with None."""
        file = self.source / "src" / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text)
        if target:
            self.list(target, path)

    def list(self, target, path):
        with self.layers.open("a") as layers:
            layers.write(f"{target};{USES[target]};src/{path}\n")

    def check(self):
        """Exit status and what was printed."""
        output = io.StringIO()
        with contextlib.redirect_stdout(output):
            status = check_layers.main(
                ["--layers", str(self.layers), "--source", str(self.source)])
        return status, output.getvalue().splitlines()

    def assert_refused(self, *complaints):
        self.assertEqual(self.check(), (1, list(complaints)))

    def assert_fine(self):
        status, lines = self.check()
        self.assertEqual((status, len(lines)), (0, 1), lines)

    def test_own_and_used_targets_are_fine(self):
        self.add("nimbrel_crypto", "crypto/Key.h")
        self.add("nimbrel_fs", "fs/Path.h")
        self.add("nimbrel_fs", "fs/Path.cpp",
                 '#include "fs/Path.h"\n\n#include "crypto/Key.h"\n#include <vector>\n')
        self.assert_fine()

    def test_a_higher_target_is_refused(self):
        self.add("nimbrel_app", "app/NBAppDelegate.h")
        self.add("nimbrel_util", "app/Util.cpp", '#include "app/NBAppDelegate.h"\n')
        self.assert_refused("app/Util.cpp:1: nimbrel_util may not include app/NBAppDelegate.h")

    def test_a_target_that_is_used_only_by_another_is_refused(self):
        self.add("nimbrel_crypto", "crypto/Key.h")
        self.add("nimbrel_util", "app/Util.cpp", '\n  #  include "crypto/Key.h"\n')
        self.assert_refused("app/Util.cpp:2: nimbrel_util may not include crypto/Key.h")

    def test_every_offence_is_told(self):
        self.add("nimbrel_fs", "fs/Path.h")
        self.add("nimbrel_crypto", "crypto/Key.h", '#include "fs/Path.h"\n')
        self.add("nimbrel_crypto", "crypto/Key.cpp", '#include "fs/Path.h"\n')
        self.assert_refused("crypto/Key.cpp:1: nimbrel_crypto may not include fs/Path.h",
                            "crypto/Key.h:1: nimbrel_crypto may not include fs/Path.h")

    def test_a_file_that_no_target_lists_is_refused(self):
        self.add("nimbrel_fs", "fs/Path.h")
        self.add(None, "fs/Forgotten.cpp")
        self.assert_refused("fs/Forgotten.cpp: no target lists it")

    def test_other_files_beside_the_sources_need_no_target(self):
        self.add("nimbrel_fs", "fs/Path.h")
        self.add(None, "fs/CMakeLists.txt")
        self.add(None, "fs/Template.cpp.in")
        self.assert_fine()

    def test_an_include_of_an_unlisted_file_is_refused(self):
        self.add("nimbrel_fs", "fs/Path.cpp", '#include "Path.h"\n')
        self.assert_refused("fs/Path.cpp:1: Path.h belongs to no target")

    def test_a_listed_file_must_be_there(self):
        self.list("nimbrel_fs", "fs/Gone.cpp")
        self.assert_refused("fs/Gone.cpp: listed, but not there")

    def test_a_file_of_two_targets_is_refused(self):
        self.add("nimbrel_fs", "fs/Path.h")
        self.list("nimbrel_fuse", "fs/Path.h")
        self.assert_refused("src/fs/Path.h: listed by nimbrel_fs and by nimbrel_fuse")

    def test_an_include_in_a_comment_does_not_count(self):
        self.add("nimbrel_fs", "fs/Path.h")
        self.add("nimbrel_crypto", "crypto/Key.h", '// #include "fs/Path.h"\n')
        self.assert_fine()

    def test_the_binding_may_see_libfuse(self):
        for name in ("UserFileSystem.cpp", "FuseSession.h"):
            self.add("nimbrel_fuse", f"fs/{name}", "#include <fuse_lowlevel.h>\n")
        self.assert_fine()

    def test_nobody_else_may_see_libfuse(self):
        self.add("nimbrel_fuse", "fs/MountTable.cpp", "#include <fuse3/fuse.h>\n")
        self.add("nimbrel_fs", "fs/FuseLike.cpp", "#include <fuse.h>\n")
        self.assert_refused(
            "fs/FuseLike.cpp:1: only UserFileSystem and Fuse files of nimbrel_fuse may include "
            "<fuse.h>",
            "fs/MountTable.cpp:1: only UserFileSystem and Fuse files of nimbrel_fuse may include "
            "<fuse3/fuse.h>")

    def test_the_kernels_header_is_not_libfuse(self):
        self.add("nimbrel_fs", "fs/Path.cpp", "#include <linux/fuse.h>\n")
        self.assert_fine()

    def test_an_empty_list_is_refused(self):
        (self.source / "src").mkdir()
        self.assert_refused(f"{self.layers}: lists no source at all")


if __name__ == "__main__":
    unittest.main()
