#pragma once

#include <cstdint>

namespace Launcher {

/// At once the run state of the patching flow and the key of a page. The numbers are fixed: they
/// are shared with what other programs log. Names that nothing enters keep their numbers.
enum class State : std::int32_t {
    Boot = 0,
    SelfRecover = 1,
    Route = 2,
    FirstRunLanguage = 3,  ///< page: language choice of a fresh install
    License = 4,           ///< page
    Setup = 5,             ///< page: install options
    FolderPicker = 6,      ///< page
    Elevate = 7,
    Install = 8,  ///< page: install progress
    InstallFailed = 9,
    InstallDone = 10,  ///< page
    Home = 11,
    Manifest = 12,  ///< run: the update list is being fetched
    Parse = 13,     ///< run: it is being read
    Compare = 14,   ///< run: the installed files are compared with it
    SelfUpdate = 15,
    ClientBinary = 16,
    Update = 17,  ///< run: files are being fetched
    Verify = 18,  ///< run: they are read back
    Ready = 19,   ///< run: nothing to do; page: home
    PlayOnly = 20,
    WaitOther = 21,
    Spawn = 22,
    SlotFull = 23,
    Settings = 24,      ///< page
    Manage = 25,        ///< page: install management
    ManageBroken = 26,  ///< page: install not found, search and relink
    AutoDetect = 27,
    Problem = 28,  ///< page; has no name in the log
    Move = 29,     ///< page: relocate
    Relink = 30,
    Repair = 31,            ///< page
    UninstallConfirm = 32,  ///< page
    UninstallRun = 33,
    UninstallDone = 34,  ///< page: receipt after an uninstall
    ErrNetwork = 35,     ///< run, terminal: the update server did not answer
    ErrDownload = 36,    ///< run, terminal: a download failed
    ErrFatal = 37,       ///< run, terminal: the update data or the result is wrong
    ErrTrust = 38,       ///< terminal wherever it is shown
    ErrArch = 39,
    Halt = 40,  ///< run: the program is to end
    Exit = 41,
};

/// The name that the log shows; "<unknown>" for a value without one.
const char* StateName(State state);

/// A patch pass is under way: Manifest, Parse, Compare, Update or Verify.
bool IsPatching(State state);

}  // namespace Launcher
