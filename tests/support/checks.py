"""What the Python tests share: counting what holds, and skipping, aloud, what a machine lacks."""
import os
import sys

SKIPPED = 77


def skip(reason):
    """Ends the test as skipped; with VERTANA_SKIP_NOTHING in the environment, as failed."""
    if "VERTANA_SKIP_NOTHING" in os.environ:
        print(f"FAILED, for nothing may be skipped: {reason}")
        sys.exit(1)
    print(f"SKIPPED: {reason}")
    sys.exit(SKIPPED)


class Checks:
    """Collects what does not hold, so that one run shows all of it."""

    def __init__(self):
        self.count = 0
        self.failed = 0

    def that(self, holds, sentence, run=None):
        """`run`: what describes itself where the check fails."""
        self.count += 1
        if holds:
            return
        self.failed += 1
        print(f"FAILED: {sentence}")
        if run is not None:
            print(run.describe())

    def finish(self):
        print(f"{self.count - self.failed} checks passed, {self.failed} failed")
        sys.exit(0 if self.failed == 0 and self.count > 0 else 1)
