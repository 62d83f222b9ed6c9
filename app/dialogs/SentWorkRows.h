#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "base/LPath.h"
#include "send/BGSend.h"
#include "store/SentHistory.h"

// A row of the list of sent work. The texts are name, time of sending, recipient and status.
struct SentWorkRow {
    LPath record;
    std::array<std::string, 4> texts;
};

// First what waits in the queue, in the order of sending, with its place or how far it is; then the other
// dictations of the history, in its order. user: the number of the history's user; of the entries of others,
// and of those that are not in the history, only the number is shown: their files are not opened.
std::vector<SentWorkRow> SentWorkRows(const std::vector<SentDictation>& history, const SendQueueView& queue,
                                      uint32_t user);

// The line below the list.
std::string SentWorkSummary(size_t waiting, bool isQueueRead);

// What has to be done to the rows of one list to make them those of another: some rows in a row (by their
// records) are removed, and others are inserted in their place. The texts of the rest may differ.
struct RowChange {
    size_t first = 0;
    size_t removed = 0;
    size_t inserted = 0;
};
RowChange FindRowChange(const std::vector<SentWorkRow>& before, const std::vector<SentWorkRow>& after);
