#pragma once

namespace Launcher {

/// In a developer build, writes how the run stands to the file that TOLVAN_PROGRESS_FILE names
/// (a Windows path), for scripts and tests to follow: a line at every change of the state or of the
/// error text and some a second during a pass or an install. Its fields, separated by tabs, in
/// UTF-8:
///
///     time state fraction filesDone filesTotal bytesDone bytesTotal bytesPerSecond
///     currentFile errorText
///
/// time is the state loop's, in seconds. From the start of an install on, the lines tell of that:
/// state is Install, InstallDone or InstallFailed, bytesTotal is 0 and currentFile is what the page
/// shows, "TITLE | STATUS". A release build has no such code in it. Main thread, once a tick.
void ReportProgress(double time);

}  // namespace Launcher
