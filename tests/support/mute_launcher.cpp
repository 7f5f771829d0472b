// Carries the launcher's marker, so that it passes for one, and never tells that it is up.

#include "platform/entry.h"

int ProgramMain(const std::wstring&) {
    return 0;
}
