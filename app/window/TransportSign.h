#pragma once

#include <cstdint>
#include <vector>

// The symbols of the transport buttons.
enum class TransportSign {
    Record,
    RecordInsert,
    RecordEnd,
    Stop,
    Play,
    GoToStart,
    Rewind,
    FastForward,
    GoToEnd
};

// Draws a symbol on a square of so many pixels: how much of each pixel it covers, 0 to 255, row by row. Edges
// come out smooth at every size.
std::vector<uint8_t> DrawSign(TransportSign sign, int side);
