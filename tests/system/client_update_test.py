"""The game's client is kept current beside the patch pass, in step with the machine."""

import os
import unittest

from harness import LAUNCHER, LifeTest, Server, another_build, for_machine, wait_until
from harness.lifecase import HIDDEN_AND_SYSTEM

CLIENT = ".Tolvan Online.exe"
LAUNCHER_KEY = r"Software\TolvanOnline\Launcher"
SWAPPED = "clientupdate: swapped in"
WAITING = "clientupdate: a client update is waiting for a launch with no game running"
WRONG = "clientupdate: installed client is the wrong architecture -- fetching Tolvan Online_{}.exe"
DOWNLOAD = "*/patcher/Tolvan Online_x64.exe"
UPDATER = "*updater.php?f=Tolvan Online_*"


class ClientUpdateTest(LifeTest):
    def setUp(self):
        super().setUp()
        self.older = another_build(self.client, "older")
        self.program = self.lay_installed(client=self.older)
        self.log = self.boot_log(self.GAME)

    def begin_run(self, *switches):
        return self.begin(*switches, program=self.program)

    def clients(self):
        """What lies in the folder under the client's name and names made of it."""
        return {path.name: path.read_bytes() for path in self.game.iterdir()
                if path.name.startswith(CLIENT)}

    def lines(self, text):
        return self.log.texts().count(text)

    def assert_brought_up_to(self, client, architecture):
        """A run swaps the published client in, hidden, whatever was there."""
        self.log.path.unlink(missing_ok=True)
        launcher, _ = self.begin_run()
        self.log.wait_for(SWAPPED)
        self.assertEqual(self.clients(), {CLIENT: client})
        self.assertEqual(self.machine.attributes(self.CLIENT) & HIDDEN_AND_SYSTEM,
                         HIDDEN_AND_SYSTEM)
        self.assertEqual(self.lines(WRONG.format(architecture)),
                         1 if self.was_wrong else 0, self.log.texts())
        launcher.kill()

    def test_every_client_becomes_the_wanted_one(self):
        path = self.game / CLIENT
        x86 = for_machine(self.client, "x86")
        cases = [  # what stands there, the player's choice, what comes
            (self.older, 0, self.client, "x64", False),
            (x86, 0, self.client, "x64", True),
            (for_machine(self.older, "arm64"), 0, self.client, "x64", False),
            (b"no program", 0, self.client, "x64", False),
            (self.client, 1, x86, "x86", True),
            (for_machine(self.client, "arm64"), 1, x86, "x86", True),
            (x86, 2, self.client, "x64", True),
        ]
        for number, (found, choice, wanted, architecture, wrong) in enumerate(cases):
            with self.subTest(number):
                path.unlink()
                path.write_bytes(found)
                path.chmod(0o755)
                self.machine.registry_write(LAUNCHER_KEY, "ClientArch", choice)
                self.was_wrong = wrong
                self.assert_brought_up_to(wanted, architecture)

    def test_answers_and_files_that_are_no_client(self):
        """The client that stands stays, nothing stays beside it, and the game is Ready."""
        wrong = "FAILED -- the published client is the wrong architecture"
        cases = {
            f"{UPDATER}=status:404": "CHECK FAILED -- check failed -- "
                                     "The manifest request failed (HTTP 404)",
            f"{UPDATER}=body:123": "CHECK FAILED -- the endpoint answered something that is not "
                                   "a CRC",
            f"{UPDATER}=body:4294967296 5": "CHECK FAILED -- the endpoint answered something that "
                                            "is not a CRC",
            f"{UPDATER}=big:5000": "CHECK FAILED -- check failed -- The manifest was larger than "
                                   "expected",
            f"{DOWNLOAD}=status:500": "FAILED -- download failed -- ",
            f"{DOWNLOAD}=cut:50%": "FAILED -- download failed -- ",
            f"{DOWNLOAD}=short:1": "FAILED -- the downloaded client was the wrong size",
            f"{DOWNLOAD}=flip:2000": "FAILED -- the downloaded client did not match its published "
                                     "CRC",
        }
        for rule, telling in cases.items():
            with self.subTest(rule):
                Server.set(rule)
                self.assert_refused(telling)
                Server.clear()
        for content, telling in (
                (self.launcher, "FAILED -- the published client is a launcher"),
                (for_machine(self.client, "x86"), wrong), (b"no program", wrong)):
            with self.subTest(telling):
                self.published.serve("patcher/Tolvan Online_x64.exe", content)
                self.published.serve_answer("client_x64", content)
                self.assert_refused(telling)

    def assert_refused(self, telling):
        self.log.path.unlink(missing_ok=True)
        launcher, progress = self.begin_run()
        progress.wait_for("Ready")
        wait_until(lambda: any(text.startswith("clientupdate: " + telling)
                               for text in self.log.texts()),
                   lambda: f"{telling!r} in {self.log.texts()}")
        self.assertEqual(self.clients(), {CLIENT: self.older})
        launcher.kill()

    def test_staged_client_of_an_earlier_run_is_used(self):
        self.machine.write_file(self.CLIENT + ".part", self.client)
        Server.set(f"{DOWNLOAD}=status:500")
        self.was_wrong = False
        self.assert_brought_up_to(self.client, "x64")

    def test_swap_waits_while_the_game_runs(self):
        launcher, progress = self.begin_run("--nopatch")
        self.log.wait_for("AppLoop: tick 2")
        self.press("play")
        self.machine.wait_for_processes(CLIENT, 1)
        launcher.kill()
        launcher, progress = self.begin_run()
        self.log.wait_for(WAITING)
        progress.wait_for("Ready")
        self.assertEqual(self.clients(), {CLIENT: self.older, CLIENT + ".part": self.client})
        # PLAY still starts the client that stands.
        self.press("play")
        self.log.wait_for("spawn: the client reports its login screen is up -- PLAY re-enabled")
        for client in self.machine.processes(CLIENT):
            os.kill(client, 9)
        self.log.wait_for(SWAPPED)
        self.assertEqual(self.clients(), {CLIENT: self.client})
        self.assertEqual(self.lines(WAITING), 1)
        self.assertTrue(launcher.is_running())

    def test_client_that_somebody_holds_is_swapped_later(self):
        release = self.hold(self.CLIENT, sharing=1)
        self.begin_run()
        deferred = "clientupdate: deferred -- the game is running"
        self.log.wait_for(deferred)
        self.assertEqual(self.clients(), {CLIENT: self.older, CLIENT + ".part": self.client})
        release()
        self.log.wait_for(SWAPPED)
        self.assertEqual(self.lines(deferred), 1)

    def test_both_are_brought_up_to_date_in_one_start(self):
        self.lay_installed(client=self.older, launcher=another_build(self.launcher))
        old, _ = self.begin_run()
        self.assert_ends_well(old)
        self.log.wait_for("selfupdate: launcher is current")
        wait_until(lambda: self.clients() == {CLIENT: self.client}, "the client is swapped")
        self.assertEqual((self.game / LAUNCHER).read_bytes(), self.launcher)


if __name__ == "__main__":
    unittest.main()
