#include "platform/host/gui/cairo_commands.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Platform::Host {

namespace {

constexpr double DegreesToRadians = std::numbers::pi / 180.0;

RectF Intersect(const RectF& one, const RectF& other) {
    return {std::max(one.left, other.left), std::max(one.top, other.top),
            std::min(one.right, other.right), std::min(one.bottom, other.bottom)};
}

void AddRectangle(cairo_t* context, const RectF& rect) {
    cairo_rectangle(context, rect.left, rect.top, rect.Width(), rect.Height());
}

void AddRoundedRectangle(cairo_t* context, const RectF& rect, float radius) {
    const float most = std::min(rect.Width(), rect.Height()) / 2.0F;
    const double r = std::min(radius, most);
    if (r <= 0.0) {
        AddRectangle(context, rect);
        return;
    }
    constexpr double Quarter = std::numbers::pi / 2.0;
    cairo_new_sub_path(context);
    cairo_arc(context, rect.right - r, rect.top + r, r, -Quarter, 0.0);
    cairo_arc(context, rect.right - r, rect.bottom - r, r, 0.0, Quarter);
    cairo_arc(context, rect.left + r, rect.bottom - r, r, Quarter, 2.0 * Quarter);
    cairo_arc(context, rect.left + r, rect.top + r, r, 2.0 * Quarter, 3.0 * Quarter);
    cairo_close_path(context);
}

void AddEllipse(cairo_t* context, const RectF& rect) {
    if (rect.Width() <= 0.0F || rect.Height() <= 0.0F) return;
    cairo_save(context);
    cairo_translate(context, (rect.left + rect.right) / 2.0F, (rect.top + rect.bottom) / 2.0F);
    cairo_scale(context, rect.Width() / 2.0F, rect.Height() / 2.0F);
    cairo_new_sub_path(context);
    cairo_arc(context, 0.0, 0.0, 1.0, 0.0, 2.0 * std::numbers::pi);
    cairo_close_path(context);
    cairo_restore(context);
}

void AddArc(cairo_t* context, const Command& command) {
    const double start = command.startDegrees * DegreesToRadians;
    cairo_new_sub_path(context);
    cairo_arc(context, (command.rect.left + command.rect.right) / 2.0F,
              (command.rect.top + command.rect.bottom) / 2.0F, command.rect.Width() / 2.0F, start,
              start + command.sweepDegrees * DegreesToRadians);
}

void AddPath(cairo_t* context, const Command& command) {
    switch (command.shape) {
        case Shape::Rectangle:
            return AddRectangle(context, command.rect);
        case Shape::RoundedRectangle:
            return AddRoundedRectangle(context, command.rect, command.radius);
        case Shape::Ellipse:
            return AddEllipse(context, command.rect);
        case Shape::Arc:
            return AddArc(context, command);
        case Shape::Line:
            cairo_move_to(context, command.rect.left, command.rect.top);
            cairo_line_to(context, command.rect.right, command.rect.bottom);
            return;
        default:
            return;
    }
}

void AddStop(cairo_pattern_t* pattern, double offset, const Color& color, float opacity) {
    cairo_pattern_add_color_stop_rgba(pattern, offset, color.red, color.green, color.blue,
                                      color.alpha * opacity);
}

void SetSource(cairo_t* context, const Paint& paint) {
    if (!paint.gradient) {
        cairo_set_source_rgba(context, paint.start.red, paint.start.green, paint.start.blue,
                              paint.start.alpha * paint.opacity);
        return;
    }
    const CairoPattern pattern(
        cairo_pattern_create_linear(paint.from.x, paint.from.y, paint.to.x, paint.to.y));
    AddStop(pattern.get(), 0.0, paint.start, paint.opacity);
    AddStop(pattern.get(), 1.0, paint.end, paint.opacity);
    cairo_set_source(context, pattern.get());
}

bool IsWhole(const RectF& rect) {
    return rect.left == std::floor(rect.left) && rect.top == std::floor(rect.top) &&
           rect.right == std::floor(rect.right) && rect.bottom == std::floor(rect.bottom);
}

/// The bitmap as a pattern that covers rect.
CairoPattern StretchedPattern(const Command& command) {
    const RectF& rect = command.rect;
    const Size natural = command.bitmap->GetSize();
    const Size wanted{static_cast<int>(rect.Width()), static_cast<int>(rect.Height())};
    cairo_surface_t* surface = command.bitmap->Surface();
    Size size = natural;
    if (IsWhole(rect) && wanted != natural) {
        if (cairo_surface_t* scaled = command.bitmap->Scaled(wanted)) {
            surface = scaled;
            size = wanted;
        }
    }
    CairoPattern pattern(cairo_pattern_create_for_surface(surface));
    cairo_matrix_t matrix;
    cairo_matrix_init_scale(&matrix, size.width / static_cast<double>(rect.Width()),
                            size.height / static_cast<double>(rect.Height()));
    cairo_matrix_translate(&matrix, -rect.left, -rect.top);
    cairo_pattern_set_matrix(pattern.get(), &matrix);
    const bool stretched = size != wanted || !IsWhole(rect);
    cairo_pattern_set_filter(pattern.get(),
                             stretched ? CAIRO_FILTER_BILINEAR : CAIRO_FILTER_NEAREST);
    cairo_pattern_set_extend(pattern.get(), CAIRO_EXTEND_PAD);
    return pattern;
}

void PaintBitmap(cairo_t* context, const Command& command) {
    CairoPattern pattern;
    if (command.shape == Shape::TiledBitmap) {
        pattern.reset(cairo_pattern_create_for_surface(command.bitmap->Surface()));
        cairo_matrix_t matrix;
        cairo_matrix_init_translate(&matrix, -command.rect.left, -command.rect.top);
        cairo_pattern_set_matrix(pattern.get(), &matrix);
        cairo_pattern_set_extend(pattern.get(), CAIRO_EXTEND_REPEAT);
        cairo_pattern_set_filter(pattern.get(), CAIRO_FILTER_NEAREST);
    } else {
        pattern = StretchedPattern(command);
    }
    const float opacity = command.paint.opacity;
    if (command.shape == Shape::Mask) {
        // The rectangle bounds the mask, whose edge pixels go on for ever.
        cairo_save(context);
        AddRectangle(context, command.rect);
        cairo_clip(context);
        SetSource(context, command.paint);
        cairo_mask(context, pattern.get());
        cairo_restore(context);
        return;
    }
    cairo_set_source(context, pattern.get());
    if (opacity >= 1.0F) {
        AddRectangle(context, command.rect);
        cairo_fill(context);
        return;
    }
    cairo_save(context);
    AddRectangle(context, command.rect);
    cairo_clip(context);
    cairo_paint_with_alpha(context, opacity);
    cairo_restore(context);
}

void PaintCommand(cairo_t* context, const Command& command) {
    switch (command.shape) {
        case Shape::Everything:
            cairo_set_operator(context, CAIRO_OPERATOR_SOURCE);
            SetSource(context, command.paint);
            cairo_paint(context);
            cairo_set_operator(context, CAIRO_OPERATOR_OVER);
            return;
        case Shape::Bitmap:
        case Shape::TiledBitmap:
        case Shape::Mask:
            return PaintBitmap(context, command);
        case Shape::Text:
            SetSource(context, command.paint);
            return command.text->Paint(context, {command.rect.left, command.rect.top});
        default:
            break;
    }
    SetSource(context, command.paint);
    AddPath(context, command);
    if (command.stroke <= 0.0F) {
        cairo_fill(context);
        return;
    }
    const bool round = command.shape == Shape::Arc;
    cairo_set_line_width(context, command.stroke);
    cairo_set_line_cap(context, round ? CAIRO_LINE_CAP_ROUND : CAIRO_LINE_CAP_BUTT);
    cairo_set_line_join(context, round ? CAIRO_LINE_JOIN_ROUND : CAIRO_LINE_JOIN_MITER);
    cairo_stroke(context);
}

void ApplyClips(cairo_t* context, const Clip* clip) {
    for (; clip; clip = clip->outer.get()) {
        if (clip->rect.Width() <= 0.0F || clip->rect.Height() <= 0.0F)
            cairo_rectangle(context, 0.0, 0.0, 0.0, 0.0);
        else
            AddRoundedRectangle(context, clip->rect, clip->radius);
        cairo_clip(context);
    }
}

}  // namespace

bool SameClip(const Clip* one, const Clip* other) {
    for (; one && other; one = one->outer.get(), other = other->outer.get()) {
        if (one == other) return true;
        if (one->rect != other->rect || one->radius != other->radius) return false;
    }
    return one == other;
}

bool Command::operator==(const Command& other) const {
    return shape == other.shape && rect == other.rect && radius == other.radius &&
           stroke == other.stroke && startDegrees == other.startDegrees &&
           sweepDegrees == other.sweepDegrees && paint == other.paint && bitmap == other.bitmap &&
           bitmapVersion == other.bitmapVersion && text == other.text &&
           SameClip(clip.get(), other.clip.get());
}

cairo_rectangle_int_t BoundsOf(const Command& command, Size target) {
    RectF bounds{0.0F, 0.0F, static_cast<float>(target.width), static_cast<float>(target.height)};
    if (command.shape != Shape::Everything) {
        RectF own = command.rect;
        if (command.shape == Shape::Text) {
            const RectF ink = command.text->InkBounds();
            own = {own.left + ink.left, own.top + ink.top, own.left + ink.right,
                   own.top + ink.bottom};
        }
        const float margin = command.stroke / 2.0F;
        own = {std::min(own.left, own.right) - margin, std::min(own.top, own.bottom) - margin,
               std::max(own.left, own.right) + margin, std::max(own.top, own.bottom) + margin};
        bounds = Intersect(bounds, own);
        for (const Clip* clip = command.clip.get(); clip; clip = clip->outer.get())
            bounds = Intersect(bounds, clip->rect);
    }
    if (bounds.right <= bounds.left || bounds.bottom <= bounds.top) return {0, 0, 0, 0};
    const int left = static_cast<int>(std::floor(bounds.left));
    const int top = static_cast<int>(std::floor(bounds.top));
    return {left, top, static_cast<int>(std::ceil(bounds.right)) - left,
            static_cast<int>(std::ceil(bounds.bottom)) - top};
}

void PaintCommands(cairo_t* context, const std::vector<Command>& commands,
                   const cairo_region_t* region, Size target) {
    cairo_save(context);
    for (int i = 0, count = cairo_region_num_rectangles(region); i < count; ++i) {
        cairo_rectangle_int_t part;
        cairo_region_get_rectangle(region, i, &part);
        cairo_rectangle(context, part.x, part.y, part.width, part.height);
    }
    cairo_clip(context);
    const Clip* clip = nullptr;
    cairo_save(context);
    for (const Command& command : commands) {
        const cairo_rectangle_int_t bounds = BoundsOf(command, target);
        if (cairo_region_contains_rectangle(region, &bounds) == CAIRO_REGION_OVERLAP_OUT) continue;
        if (!SameClip(clip, command.clip.get())) {
            cairo_restore(context);
            cairo_save(context);
            ApplyClips(context, command.clip.get());
            clip = command.clip.get();
        }
        PaintCommand(context, command);
    }
    cairo_restore(context);
    cairo_restore(context);
}

}  // namespace Platform::Host
