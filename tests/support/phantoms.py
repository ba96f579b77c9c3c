"""Phantom studies for the Python tests, each made once for a build of the command and copied from then on."""
import hashlib
import os
import pathlib
import shutil
import subprocess
import tempfile

# The folder of a build where its phantoms are kept; where it is not set, each is made anew.
STORE = "VERTANA_TEST_PHANTOMS"


def make(program, folder, options):
    """Fails with what the command said."""
    done = subprocess.run([program, "phantom", "--out", folder, *options], stdin=subprocess.DEVNULL,
                          capture_output=True, text=True, check=False)
    if done.returncode != 0:
        raise RuntimeError(f"vertana phantom {' '.join(options)}: status {done.returncode}\n{done.stderr}")


def digest(text):
    return hashlib.sha256(text.encode()).hexdigest()[:16]


def kept(program, store, options):
    """The folder of the phantom with these options; of a program that has changed since, nothing is taken."""
    built = os.stat(program)
    of_program = store / digest(os.path.realpath(program))
    of_build = of_program / f"{built.st_mtime_ns}-{built.st_size}"
    found = of_build / digest("\0".join(options))
    if found.is_dir():
        return found
    if of_program.is_dir():  # What another program made stays: a test beside this one may be copying it.
        for old in of_program.iterdir():
            if old != of_build:
                shutil.rmtree(old, ignore_errors=True)
    of_build.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory(dir=of_build) as temporary:
        make(program, pathlib.Path(temporary, "study"), options)
        try:
            pathlib.Path(temporary, "study").rename(found)
        except OSError:  # Another test was quicker with the same.
            assert found.is_dir()
    return found


def phantom(program, folder, *options):
    """A phantom study of one's own in `folder`, which does not exist yet."""
    options = [str(option) for option in options]
    store = os.environ.get(STORE)
    if store:
        shutil.copytree(kept(program, pathlib.Path(store), options), folder)
    else:
        make(program, folder, options)
    return folder
