"""Packages that Debian gives to the system's Python, for any other."""
import importlib.util
import sys


def find(name):
    """Lets a package be imported where Debian puts it, when it is nowhere else."""
    if importlib.util.find_spec(name) is None:
        sys.path.append("/usr/lib/python3/dist-packages")
