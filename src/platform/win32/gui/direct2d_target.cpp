#include "platform/win32/gui/direct2d_target.h"

#include <cmath>
#include <d2d1helper.h>
#include <numbers>

#include "platform/win32/gui/directwrite_layout.h"

namespace Platform::Win32 {

namespace {

PointF OnCircle(float radius, float degrees) {
    const float angle = degrees * std::numbers::pi_v<float> / 180.0F;
    return {radius * std::cos(angle), radius * std::sin(angle)};
}

D2D1_BITMAP_PROPERTIES PropertiesFor(BitmapAlpha alpha) {
    const auto mode =
        alpha == BitmapAlpha::Ignore ? D2D1_ALPHA_MODE_IGNORE : D2D1_ALPHA_MODE_PREMULTIPLIED;
    return D2D1::BitmapProperties(D2D1::PixelFormat(DXGI_FORMAT_B8G8R8A8_UNORM, mode));
}

}  // namespace

Direct2DTarget::Direct2DTarget(ID2D1Factory* factory, std::unique_ptr<Surface> surface)
    : factory_(factory), surface_(std::move(surface)), out_(surface_->GetTarget()) {
    const auto round = D2D1::StrokeStyleProperties(D2D1_CAP_STYLE_ROUND, D2D1_CAP_STYLE_ROUND,
                                                   D2D1_CAP_STYLE_ROUND, D2D1_LINE_JOIN_ROUND);
    // Without it arcs end straight.
    factory_->CreateStrokeStyle(&round, nullptr, 0, roundEnds_.GetAddressOf());
    // The finer smoothing needs an opaque ground.
    out_->SetTextAntialiasMode(D2D1_TEXT_ANTIALIAS_MODE_GRAYSCALE);
}

void Direct2DTarget::StartDrawing() {
    out_->BeginDraw();
    out_->SetTransform(D2D1::Matrix3x2F::Identity());
}

void Direct2DTarget::BeginFrame() {
    clips_.clear();
    out_ = surface_->GetTarget();
    StartDrawing();
}

GraphicsResult Direct2DTarget::EndFrame(const Presentation* presentation) {
    const GraphicsResult shown = presentation ? surface_->Present(*presentation) : GraphicsOk;
    const GraphicsResult drawn = ResultOf(out_->EndDraw());
    return drawn == GraphicsOk ? shown : drawn;
}

void Direct2DTarget::Clear(Color color) {
    const D2D1_COLOR_F native = ToNative(color);
    out_->Clear(&native);
}

void Direct2DTarget::FillRectangle(const RectF& rect, Brush& brush) {
    out_->FillRectangle(ToNative(rect), NativeOf(brush).Get());
}

void Direct2DTarget::FillRoundedRectangle(const RectF& rect, float radius, Brush& brush) {
    out_->FillRoundedRectangle({ToNative(rect), radius, radius}, NativeOf(brush).Get());
}

void Direct2DTarget::DrawRectangle(const RectF& rect, Brush& brush, float strokeWidth) {
    out_->DrawRectangle(ToNative(rect), NativeOf(brush).Get(), strokeWidth);
}

void Direct2DTarget::DrawRoundedRectangle(const RectF& rect, float radius, Brush& brush,
                                          float strokeWidth) {
    out_->DrawRoundedRectangle({ToNative(rect), radius, radius}, NativeOf(brush).Get(),
                               strokeWidth);
}

void Direct2DTarget::FillEllipse(PointF center, float radiusX, float radiusY, Brush& brush) {
    out_->FillEllipse({ToNative(center), radiusX, radiusY}, NativeOf(brush).Get());
}

void Direct2DTarget::DrawEllipse(PointF center, float radiusX, float radiusY, Brush& brush,
                                 float strokeWidth) {
    out_->DrawEllipse({ToNative(center), radiusX, radiusY}, NativeOf(brush).Get(), strokeWidth);
}

void Direct2DTarget::DrawLine(PointF from, PointF to, Brush& brush, float strokeWidth) {
    out_->DrawLine(ToNative(from), ToNative(to), NativeOf(brush).Get(), strokeWidth);
}

void Direct2DTarget::DrawArc(const Arc& arc, PointF center, float rotation, Brush& brush,
                             float strokeWidth) {
    using D2D1::Matrix3x2F;
    out_->SetTransform(Matrix3x2F::Rotation(rotation) *
                       Matrix3x2F::Translation(center.x, center.y));
    out_->DrawGeometry(static_cast<const NativeArc&>(arc).geometry.Get(), NativeOf(brush).Get(),
                       strokeWidth, roundEnds_.Get());
    out_->SetTransform(Matrix3x2F::Identity());
}

void Direct2DTarget::DrawBitmap(const Bitmap& bitmap, const RectF& rect, float opacity) {
    out_->DrawBitmap(NativeOf(bitmap), ToNative(rect), opacity,
                     D2D1_BITMAP_INTERPOLATION_MODE_LINEAR);
}

void Direct2DTarget::TileBitmap(const Bitmap& bitmap, const RectF& rect, float opacity) {
    Com<ID2D1BitmapBrush> brush;
    const auto tiling = D2D1::BitmapBrushProperties(D2D1_EXTEND_MODE_WRAP, D2D1_EXTEND_MODE_WRAP);
    const auto placed =
        D2D1::BrushProperties(opacity, D2D1::Matrix3x2F::Translation(rect.left, rect.top));
    // Only a lost target refuses, and says so at the end of the frame.
    if (FAILED(out_->CreateBitmapBrush(NativeOf(bitmap), tiling, placed, brush.GetAddressOf())))
        return;
    out_->FillRectangle(ToNative(rect), brush.Get());
}

void Direct2DTarget::FillOpacityMask(const Bitmap& bitmap, const RectF& rect, Brush& brush) {
    const D2D1_ANTIALIAS_MODE before = out_->GetAntialiasMode();
    out_->SetAntialiasMode(D2D1_ANTIALIAS_MODE_ALIASED);
    const D2D1_RECT_F native = ToNative(rect);
    out_->FillOpacityMask(NativeOf(bitmap), NativeOf(brush).Get(),
                          D2D1_OPACITY_MASK_CONTENT_GRAPHICS, &native, nullptr);
    out_->SetAntialiasMode(before);
}

void Direct2DTarget::DrawTextLayout(PointF origin, const TextLayout& layout, Brush& brush) {
    out_->DrawTextLayout(ToNative(origin), static_cast<const DirectWriteLayout&>(layout).Get(),
                         NativeOf(brush).Get(), D2D1_DRAW_TEXT_OPTIONS_NONE);
}

void Direct2DTarget::PushClip(const RectF& rect) {
    out_->PushAxisAlignedClip(ToNative(rect), D2D1_ANTIALIAS_MODE_PER_PRIMITIVE);
    clips_.emplace_back();
}

Com<ID2D1Layer> Direct2DTarget::PushLayer(const RectF& rect, float radius) {
    Com<ID2D1RoundedRectangleGeometry> geometry;
    Com<ID2D1Layer> layer;
    if (FAILED(factory_->CreateRoundedRectangleGeometry({ToNative(rect), radius, radius},
                                                        geometry.GetAddressOf())) ||
        FAILED(out_->CreateLayer(nullptr, layer.GetAddressOf())))
        return nullptr;
    out_->PushLayer(D2D1::LayerParameters(D2D1::InfiniteRect(), geometry.Get()), layer.Get());
    return layer;
}

void Direct2DTarget::PushRoundedClip(const RectF& rect, float radius) {
    Com<ID2D1Layer> layer = PushLayer(rect, radius);
    if (!layer) return PushClip(rect);
    clips_.push_back(std::move(layer));
}

void Direct2DTarget::PopClip() {
    if (clips_.empty()) return;
    if (clips_.back())
        out_->PopLayer();
    else
        out_->PopAxisAlignedClip();
    clips_.pop_back();
}

Created<Brush> Direct2DTarget::CreateSolidBrush(Color color) {
    Com<ID2D1SolidColorBrush> brush;
    const HRESULT result = out_->CreateSolidColorBrush(ToNative(color), brush.GetAddressOf());
    if (FAILED(result)) return ResultOf(result);
    return std::make_unique<SolidBrush>(std::move(brush), color);
}

Created<GradientBrush> Direct2DTarget::CreateGradientBrush(Color start, Color end) {
    Com<ID2D1GradientStopCollection> stops;
    Com<ID2D1LinearGradientBrush> brush;
    const D2D1_GRADIENT_STOP pair[]{{0.0F, ToNative(start)}, {1.0F, ToNative(end)}};
    HRESULT result = out_->CreateGradientStopCollection(
        pair, 2, D2D1_GAMMA_2_2, D2D1_EXTEND_MODE_CLAMP, stops.GetAddressOf());
    if (FAILED(result)) return ResultOf(result);
    const Paint paint{start, end, {0.0F, 0.0F}, {0.0F, 1.0F}, true};
    result = out_->CreateLinearGradientBrush({ToNative(paint.from), ToNative(paint.to)},
                                             stops.Get(), brush.GetAddressOf());
    if (FAILED(result)) return ResultOf(result);
    return std::make_unique<LinearBrush>(std::move(brush), paint);
}

Created<Bitmap> Direct2DTarget::CreateBitmap(Size size, BitmapAlpha alpha) {
    Com<ID2D1Bitmap> bitmap;
    const auto native =
        D2D1::SizeU(static_cast<UINT32>(size.width), static_cast<UINT32>(size.height));
    const HRESULT result = out_->CreateBitmap(native, PropertiesFor(alpha), bitmap.GetAddressOf());
    if (FAILED(result)) return ResultOf(result);
    return std::make_unique<NativeBitmap>(std::move(bitmap), size);
}

Created<Bitmap> Direct2DTarget::CreateBitmap(const Image& image) {
    Created<Bitmap> made = CreateBitmap(image.size, BitmapAlpha::Premultiplied);
    if (made) made.result = made.object->Write(image.pixels, image.Stride());
    if (made.result != GraphicsOk) return made.result;
    return made;
}

Created<Arc> Direct2DTarget::CreateArc(float radius, float startDegrees, float sweepDegrees) {
    Com<ID2D1PathGeometry> path;
    Com<ID2D1GeometrySink> sink;
    HRESULT result = factory_->CreatePathGeometry(path.GetAddressOf());
    if (SUCCEEDED(result)) result = path->Open(sink.GetAddressOf());
    if (FAILED(result)) return ResultOf(result);
    sink->BeginFigure(ToNative(OnCircle(radius, startDegrees)), D2D1_FIGURE_BEGIN_HOLLOW);
    sink->AddArc({ToNative(OnCircle(radius, startDegrees + sweepDegrees)),
                  {radius, radius},
                  0.0F,
                  D2D1_SWEEP_DIRECTION_CLOCKWISE,
                  sweepDegrees > 180.0F ? D2D1_ARC_SIZE_LARGE : D2D1_ARC_SIZE_SMALL});
    sink->EndFigure(D2D1_FIGURE_END_OPEN);
    result = sink->Close();
    if (FAILED(result)) return ResultOf(result);
    return std::make_unique<NativeArc>(std::move(path), radius, startDegrees, sweepDegrees);
}

}  // namespace Platform::Win32
