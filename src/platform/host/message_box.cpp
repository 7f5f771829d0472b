#include "platform/message_box.h"

#include <SDL2/SDL_messagebox.h>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <unistd.h>

#include "platform/host/descriptor.h"
#include "platform/host/machine.h"
#include "platform/host/shared_library.h"
#include "platform/text.h"

namespace Platform {

namespace {

/// The text on one line.
std::string Escape(const std::string& text) {
    std::string escaped;
    for (const char character : text) {
        switch (character) {
            case '\\':
                escaped += "\\\\";
                break;
            case '\n':
                escaped += "\\n";
                break;
            case '\t':
                escaped += "\\t";
                break;
            default:
                escaped += character;
        }
    }
    return escaped;
}

/// The machine's record of the boxes it showed: a line each, the caption, a tab and the text.
void Record(const std::string& caption, const std::string& text) {
    const Host::Descriptor file(open((Host::RunFolder() + "/message_boxes.log").c_str(),
                                     O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666));
    const std::string line = Escape(caption) + '\t' + Escape(text) + '\n';
    // The box is what counts; a record that cannot be written is missed by nobody but a test.
    static_cast<void>(write(file.Get(), line.data(), line.size()) < 0);
}

}  // namespace

void ShowErrorBox(const std::wstring& caption, const std::wstring& text) {
    const std::string captionText = Utf8FromWide(caption);
    const std::string bodyText = Utf8FromWide(text);
    Record(captionText, bodyText);
    std::fprintf(stderr, "%s: %s\n", captionText.c_str(), bodyText.c_str());
    if (std::getenv("DISPLAY") == nullptr) return;
    static const Host::SharedLibrary library("libSDL2-2.0.so.0");
    decltype(&SDL_ShowSimpleMessageBox) show = nullptr;
    if (!library.Find("SDL_ShowSimpleMessageBox", show)) return;
    show(SDL_MESSAGEBOX_ERROR, captionText.c_str(), bodyText.c_str(), nullptr);
}

}  // namespace Platform
