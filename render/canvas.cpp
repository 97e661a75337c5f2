#include "render/canvas.h"

#include <cairo.h>
#include <fmt/core.h>

#include <cstring>
#include <numbers>
#include <stdexcept>

#include "render/png_surface.h"

namespace render {
namespace {

cairo_status_t append(void* text, const unsigned char* data, unsigned int length) {
  static_cast<std::string*>(text)->append(reinterpret_cast<const char*>(data), length);
  return CAIRO_STATUS_SUCCESS;
}

std::string pngOfSurface(cairo_surface_t* surface) {
  std::string bytes;
  const cairo_status_t status = cairo_surface_write_to_png_stream(surface, append, &bytes);
  if (status != CAIRO_STATUS_SUCCESS) {
    throw std::runtime_error(std::string("cannot write the picture: ") + cairo_status_to_string(status));
  }
  return bytes;
}

struct SurfaceEnd {
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};

}  // namespace

struct Canvas::Impl {
  cairo_surface_t* surface;
  cairo_t* context;
};

Canvas::Canvas(int width, int height) : impl_(std::make_unique<Impl>()) {
  impl_->surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
  impl_->context = cairo_create(impl_->surface);
  if (cairo_status(impl_->context) != CAIRO_STATUS_SUCCESS) {
    const std::string reason = cairo_status_to_string(cairo_status(impl_->context));
    cairo_destroy(impl_->context);
    cairo_surface_destroy(impl_->surface);
    throw std::runtime_error(
        fmt::format("cannot draw a picture of {} x {} pixels: {}", width, height, reason));
  }
  // Voxels share edges; without this they would show seams.
  cairo_set_antialias(impl_->context, CAIRO_ANTIALIAS_NONE);
  cairo_select_font_face(impl_->context, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
}

Canvas::~Canvas() {
  cairo_destroy(impl_->context);
  cairo_surface_destroy(impl_->surface);
}

void Canvas::fillRectangle(double x, double y, double width, double height, Rgb colour) {
  cairo_set_source_rgb(impl_->context, colour.red, colour.green, colour.blue);
  cairo_rectangle(impl_->context, x, y, width, height);
  cairo_fill(impl_->context);
}

void Canvas::line(double x1, double y1, double x2, double y2, const Pen& pen) {
  cairo_set_source_rgb(impl_->context, pen.colour.red, pen.colour.green, pen.colour.blue);
  cairo_set_line_width(impl_->context, pen.width);
  cairo_move_to(impl_->context, x1, y1);
  cairo_line_to(impl_->context, x2, y2);
  cairo_stroke(impl_->context);
}

void Canvas::text(double x, double y, double size, const std::string& utf8) {
  cairo_set_source_rgb(impl_->context, 1, 1, 1);
  cairo_set_font_size(impl_->context, size);
  cairo_move_to(impl_->context, x, y);
  cairo_show_text(impl_->context, utf8.c_str());
}

void Canvas::textUpwards(double x, double y, double size, const std::string& utf8) {
  cairo_save(impl_->context);
  cairo_translate(impl_->context, x, y);
  cairo_rotate(impl_->context, -std::numbers::pi / 2);
  text(0, 0, size, utf8);
  cairo_restore(impl_->context);
}

double Canvas::textWidth(double size, const std::string& utf8) {
  cairo_text_extents_t extents;
  cairo_set_font_size(impl_->context, size);
  cairo_text_extents(impl_->context, utf8.c_str(), &extents);
  return extents.x_advance;
}

std::string Canvas::png() {
  return pngOfSurface(impl_->surface);
}

std::string pngOfWords(int width, int height, const std::vector<std::uint32_t>& words) {
  const std::unique_ptr<cairo_surface_t, SurfaceEnd> surface(
      cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height));
  if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS)
    throw std::runtime_error(fmt::format("cannot make a picture of {} x {} pixels", width, height));
  cairo_surface_flush(surface.get());
  unsigned char* rows = cairo_image_surface_get_data(surface.get());
  const int stride = cairo_image_surface_get_stride(surface.get());
  const std::size_t rowWords = static_cast<std::size_t>(width);
  for (int y = 0; y < height; ++y)
    std::memcpy(rows + static_cast<std::ptrdiff_t>(y) * stride,
                &words[static_cast<std::size_t>(y) * rowWords], 4 * rowWords);
  cairo_surface_mark_dirty(surface.get());
  return pngOfSurface(surface.get());
}

}  // namespace render
