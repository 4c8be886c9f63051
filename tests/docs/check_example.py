"""Every value that tools/make_vectors.py prints stands in docs/FORMAT.md."""
import pathlib
import subprocess
import sys

root = pathlib.Path(sys.argv[1])
document = (root / "docs" / "FORMAT.md").read_text(encoding="utf-8")
printed = subprocess.run([sys.executable, str(root / "tools" / "make_vectors.py")],
                         stdout=subprocess.PIPE, check=True, text=True).stdout
values = [line.split()[-1] for line in printed.splitlines()]
missing = [value for value in values if value != "(nothing)" and value not in document]
if missing or len(values) < 12:
    sys.exit(f"docs/FORMAT.md lacks: {missing}")
