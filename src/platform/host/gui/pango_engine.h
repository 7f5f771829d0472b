#pragma once

#include <fontconfig/fontconfig.h>
#include <vector>

#include "platform/fonts.h"
#include "platform/host/descriptor.h"
#include "platform/host/gui/pango_layout.h"

namespace Platform::Host {

/// Pango over a fontconfig configuration of our own: the system's fonts, and those that the program
/// brings along. The private families stand in the same configuration as the system's; where both
/// have a family, the private one wins.
class PangoEngine final : public TextEngine, public PrivateFonts {
public:
    PangoEngine() = default;
    ~PangoEngine() override;
    PangoEngine(const PangoEngine&) = delete;
    PangoEngine& operator=(const PangoEngine&) = delete;

    Created<TextFormat> CreateTextFormat(const TextFormatSpec& spec) override;
    Created<TextLayout> CreateTextLayout(const TextFormat& format,
                                         const TextLayoutSpec& spec) override;
    GraphicsResult AddFile(std::span<const std::byte> file) override;
    GraphicsResult BuildCollection() override;

private:
    PangoContext* Context();

    FcConfig* config_ = nullptr;
    GObjectOwner<PangoFontMap> fontMap_;
    GObjectOwner<PangoContext> context_;
    /// The files in memory: fontconfig opens them again by these whenever it needs a face.
    std::vector<Descriptor> files_;
};

}  // namespace Platform::Host
