#include <windows.h>

#include "platform/entry.h"

int WINAPI wWinMain(HINSTANCE, HINSTANCE, wchar_t* commandLine, int) {
    return ProgramMain(commandLine ? commandLine : L"");
}
