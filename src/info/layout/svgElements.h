// SPDX-License-Identifier: Apache-2.0
// Writing the elements of a drawing.
#pragma once

#include <ostream>
#include <string>
#include <string_view>

namespace Zorvane {

/// Text for an element or an attribute. It must be shown() before: XML has no place for some characters.
std::string escaped(std::string_view text);

/// How wide a text is, at most, in the fonts that a viewer may have.
double widthOf(std::string_view text, double fontSize, bool isBold = false);
/// The text, with an ellipsis if it is wider; empty if there is no room for a letter and that.
std::string cut(std::string_view text, double width, double fontSize, bool isBold = false);

struct SvgBox {
    double x, y, width, height;
};

/// Collects elements; the drawing's height is only known at its end.
class SvgElements {
  public:
    void text(double x, double y, double fontSize, const std::string& text, const char* attributes = "");
    /// A rectangle, with a text that a viewer shows at the pointer.
    void box(const SvgBox& at, const char* fill, const char* line, const std::string& attributes = {},
             const std::string& hint = {});
    void write(std::ostream& out, double width, double height, const std::string& title) const;

  private:
    std::string m_elements;
};

} // namespace Zorvane
