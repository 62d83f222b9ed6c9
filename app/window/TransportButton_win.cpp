#include "app/window/TransportButton_win.h"

#include <span>

#include "res/Ids.h"
#include "ui/LWin.h"

namespace {

// Symbols are drawn on a square of 16 by 16 units and scaled to the button. Vector shapes in place of bitmaps
// fit every font size.
constexpr int kUnits = 16;

struct Shape {
    enum class Kind { Polygon, Circle, Square } kind;
    POINT points[4];
    int count;
};

constexpr Shape Bar(LONG left) {
    return {Shape::Kind::Polygon, {{left, 2}, {left + 2, 2}, {left + 2, 14}, {left, 14}}, 4};
}
constexpr Shape Right(LONG left, LONG right) {
    return {Shape::Kind::Polygon, {{left, 2}, {right, 8}, {left, 14}}, 3};
}
constexpr Shape Left(LONG left, LONG right) {
    return {Shape::Kind::Polygon, {{right, 2}, {right, 14}, {left, 8}}, 3};
}
constexpr Shape kCircle = {Shape::Kind::Circle, {{2, 2}, {14, 14}}, 2};
constexpr Shape kSquare = {Shape::Kind::Square, {{3, 3}, {13, 13}}, 2};

struct Sign {
    int control;
    COLORREF colour;
    Shape shapes[3];
    int count;
};
constexpr COLORREF kRed = RGB(208, 0, 0);
constexpr COLORREF kBlack = RGB(32, 32, 32);
constexpr COLORREF kGreen = RGB(0, 120, 40);
// A dot between two bars: a recording between existing passages.
constexpr Shape kSmallCircle = {Shape::Kind::Circle, {{5, 5}, {11, 11}}, 2};
constexpr Sign kInsertSign = {IDC_RECORD, kRed, {Bar(1), kSmallCircle, Bar(13)}, 3};
constexpr Sign kSigns[] = {
    {IDC_RECORD, kRed, {kCircle}, 1},
    {IDC_STOP, kBlack, {kSquare}, 1},
    {IDC_PLAY, kGreen, {Right(3, 14)}, 1},
    {IDC_GOTOSTART, kBlack, {Bar(2), Left(5, 14)}, 2},
    {IDC_REWIND, kBlack, {Left(1, 8), Left(8, 15)}, 2},
    {IDC_FASTFORWARD, kBlack, {Right(1, 8), Right(8, 15)}, 2},
    {IDC_GOTOEND, kBlack, {Right(2, 11), Bar(12)}, 2},
};

// Maps units of a symbol to pixels, in a square of 60 % of the button's shorter side. shift moves the symbol
// of a pressed button, in pixels.
class Scale {
public:
    Scale(const RECT& box, int shift) {
        const int width = box.right - box.left;
        const int height = box.bottom - box.top;
        m_side = (width < height ? width : height) * 6 / 10;
        m_left = box.left + (width - m_side) / 2 + shift;
        m_top = box.top + (height - m_side) / 2 + shift;
    }
    POINT Map(POINT p) const { return {m_left + p.x * m_side / kUnits, m_top + p.y * m_side / kUnits}; }

private:
    LONG m_side;
    LONG m_left;
    LONG m_top;
};

void DrawShape(HDC dc, const Shape& shape, const Scale& scale) {
    POINT points[4];
    for (int i = 0; i < shape.count; ++i) points[i] = scale.Map(shape.points[i]);
    switch (shape.kind) {
        case Shape::Kind::Polygon:
            Polygon(dc, points, shape.count);
            break;
        case Shape::Kind::Circle:
            Ellipse(dc, points[0].x, points[0].y, points[1].x, points[1].y);
            break;
        case Shape::Kind::Square:
            Rectangle(dc, points[0].x, points[0].y, points[1].x, points[1].y);
            break;
    }
}

void DrawSign(HDC dc, const Sign& sign, const Scale& scale, COLORREF colour) {
    const LBrush brush(CreateSolidBrush(colour));
    const LPen pen(CreatePen(PS_SOLID, 1, colour));
    const HGDIOBJ oldBrush = SelectObject(dc, brush.Get());
    const HGDIOBJ oldPen = SelectObject(dc, pen.Get());
    for (const Shape& shape : std::span(sign.shapes).first(static_cast<size_t>(sign.count)))
        DrawShape(dc, shape, scale);
    SelectObject(dc, oldPen);
    SelectObject(dc, oldBrush);
}

COLORREF FaceOf(UINT control) {
    for (const Sign& sign : kSigns)
        if (sign.control == static_cast<int>(control)) return sign.colour;
    return kBlack;
}

}  // namespace

void DrawTransportButton(const DRAWITEMSTRUCT& item, bool isHeld, bool isInsert) {
    const bool isPressed = isHeld || (item.itemState & ODS_SELECTED) != 0;
    const bool isDisabled = (item.itemState & ODS_DISABLED) != 0;
    RECT box = item.rcItem;
    // A held button is filled with its colour, and only recording is red, so that one glance tells the state.
    const LBrush face(CreateSolidBrush(isHeld ? FaceOf(item.CtlID) : GetSysColor(COLOR_BTNFACE)));
    FillRect(item.hDC, &box, face.Get());
    DrawEdge(item.hDC, &box, isPressed ? EDGE_SUNKEN : EDGE_RAISED, BF_RECT);
    for (const Sign& sign : kSigns) {
        if (sign.control != static_cast<int>(item.CtlID)) continue;
        const COLORREF normal = isHeld ? RGB(255, 255, 255) : sign.colour;
        DrawSign(item.hDC, isInsert ? kInsertSign : sign, Scale(box, isPressed ? 1 : 0),
                 isDisabled ? GetSysColor(COLOR_GRAYTEXT) : normal);
    }
    if ((item.itemState & ODS_FOCUS) != 0) {
        InflateRect(&box, -3, -3);
        DrawFocusRect(item.hDC, &box);
    }
}
