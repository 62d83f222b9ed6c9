"""Conditions instead of pauses."""

import time


def wait_for(condition, what, seconds=10.0):
    """Polls until the condition gives something true, and returns that; fails when it never does."""
    deadline = time.monotonic() + seconds
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > deadline:
            raise AssertionError(f"waited {seconds:g} s in vain: {what}")
        time.sleep(0.02)


def stays(condition, seconds):
    """Whether a condition holds for all of a time."""
    until = time.monotonic() + seconds
    while time.monotonic() < until:
        if not condition():
            return False
        time.sleep(0.02)
    return True
