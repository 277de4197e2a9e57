"""The files of the project, by git or, as in an archive of the sources, without."""
import os
import pathlib
import subprocess

MADE = {"build", "__pycache__"}


def listed(root, *arguments):
    """The names that git lists, in order, or None where it knows nothing of the folder."""
    if not (root / ".git").exists():  # it may lie within the folder of another project
        return None
    try:
        done = subprocess.run(["git", "ls-files", "-z", *arguments], cwd=root, check=True, capture_output=True, text=True)
    except (OSError, subprocess.CalledProcessError):
        return None
    return sorted(name for name in done.stdout.split("\0") if (root / name).is_file())


def found(root):
    """The names of the files that are there, in order, but for what is hidden and what was made."""
    names = []
    for path, folders, files in os.walk(root):
        folders[:] = [name for name in folders if name not in MADE and not name.startswith(".")]
        names += [pathlib.Path(path, name).relative_to(root).as_posix() for name in files if not name.startswith(".")]
    return sorted(names)
