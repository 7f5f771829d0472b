"""The patch pass as a whole: a real launcher brings a real folder up to date."""

import time
import unittest

from harness import GameTest, Server, make_files, wait_until, wrapped
from harness.game import LIST

CURRENT = ["Manifest", "Parse", "Compare", "Ready"]
UPDATED = ["Manifest", "Parse", "Compare", "Update", "Verify", "Ready"]

class PassTest(GameTest):
    def test_outdated_folder_becomes_the_published_game(self):
        old = make_files(30, seed=2)
        kept = {name: self.published.files[name] for name in list(old)[:10]}
        self.install({**old, **kept, "added by the player.txt": b"mine"})
        launcher, progress = self.begin()
        end = progress.wait_for_end()
        self.assertEqual(end.state, "Ready", end)
        self.assertEqual(end.fraction, 1.0)
        self.assertEqual(self.installed(), {**self.published.files, "added by the player.txt": b"mine"})
        self.assert_in_order(
            ["run: starting the patch pass and the two update checks",
             "state: Manifest -> Parse",
             "state: Parse -> Compare",
             "compare: up to date 10 of 30, queued 20",
             "state: Compare -> Update",
             "state: Update -> Verify",
             "state: Verify -> Ready"],
            self.boot_log().texts())
        self.assertTrue(launcher.is_running())

    def test_checkonly_stops_before_the_first_write(self):
        old = make_files(30, seed=2)
        self.install(old)
        launcher, progress = self.begin("--checkonly")
        self.assert_ends_well(launcher)
        self.assertEqual(self.installed(), old)
        self.assertEqual(progress.states(), ["Manifest", "Parse", "Compare", "Halt"])
        self.assertIn("checkonly: reached Update, stopping before the first write",
                      self.boot_log().texts())

    def test_checkonly_stays_ready_when_nothing_is_to_be_fetched(self):
        self.install(self.published.files)
        launcher, progress = self.begin("--checkonly")
        progress.wait_for("Ready")
        self.assertTrue(launcher.is_running())

    def test_only_a_repair_sees_a_damaged_payload(self):
        name, good = next(iter(self.published.files.items()))
        damaged = {**self.published.files, name: good[:18] + bytes([good[18] ^ 1]) + good[19:]}
        self.install(damaged)
        _, progress = self.begin()
        progress.wait_for("Ready")
        self.assert_files(self.installed(), damaged)
        self.press("repair")
        wait_until(lambda: progress.states() == CURRENT + UPDATED, progress.states)
        self.assert_files(self.installed(), self.published.files)

    def test_progress_tells_files_bytes_and_speed(self):
        small, large = 520, 256_020
        self.published.publish({"a.dat": wrapped(bytes(small - 20)),
                                "b.dat": wrapped(bytes(large - 20)),
                                "c.dat": wrapped(bytes(small - 20))})
        Server.set("*/patcher/get/b.dat=trickle:128K")
        _, progress = self.begin()
        progress.wait_for("Ready")
        shown = [moment for moment in progress.read() if moment.current_file == "Data/b.dat"]
        for moment in shown:
            self.assertEqual((moment.state, moment.files_done, moment.files_total),
                             ("Update", 1, 3))
            self.assertEqual(moment.bytes_total, 2 * small + large)
            self.assertLessEqual(small, moment.bytes_done)
            self.assertAlmostEqual(moment.fraction, moment.bytes_done / moment.bytes_total, 5)
        self.assertTrue(any(small < moment.bytes_done < small + large for moment in shown), shown)
        self.assertTrue(any(40_000 < moment.bytes_per_second < 220_000 for moment in shown), shown)

    def test_close_in_each_state_leaves_whole_files(self):
        old = make_files(30, seed=2)
        cases = [("Manifest", f"*/{LIST}=latency:400"), ("Parse", None), ("Compare", None),
                 ("Update", "*/patcher/get/*=latency:400"), ("Verify", None)]
        if not self.machine.is_wine:  # where a silent read is not woken
            cases += [("Manifest", f"*/{LIST}=stall"), ("Update", "*/patcher/get/*=stall:50%")]
        for state, rule in cases:
            with self.subTest(state, rule=rule):
                self.install(old)
                if rule:
                    Server.set(rule)
                launcher, progress = self.begin()
                progress.wait_for(state)
                self.press("close")
                began = time.monotonic()
                self.assert_ends_well(launcher)
                self.assertLess(time.monotonic() - began, 5)
                if rule:
                    self.assertEqual(progress.states()[-2:], [state, "Halt"])
                Server.clear()
                for name, content in self.installed().items():
                    self.assertIn(content, (old[name], self.published.files[name]), name)

    def test_retry_replaces_a_pass_that_hangs_on_the_network(self):
        name = next(iter(self.published.files))
        for path in (LIST, f"patcher/get/{name}"):
            with self.subTest(path):
                (self.data / name).unlink(missing_ok=True)
                Server.set(f"*/{path}=stall:5,times:1")
                asked = len(Server.log())
                launcher, progress = self.begin()
                wait_until(lambda: path.replace(" ", "%20") in Server.log()[asked:],
                           f"{path} is asked for")
                self.press("retry")
                if self.machine.is_wine:
                    # A silent read is not woken there, and its successor waits for its end.
                    self.boot_log().wait_for("terminal: RETRY requested")
                    Server.clear()
                # Silence would end the first pass after 20 seconds or more, in an error.
                self.assertEqual(progress.wait_for_end(patience=15).state, "Ready")
                self.assert_files(self.installed(), self.published.files)
                launcher.kill()


if __name__ == "__main__":
    unittest.main()
