"""The patch pass as a whole: a real launcher brings a real folder up to date."""

import unittest

from harness import GameTest, Server, make_files



class PassTest(GameTest):
    def test_outdated_folder_becomes_the_published_game(self):
        old = make_files(30, seed=2)
        kept = {name: self.game.files[name] for name in list(old)[:10]}
        self.install({**old, **kept, "added by the player.txt": b"mine"})
        launcher, progress = self.launch_on_game()
        end = progress.wait_for_end()
        self.assertEqual(end.state, "Ready", end)
        self.assertEqual(end.fraction, 1.0)
        self.assertEqual(self.installed(), {**self.game.files, "added by the player.txt": b"mine"})
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

    def test_current_folder_is_ready_at_once(self):
        self.install(self.game.files)
        _, progress = self.launch_on_game()
        self.assertEqual(progress.wait_for_end().state, "Ready")
        self.assertEqual(progress.states(), ["Manifest", "Parse", "Compare", "Ready"])

    def test_checkonly_stops_before_the_first_write(self):
        old = make_files(30, seed=2)
        self.install(old)
        launcher, progress = self.launch_on_game("--checkonly")
        self.assert_ends_well(launcher)
        self.assertEqual(self.installed(), old)
        self.assertEqual(progress.states(), ["Manifest", "Parse", "Compare", "Halt"])
        self.assertIn("checkonly: reached Update, stopping before the first write",
                      self.boot_log().texts())

    def test_checkonly_stays_ready_when_nothing_is_to_be_fetched(self):
        self.install(self.game.files)
        launcher, progress = self.launch_on_game("--checkonly")
        progress.wait_for("Ready")
        self.assertTrue(launcher.is_running())

    def test_dead_server_ends_in_a_state_that_stands(self):
        launcher, progress = self.launch_on_game(url="http://localhost:1/")
        end = progress.wait_for_end()
        self.assertEqual((end.state, end.error_text),
                         ("ErrDownload", "The update list could not be downloaded."))
        self.assertTrue(launcher.is_running())

    def test_halt_in_the_middle_of_a_pass_leaves_whole_files(self):
        old = make_files(30, seed=2)
        self.install(old)
        # The end comes in the middle, however long the start has taken.
        Server.set("*/patcher/get/*=latency:400")
        launcher, progress = self.launch_on_game("--autoquit=4")
        self.assert_ends_well(launcher)
        self.assertEqual(progress.states(), ["Manifest", "Parse", "Compare", "Update", "Halt"])
        for name, content in self.installed().items():
            self.assertIn(content, (old[name], self.game.files[name]), name)


if __name__ == "__main__":
    unittest.main()
