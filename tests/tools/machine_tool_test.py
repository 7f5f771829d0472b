"""tolvan-machine from outside: what it prints and returns, on a machine of its own. How it runs, lists
and ends programs is seen in every test of tests/system."""

import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

BIN = Path(os.environ["TOLVAN_HOST_BIN"])
TOOL = BIN / "tolvan-machine"
HELPER = BIN / "tolvan_helper.exe"


class MachineTool(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp(prefix="tolvan-machine.")) / "machine"
        self.call("init")

    def tearDown(self):
        if self.folder.exists():
            self.call("end")
        self.folder.parent.rmdir()

    def run_tool(self, *arguments):
        return subprocess.run([TOOL, self.folder, *arguments], capture_output=True, text=True,
                              timeout=60)

    def call(self, *arguments):
        result = self.run_tool(*arguments)
        self.assertEqual(result.returncode, 0, result.stderr)
        return result.stdout

    def fails(self, code, *arguments):
        result = self.run_tool(*arguments)
        self.assertEqual(result.returncode, code, result.stderr)
        self.assertTrue(result.stderr)
        return result.stderr

    def place_helper(self, windows_path):
        shutil.copyfile(HELPER, self.call("path", windows_path).strip())

    def test_paths_go_both_ways(self):
        folder = self.folder.resolve()
        self.assertEqual(self.call("path", r"c:\PROGRAM FILES\New dir\x.txt"),
                         f"{folder}/drive_c/Program Files/New dir/x.txt\n")
        self.assertEqual(self.call("windows-path", f"{self.folder}/drive_d/x/y"), "D:\\x\\y\n")
        self.fails(1, "windows-path", "/etc/passwd")
        self.fails(1, "path", r"C:\a*b")

    def test_registry_speaks_as_reg_does(self):
        key = r"HKCU\Software\Tolvan Ö"
        done = "The operation completed successfully.\n"
        for arguments in (("/v", "Text", "/d", r"C:\A B", "/f"),
                          ("/v", "Number", "/t", "REG_DWORD", "/d", "31"),
                          ("/v", "Bytes", "/t", "REG_BINARY", "/d", "00ff7A"),
                          ("/ve", "/d", "")):
            self.assertEqual(self.call("reg", "add", key, *arguments), done)
        self.call("reg", "add", key + r"\Below")
        full = "HKEY_CURRENT_USER\\software\\TOLVAN ö"
        self.assertEqual(
            self.call("reg", "query", full),
            f"\n{full}\n"
            "    (Default)    REG_SZ    \n"
            "    Bytes    REG_BINARY    00FF7A\n"
            "    Number    REG_DWORD    0x1f\n"
            "    Text    REG_SZ    C:\\A B\n"
            f"\n{full}\\Below\n")
        self.assertEqual(self.call("reg", "query", full, "/v", "number"),
                         f"\n{full}\n    number    REG_DWORD    0x1f\n\n")
        self.assertIn("/f", self.fails(1, "reg", "add", key, "/v", "Text", "/d", "x"))
        self.fails(1, "reg", "add", key, "/v", "Odd", "/t", "REG_DWORD", "/d", "x")
        self.fails(1, "reg", "add", r"HKLM\Software", "/f")
        self.fails(2, "reg", "add", key, "/nonsense")
        self.call("reg", "delete", key, "/v", "Number", "/f")
        self.fails(1, "reg", "query", key, "/v", "Number")
        self.fails(1, "reg", "delete", key)
        self.call("reg", "delete", key, "/f")
        self.fails(1, "reg", "query", key + r"\Below")

    def test_a_program_started_by_a_shell_reads_its_own_arguments(self):
        environment = {**os.environ, "TOLVAN_MACHINE": str(self.folder),
                       "TOLVAN_COMMAND_LINE": "another.exe report|of another program"}
        folder = self.folder / "drive_c/Users"
        subprocess.run([HELPER, "report|", "--dest=D:\\a b"], env=environment, cwd=folder,
                       check=True, timeout=60)
        self.assertEqual((folder / "report.txt").read_text(), 'report| --dest="D:\\a b"')

    def test_attributes_are_changed_and_shown(self):
        self.place_helper(r"C:\helper.exe")
        self.call("attrib", "+h", "+s", "-a", r"C:\helper.exe")
        self.assertEqual(self.call("attrib", r"C:\helper.exe"), " SH    C:\\helper.exe\n")
        self.call("attrib", "-h", "-s", r"C:\helper.exe")
        self.assertNotIn("H", self.call("attrib", r"C:\helper.exe").split("C:")[0])
        self.fails(1, "attrib", r"C:\missing")
        self.fails(2, "attrib", "+x", r"C:\helper.exe")


if __name__ == "__main__":
    unittest.main()
