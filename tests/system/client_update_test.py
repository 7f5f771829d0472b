"""The game's client is kept current beside the patch pass, in step with the machine."""

import unittest

from harness import CLIENT, Server, UpdateTest, for_machine
from harness.lifecase import HIDDEN_AND_SYSTEM
from harness.testcase import LAUNCHER_KEY

SWAPPED = "clientupdate: swapped in"
WAITING = "clientupdate: a client update is waiting for a launch with no game running"
WRONG = "clientupdate: installed client is the wrong architecture -- fetching Tolvan Online_{}.exe"
DOWNLOAD = "*/patcher/Tolvan Online_x64.exe"
UPDATER = "*updater.php?f=Tolvan Online_*"


class ClientUpdateTest(UpdateTest):
    OLDER = (CLIENT,)

    def setUp(self):
        super().setUp()
        self.older = self.old[CLIENT]

    def clients(self):
        return self.programs(CLIENT)

    def assert_brought_up_to(self, client, architecture, was_wrong=False):
        """A run swaps the published client in, hidden, whatever was there."""
        self.log.path.unlink(missing_ok=True)
        launcher, _ = self.begin_run()
        self.log.wait_for(SWAPPED)
        self.assert_files(self.clients(), {CLIENT: client})
        self.assertEqual(self.machine.attributes(self.client_path) & HIDDEN_AND_SYSTEM,
                         HIDDEN_AND_SYSTEM)
        self.assertEqual(self.log.count(WRONG.format(architecture)), int(was_wrong))
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
                self.assert_brought_up_to(wanted, architecture, wrong)

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
                self.assert_refused("clientupdate: " + telling)
                Server.clear()
        for content, telling in (
                (self.launcher, "FAILED -- the published client is a launcher"),
                (for_machine(self.client, "x86"), wrong), (b"no program", wrong)):
            with self.subTest(telling):
                self.published.serve("patcher/Tolvan Online_x64.exe", content)
                self.published.serve_answer("client_x64", content)
                self.assert_refused("clientupdate: " + telling)

    def test_staged_client_of_an_earlier_run_is_used(self):
        self.machine.write_file(self.client_path + ".part", self.client)
        Server.set(f"{DOWNLOAD}=status:500")
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
        self.assert_files(self.clients(), {CLIENT: self.older, CLIENT + ".part": self.client})
        # PLAY still starts the client that stands.
        self.press("play")
        self.log.wait_for("spawn: the client reports its login screen is up -- PLAY re-enabled")
        self.machine.kill_all(CLIENT)
        self.log.wait_for(SWAPPED)
        self.assert_files(self.clients(), {CLIENT: self.client})
        self.assertEqual(self.log.count(WAITING), 1)
        self.assertTrue(launcher.is_running())

    def test_client_that_somebody_holds_is_swapped_later(self):
        release = self.hold(self.client_path, sharing=1)
        self.begin_run()
        deferred = "clientupdate: deferred -- the game is running"
        self.log.wait_for(deferred)
        self.assert_files(self.clients(), {CLIENT: self.older, CLIENT + ".part": self.client})
        release()
        self.log.wait_for(SWAPPED)
        self.assertEqual(self.log.count(deferred), 1)


if __name__ == "__main__":
    unittest.main()
