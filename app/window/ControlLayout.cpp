#include "app/window/ControlLayout.h"

#include "res/Ids.h"

namespace {

constexpr int kMargin = 4;  // in dialog units, like all numbers below
constexpr int kGap = 2;
constexpr int kTransportHeight = 18;
constexpr int kLineHeight = 8;
constexpr int kTitleHeight = 10;    // a line of the larger font, with its descenders
constexpr int kPositionWidth = 80;  // four hours of four: "239:57 / 240:00" in the larger font
constexpr int kMetersWidth = 56;
constexpr int kBarWidth = 44;          // of sending
constexpr int kLeastNotesHeight = 20;  // two lines

// Collects places given in dialog units and converts them to pixels. Edges are converted, not sizes, so that
// controls with a common edge in units have it in pixels too.
class Placer {
public:
    Placer(std::span<ControlPlace, kControlCount> places, DialogUnits units)
        : m_places(places), m_units(units) {}

    void Put(int control, int x, int y, int width, int height) {
        const int left = PixelsX(x);
        const int top = PixelsY(y);
        m_places[m_next++] = {control, left, top, PixelsX(x + width) - left, PixelsY(y + height) - top};
    }
    void Hide(int control) { m_places[m_next++] = {control, 0, 0, 0, 0}; }

private:
    int PixelsX(int units) const { return units * m_units.x4 / 4; }
    int PixelsY(int units) const { return units * m_units.y8 / 8; }

    std::span<ControlPlace, kControlCount> m_places;
    DialogUnits m_units;
    size_t m_next = 0;
};

struct TransportButton {
    int control;
    int width;
};
constexpr TransportButton kTransport[] = {
    {IDC_RECORD, 34}, {IDC_STOP, 22},        {IDC_PLAY, 22},    {IDC_GOTOSTART, 18},
    {IDC_REWIND, 18}, {IDC_FASTFORWARD, 18}, {IDC_GOTOEND, 18},
};

int PutTransport(Placer& placer) {
    int x = kMargin;
    for (const TransportButton& button : kTransport) {
        placer.Put(button.control, x, kMargin, button.width, kTransportHeight);
        x += button.width + kGap;
    }
    return x;
}

void PutMeters(Placer& placer, int x, int y, int width) {
    placer.Put(IDC_LEVEL_LEFT, x, y, width, 4);
    placer.Put(IDC_LEVEL_RIGHT, x, y + 5, width, 4);
}

void PutTitle(Placer& placer, int y, int width) {
    placer.Put(IDC_DICTATIONNAME, kMargin, y, width - kPositionWidth - kGap, kTitleHeight);
    placer.Put(IDC_POSITION, kMargin + width - kPositionWidth, y, kPositionWidth, kTitleHeight);
}

void LayoutCompact(Placer& placer, int width) {
    const int inner = width - 2 * kMargin;
    int y = kMargin + kTransportHeight + 4;
    PutTransport(placer);
    placer.Put(IDC_NEW, kMargin, y, 30, 13);
    placer.Put(IDC_SEND, kMargin + 32, y, 30, 13);
    placer.Put(IDC_DOCK, kMargin + 64, y, 30, 13);
    PutMeters(placer, kMargin + 100, y + 2, inner - 100);
    y += 17;
    PutTitle(placer, y, inner);
    y += 12;
    placer.Put(IDC_LOGGEDON, kMargin, y, inner, kLineHeight);
    placer.Put(IDC_SENDPROGRESS, kMargin + inner - kBarWidth, y, kBarWidth, kLineHeight);
    for (int control : {IDC_LIST, IDC_NOTES, IDC_INFOLINE, IDC_INFOLINK, IDC_SENDLABEL}) placer.Hide(control);
}

void LayoutFull(Placer& placer, int width, int height) {
    const int inner = width - 2 * kMargin;
    const int afterTransport = PutTransport(placer) + kGap;
    // The three buttons share the rest of the transport's row, up to 150 units together.
    const int room = std::min(kMargin + inner - afterTransport, 150) - 2 * kGap;
    const int button = std::max(room / 3, 28);
    placer.Put(IDC_NEW, afterTransport, kMargin, button, kTransportHeight);
    placer.Put(IDC_SEND, afterTransport + button + kGap, kMargin, button, kTransportHeight);
    placer.Put(IDC_DOCK, afterTransport + 2 * (button + kGap), kMargin, button, kTransportHeight);

    int y = kMargin + kTransportHeight + 2;
    PutTitle(placer, y, inner - kMetersWidth - 4);
    PutMeters(placer, kMargin + inner - kMetersWidth, y, kMetersWidth);
    y += kTitleHeight + 1;

    const int infoY = height - 1 - kLineHeight;
    const int sendY = infoY - kLineHeight - 1;
    const int notesHeight = std::max(kLeastNotesHeight, (sendY - y) / 4);
    const int notesY = sendY - kGap - notesHeight;
    placer.Put(IDC_LIST, kMargin, y, inner, notesY - kGap - y);
    placer.Put(IDC_NOTES, kMargin, notesY, inner, notesHeight);
    const int sendWidth = inner * 3 / 5 - kBarWidth - kGap;
    placer.Put(IDC_LOGGEDON, kMargin, sendY, inner, kLineHeight);
    placer.Put(IDC_SENDLABEL, kMargin + inner - kBarWidth - kGap - sendWidth, sendY, sendWidth, kLineHeight);
    placer.Put(IDC_SENDPROGRESS, kMargin + inner - kBarWidth, sendY, kBarWidth, kLineHeight);
    placer.Put(IDC_INFOLINE, kMargin, infoY, inner - 32, kLineHeight);
    placer.Put(IDC_INFOLINK, kMargin + inner - 28, infoY, 28, kLineHeight);
}

}  // namespace

void LayoutControls(ViewMode view, ScreenSize client, DialogUnits units,
                    std::span<ControlPlace, kControlCount> places) {
    Placer placer(places, units);
    const int width = client.width * 4 / units.x4;
    const int height = client.height * 8 / units.y8;
    if (view == ViewMode::Compact)
        LayoutCompact(placer, width);
    else
        LayoutFull(placer, width, height);
}
