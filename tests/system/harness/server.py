"""The tolvan-server beside the test."""

import os
import urllib.parse
import urllib.request
from pathlib import Path


class Server:
    """Its misbehaviour. The rules are told by tolvan-server --help."""

    @staticmethod
    def set(rule):
        Server._ask("set", rule=rule)

    @staticmethod
    def clear():
        Server._ask("clear")

    @staticmethod
    def log():
        """What it was asked for and has answered so far."""
        return Path(os.environ["TOLVAN_TEST_SERVER_LOG"]).read_text()

    @staticmethod
    def _ask(command, **values):
        url = os.environ["TOLVAN_TEST_CONTROL"] + command + "?" + urllib.parse.urlencode(
            values, quote_via=urllib.parse.quote)
        with urllib.request.urlopen(url, timeout=10) as answer:
            return answer.read().decode()
