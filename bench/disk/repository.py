"""Work with git: a clone of 4,000 files onto the disk, and its status."""
import os

import files
from machine import drop_caches, sh, timed

SETTINGS = {"user.name": "Bench", "user.email": "bench@localhost", "gc.auto": "0",
            "maintenance.auto": "false", "safe.directory": "*", "init.defaultBranch": "main"}


def environment():
    """This run's settings alone, not the user's or the machine's."""
    found = {key: value for key, value in os.environ.items() if not key.startswith("GIT_")}
    found.update(GIT_CONFIG_GLOBAL="/dev/null", GIT_CONFIG_SYSTEM="/dev/null",
                 GIT_CONFIG_COUNT=str(len(SETTINGS)), GIT_TERMINAL_PROMPT="0")
    for number, (key, value) in enumerate(SETTINGS.items()):
        found[f"GIT_CONFIG_KEY_{number}"], found[f"GIT_CONFIG_VALUE_{number}"] = key, value
    return found


def git(folder, *arguments):
    return sh(["git", "-C", folder, *arguments], env=environment())


def make_repository(samples):
    folder = samples / "repository"
    files.make_sample(folder)
    git(folder, "init", "-q")
    git(folder, "add", ".")
    git(folder, "commit", "-q", "-m", "All files")
    git(folder, "repack", "-adq")
    git(folder, "prune-packed", "-q")


def version_control(bench):
    clone = bench.folder / "clone"
    bench.rows["git clone of 4,000 files"] = 1000 * timed(lambda: sh(
        ["git", "clone", "-q", "--no-hardlinks", bench.samples / "repository", clone],
        env=environment()))
    status(bench, clone)  # writes the index anew, as its files are as young as itself
    drop_caches()
    bench.rows["git status, cold"] = timed(lambda: status(bench, clone)) * 1000
    bench.rows["git status, warm"] = timed(lambda: status(bench, clone)) * 1000
    if git(clone, "fsck").strip():
        bench.note("git fsck complains")


def status(bench, clone):
    if git(clone, "status", "--porcelain"):
        bench.note("git status sees changes in a fresh clone")
