"""Waiting for conditions instead of sleeping."""

import time

# Generous: a loaded machine and the first program under Wine take their time.
PATIENCE = 60.0
PAUSE = 0.01

# The machines of the test. They tell what they are doing when a wait was in vain.
machines = []


def wait_until(condition, what, patience=PATIENCE):
    """Returns the first true answer of condition(); fails with what when there is none in time."""
    end = time.monotonic() + patience
    while True:
        answer = condition()
        if answer:
            return answer
        if time.monotonic() > end:
            for machine in machines:
                machine.skip_if_wine_failed()
            told = [what() if callable(what) else what, *(machine.report() for machine in machines)]
            raise AssertionError(f"not within {patience:.0f} s: " + "\n".join(told))
        time.sleep(PAUSE)
