#include "directgl/bold_marks.h"

namespace DirectGL {

MarkedText ReadBoldMarks(std::wstring_view marked) {
    constexpr std::wstring_view Mark = L"**";
    MarkedText read;
    bool bold = false;
    while (true) {
        const std::size_t mark = marked.find(Mark);
        const std::wstring_view part = marked.substr(0, mark);
        if (bold && !part.empty()) read.bold.push_back({read.plain.size(), part.size()});
        read.plain += part;
        if (mark == std::wstring_view::npos) return read;
        marked.remove_prefix(mark + Mark.size());
        bold = !bold;
    }
}

}  // namespace DirectGL
