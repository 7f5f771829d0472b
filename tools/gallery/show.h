#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "directgl/gui.h"

namespace Gallery {

/// Registers the typefaces of the sheets. False, with a word on standard error, when one is
/// missing.
bool LoadFonts(DirectGL::Gui& gui, const std::filesystem::path& folder);

/// The root that a sheet fills.
DirectGL::Window* MakeRoot(DirectGL::Gui& gui, const std::string& name);

struct ShowOptions {
    std::filesystem::path fonts;
    std::string page;             ///< the sheet to begin with; the first one unless set
    std::filesystem::path state;  ///< a file that always tells the state of the window and of the
                                  ///< playground, "name=value" a line; none unless set
    std::optional<Platform::Point> place;  ///< of the window; the middle of the screen unless set
};

/// Shows the sheets, and the playground behind them, in a window of this desktop until it is
/// closed; the arrow keys turn the pages. The exit code.
int ShowSheets(const ShowOptions& options);

}  // namespace Gallery
