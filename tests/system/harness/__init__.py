"""Runs the real launcher on a machine of its own and watches it from outside.

One test source serves both adapters: the environment says which build is under test.
  TOLVAN_ADAPTER   host or win32
  TOLVAN_BIN       the folder of the build's programs
  TOLVAN_HOST_BIN  the folder of the host build's programs (tolvan-machine, tolvan-server, ...)
CTest sets them; see tests/system/CMakeLists.txt.
"""

from .boot_log import BootLog
from .game import PublishedGame, make_files, read_files, wrapped, write_files
from .lifecase import CLIENT, LifeTest, UpdateTest, another_build, for_machine
from .machine import LAUNCHER, Machine, Program
from .progress import Progress
from .server import Server
from .testcase import REVEALS, GameTest, MachineTest
from .waiting import wait_until

__all__ = ["CLIENT", "LAUNCHER", "REVEALS", "BootLog", "GameTest", "LifeTest", "Machine",
           "MachineTest", "Program", "Progress", "PublishedGame", "Server", "UpdateTest",
           "another_build", "for_machine", "make_files", "read_files", "wait_until", "wrapped",
           "write_files"]
