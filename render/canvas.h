// A drawing surface in memory that ends as a PNG. The only file that knows the drawing library.
#ifndef TAVMAP_RENDER_CANVAS_H
#define TAVMAP_RENDER_CANVAS_H

#include <memory>
#include <string>

#include "render/colour_scale.h"

namespace render {

struct Pen {
  Rgb colour;
  double width;  // pixels
};

// Pixel coordinates, origin at the top left.
class Canvas {
 public:
  Canvas(int width, int height);  // black; throws std::runtime_error when it cannot be made
  ~Canvas();
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  void fillRectangle(double x, double y, double width, double height, Rgb colour);
  void line(double x1, double y1, double x2, double y2, const Pen& pen);
  void text(double x, double y, double size, const std::string& utf8);         // white, on baseline y
  void textUpwards(double x, double y, double size, const std::string& utf8);  // the same, turned to the left
  [[nodiscard]] double textWidth(double size, const std::string& utf8);
  [[nodiscard]] std::string png();

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace render

#endif
