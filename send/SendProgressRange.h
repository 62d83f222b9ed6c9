#pragma once

#include <cstdint>

// The share of the send progress bar that the item at the head of the queue has. A queue of three entries
// shows the first over 0 to 1/3, the second over 1/3 to 2/3 and the third over 2/3 to 1; entries added
// meanwhile make the shares smaller only when the queue becomes longer than it ever was since it was empty.
// Units:  fractions, 0 to 1.
// Thread: one at a time.
class SendProgressRange {
public:
    // entries: how many the queue holds now; 0 or less begins anew.
    void SetCount(int32_t entries);

    // Where the bar stands when the item itself has got as far as itemFraction.
    double OfItem(double itemFraction) const { return itemFraction * m_scale + m_start; }

    // Whether the bar has moved far enough since the last accepted value to be worth a message (0.04 either
    // way).
    bool Accept(double value);
    double LastAccepted() const { return m_lastAccepted; }

private:
    double m_scale = 1.0;
    double m_start = 0.0;
    double m_lastAccepted = 0.0;
};
