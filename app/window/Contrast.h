#pragma once

#include <cstdint>

// Choice of colours that can be told apart in every colour scheme, also in those of high contrast.
// Units:  colours as the platform has them, 0x00BBGGRR.
using Colour = uint32_t;

// Brightness as the eye weighs it, 0 to 255.
constexpr int Brightness(Colour colour) {
    const auto part = [colour](int shift) { return static_cast<int>(colour >> shift & 0xFF); };
    return (part(0) * 299 + part(8) * 587 + part(16) * 114) / 1000;
}

constexpr int BrightnessGap(Colour a, Colour b) {
    const int gap = Brightness(a) - Brightness(b);
    return gap < 0 ? -gap : gap;
}

// percent of one colour, the rest of the other.
constexpr Colour Mix(Colour a, Colour b, int percent) {
    const auto part = [=](int shift) {
        const int mixed = (static_cast<int>(a >> shift & 0xFF) * percent +
                           static_cast<int>(b >> shift & 0xFF) * (100 - percent)) /
                          100;
        return static_cast<Colour>(mixed) << shift;
    };
    return part(0) | part(8) | part(16);
}

// The wanted colour of a symbol where it stands out from its background, else the scheme's own for texts.
constexpr int kLeastSymbolGap = 60;
constexpr Colour Readable(Colour wanted, Colour background, Colour text) {
    return BrightnessGap(wanted, background) >= kLeastSymbolGap ? wanted : text;
}

// The colours of a scheme for lists.
struct ListColours {
    Colour window;
    Colour text;
    Colour selected;
    Colour selectedText;
};
struct RowColours {
    Colour background;
    Colour text;
    bool operator==(const RowColours&) const = default;
};

// The colours of a selected row while the list does not have the focus: between those of other rows and those
// with the focus. Where they would be too near to the window, or the text too near to them, those with the
// focus; the dotted frame tells the difference then.
constexpr int kUnfocusedPercent = 40;
constexpr int kLeastRowGap = 25;
constexpr int kLeastTextGap = 100;
constexpr RowColours UnfocusedSelection(const ListColours& scheme) {
    const Colour between = Mix(scheme.selected, scheme.window, kUnfocusedPercent);
    const Colour text = BrightnessGap(scheme.text, between) >= BrightnessGap(scheme.selectedText, between)
                            ? scheme.text
                            : scheme.selectedText;
    const bool isTold = BrightnessGap(between, scheme.window) >= kLeastRowGap &&
                        BrightnessGap(text, between) >= kLeastTextGap;
    return isTold ? RowColours{between, text} : RowColours{scheme.selected, scheme.selectedText};
}
