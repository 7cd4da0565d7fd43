#pragma once

#include <string>

namespace cuewright {

// A colour of the core: components 0...1 by convention, nothing clamps them.
struct RGBAColor {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    static RGBAColor white() { return {1, 1, 1, 1}; }
    static RGBAColor black() { return {0, 0, 0, 1}; }

    // A copy with alpha replaced (not multiplied).
    RGBAColor opacity(double value) const { return {red, green, blue, value}; }

    friend bool operator==(const RGBAColor&, const RGBAColor&) = default;
};

// The look of all captions of a document.
struct CaptionStyle {
    std::string fontName;
    double fontSize = 0; // points; not scaled with the picture
    RGBAColor textColor;
    RGBAColor backgroundColor;
    bool backgroundEnabled = false;
    bool shadowEnabled = false;
    double bottomMargin = 0; // fraction of the picture's height

    friend bool operator==(const CaptionStyle&, const CaptionStyle&) = default;
};

// The style a new piece of work starts from.
inline CaptionStyle defaultCaptionStyle()
{
    return CaptionStyle{".AppleSystemUIFont", 54.0, RGBAColor::white(), RGBAColor::black().opacity(0.72), true, true, 0.09};
}

} // namespace cuewright
