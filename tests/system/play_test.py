"""PLAY: a real launcher starts a real program as the game and follows it."""

import os
import subprocess
import unittest

from harness import CLIENT, LifeTest, Server, for_machine, wait_until
from harness.testcase import LAUNCHER_KEY

READY = "spawn: the client reports its login screen is up -- PLAY re-enabled"
EXITED = "spawn: the client exited before it was ready -- PLAY re-enabled"
BUSY = "spawn: ignored -- a client is already starting"
STAYS = "spawn: client started, staying open (CloseAfterStart is off)"
FAILED = "spawn: FAILED"
REFUSED = "spawn: refused -- the correct client is not in place yet"
NO_CHECK = ("clientupdate: CHECK FAILED -- check failed -- "
            "The manifest request failed (HTTP 500)")


class PlayTest(LifeTest):
    def setUp(self):
        super().setUp()
        self.program = self.lay_installed()
        self.log = self.boot_log(self.GAME)

    def start(self, *switches, game=""):
        """Starts the launcher; the game behaves as told."""
        launcher, progress = self.begin(*switches, program=self.program, TOLVAN_SAMPLE_GAME=game)
        progress.wait_for("Ready")
        self.log.wait_for("AppLoop: tick 2")
        return launcher, progress

    def play(self):
        self.press("play")

    def wait_for_lines(self, text, count):
        wait_until(lambda: self.log.count(text) == count, lambda: f"{text!r} {count} times")

    def game_log(self):
        path = self.game / "sample_game.log"
        return path.read_text() if path.exists() else ""

    def test_client_that_handshakes(self):
        self.start("--nopatch", game="ready=300")
        self.play()
        self.log.wait_for(STAYS)
        self.play()
        self.log.wait_for(READY)
        self.assert_in_order(["spawn: started", STAYS, BUSY, READY], self.log.texts())
        self.assertIn(f"program={self.client_path}\n", self.game_log())
        self.assertIn("arguments=\n", self.game_log())
        # A client that runs is no reason to refuse another one.
        self.play()
        self.wait_for_lines(READY, 2)
        self.machine.wait_for_processes(CLIENT, 2)

    def test_client_that_dies_at_once(self):
        self.start("--nopatch", game="exit-after=0;ready=never")
        self.play()
        self.log.wait_for(EXITED)

    def test_client_that_holds_its_event_unset(self):
        self.start("--nopatch", game="ready=hold")
        self.play()
        wait_until(lambda: "ready event made" in self.game_log(), "the event is there")
        self.play()
        self.log.wait_for(BUSY)
        self.machine.kill_all(CLIENT)
        # The event goes with its process, so the end is seen.
        self.log.wait_for(EXITED)

    def test_close_after_start(self):
        self.machine.registry_write(LAUNCHER_KEY, "CloseAfterStart", 1)
        launcher, _ = self.start("--nopatch", game="ready=never")
        self.play()
        self.assert_ends_well(launcher)
        self.machine.wait_for_processes(CLIENT, 1)
        self.assertNotIn(STAYS, self.log.texts())

    def test_client_that_cannot_be_started(self):
        _, progress = self.start()
        self.log.wait_for("clientupdate: up to date")
        client = self.game / CLIENT
        cases = [
            (lambda: client.write_bytes(for_machine(self.client, "arm64")),
             "The game client is not runnable on this system (wrong architecture)."),
            (lambda: client.write_bytes(b"no program at all" * 1000),
             "The game client is not runnable on this system (wrong architecture)."),
            (client.unlink, f"The game client could not be found in {self.GAME}"),
            (lambda: client.write_bytes(self.launcher),
             f"The game client could not be found in {self.GAME}"),
        ]
        for number, (prepare, message) in enumerate(cases, 1):
            with self.subTest(message):
                prepare()
                self.play()
                self.wait_for_lines(FAILED, number)
                progress.wait_for_error(message)
        # RETRY takes the message away and runs a pass, which brings the right client.
        self.press("retry")
        self.log.wait_for("clientupdate: swapped in")
        self.assertEqual(progress.read()[-1].error_text, "")
        self.play()
        self.log.wait_for(READY)

    def test_client_that_may_not_be_opened(self):
        _, progress = self.start("--nopatch")
        release = self.hold(self.client_path)
        self.play()
        self.log.wait_for(FAILED)
        progress.wait_for_error("The game client could not be opened (error 32)")
        release()
        self.play()
        self.log.wait_for(READY)

    def test_client_without_handshake_releases_with_its_window(self):
        if not self.machine.is_wine:
            self.start_display()
        self.start("--nopatch", game="ready=never;window=640x480")
        self.play()
        released = "spawn: this client does not handshake -- released on the old heuristic"
        self.log.wait_for(released)
        times = self.log.times()
        self.assertGreaterEqual(times[released] - times["spawn: started"], 9_900)

    def test_player_without_a_network_keeps_a_game_that_works(self):
        Server.set("*updater.php*=status:500")
        _, progress = self.start()
        self.log.wait_for(NO_CHECK)
        self.play()
        self.log.wait_for(READY)
        # Without any client it is another matter.
        self.machine.kill_all(CLIENT)
        (self.game / CLIENT).unlink()
        self.press("retry")
        self.wait_for_lines(NO_CHECK, 2)
        self.play()
        self.log.wait_for(REFUSED)
        progress.wait_for_error("The game client could not be downloaded. Retry, or check your "
                                "connection.")

    def test_play_waits_for_a_client_that_is_on_its_way(self):
        (self.game / CLIENT).write_bytes(for_machine(self.client, "x86"))
        Server.set("*/patcher/Tolvan Online_x64.exe=latency:1500")
        self.start()
        self.play()
        self.log.wait_for(REFUSED)
        self.log.wait_for("clientupdate: swapped in")
        self.play()
        self.log.wait_for(READY)
        self.assertIn("clientupdate: installed client is the wrong architecture -- fetching "
                      "Tolvan Online_x64.exe", self.log.texts())

    def start_display(self):
        reader, writer = os.pipe()
        display = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writer), "-noreset", "-nolisten", "tcp"],
            pass_fds=[writer], stderr=subprocess.DEVNULL)
        self.addCleanup(display.wait)
        self.addCleanup(display.terminate)
        os.close(writer)
        with open(reader, encoding="ascii") as number:
            self.machine.environment["DISPLAY"] = ":" + number.readline().strip()


if __name__ == "__main__":
    unittest.main()
