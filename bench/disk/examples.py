"""libfuse's passthrough examples: disks that do nothing, the limit of what FUSE allows.

Compiled into build/bench. passthrough_fh and passthrough_ll come with libfuse3-dev;
passthrough_hp is in the source package alone, and is fetched from there with apt on request.
"""
import functools
import pathlib
import shutil
import subprocess
import tempfile

from machine import sh

ROOT = pathlib.Path(__file__).resolve().parents[2]
SOURCES = pathlib.Path("/usr/share/doc/libfuse3-dev/examples")
BUILD = ROOT / "build/bench"
# What libfuse's own build finds out: without it tar and git can't set a file's times. Extended
# attributes (HAVE_SETXATTR) stay out, for without them the kernel asks the disk less.
FOUND = ["-DHAVE_UTIMENSAT", "-DHAVE_FSTATAT", "-DHAVE_POSIX_FALLOCATE"]
DEB_SOURCES = """Types: deb-src
URIs: {mirror}
Suites: bookworm
Components: main
Signed-By: /usr/share/keyrings/debian-archive-keyring.gpg
"""


def available(name):
    return source_of(name).exists()


def source_of(name):
    return BUILD / f"{name}.cc" if name == "passthrough_hp" else SOURCES / f"{name}.c"


def program(name):
    """The compiled example; made when it's missing or older than its source or this file."""
    source, target = source_of(name), BUILD / name
    newest = max(file.stat().st_mtime for file in (source, pathlib.Path(__file__)))
    if not target.exists() or target.stat().st_mtime < newest:
        BUILD.mkdir(parents=True, exist_ok=True)
        compiler = ["g++", "-std=c++17"] if source.suffix == ".cc" else ["gcc", f"-I{SOURCES}"]
        sh([*compiler, "-O2", "-w", *FOUND, prepared(source), "-o", target, *flags()])
    return target


def prepared(source):
    """passthrough_fh asks the kernel to forget names and attributes at once; it gets the second that
    the others have. (As a copy: the example has no option for it.)"""
    if source.stem != "passthrough_fh":
        return source
    text, copy = source.read_text(encoding="utf-8"), BUILD / source.name
    for timeout in ("entry_timeout", "attr_timeout", "negative_timeout"):
        if f"cfg->{timeout} = 0;" not in text:
            raise RuntimeError(f"{source}: {timeout} isn't where it was")
        text = text.replace(f"cfg->{timeout} = 0;", f"cfg->{timeout} = 1.0;")
    copy.write_text(text, encoding="utf-8")
    return copy


@functools.cache
def flags():
    found = subprocess.run(["pkg-config", "--cflags", "--libs", "fuse3"], check=True, text=True,
                           stdout=subprocess.PIPE)
    return [*found.stdout.split(), "-lpthread"]


def mirror():
    """Where this machine's Debian packages come from."""
    for line in sh(["apt-cache", "policy", "libfuse3-dev"]).splitlines():
        for word in line.split():
            if word.startswith("http"):
                return word
    return "http://deb.debian.org/debian"


def fetch_passthrough_hp():
    """Out of Debian's source package, with package lists of its own: the system's stay as they are."""
    if available("passthrough_hp"):
        return
    with tempfile.TemporaryDirectory(prefix="nimbrel-bench-") as name:
        folder = pathlib.Path(name)
        for part in ("lists/partial", "cache/archives/partial", "parts"):
            (folder / part).mkdir(parents=True)
        (folder / "parts/source.sources").write_text(DEB_SOURCES.format(mirror=mirror()), encoding="ascii")
        apt = ["apt-get", "-qq", "-o", "Dir::Etc::sourcelist=/dev/null",
               "-o", f"Dir::Etc::sourceparts={folder}/parts", "-o", f"Dir::State::lists={folder}/lists",
               "-o", f"Dir::Cache={folder}/cache", "-o", "APT::Sandbox::User=root"]
        sh([*apt, "update"])
        sh([*apt, "source", "--download-only", "fuse3"], cwd=folder)
        extract(next(folder.glob("fuse3_*.orig.tar.xz")), folder)


def extract(archive, folder):
    sh(["tar", "xf", archive, "--strip-components=2", "--wildcards", "*/example/passthrough_hp.cc",
        "*/example/cxxopts.hpp"], cwd=folder)
    BUILD.mkdir(parents=True, exist_ok=True)
    for file in ("cxxopts.hpp", "passthrough_hp.cc"):  # the source last: with it, all is there
        shutil.copy(folder / file, BUILD / file)
