#pragma once

#include <cstdint>

// The part of the send progress bar that belongs to the item at the head of the queue. A queue of three
// entries shows the first over 0 to 1/3, the second over 1/3 to 2/3 and the third over 2/3 to 1. Entries that
// are added meanwhile make the parts smaller only when the queue becomes longer than at any time since it was
// last empty.
// Units:  fractions, 0 to 1.
// Thread: one at a time.
class SendProgressRange {
public:
    // entries: the number in the queue now; 0 or less starts a new bar.
    void SetCount(int32_t entries);

    // Position of the bar for a progress of the item.
    double OfItem(double itemFraction) const { return itemFraction * m_scale + m_start; }

    // Whether the bar has moved far enough since the last accepted value to be worth a message (0.04 either
    // way, 25 messages for the whole bar).
    bool Accept(double value);
    double LastAccepted() const { return m_lastAccepted; }

private:
    double m_scale = 1.0;
    double m_start = 0.0;
    double m_lastAccepted = 0.0;
};
