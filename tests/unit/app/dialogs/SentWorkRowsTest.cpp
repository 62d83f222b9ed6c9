#include "app/dialogs/SentWorkRows.h"

#include <gtest/gtest.h>

static std::string Text(const std::vector<SentWorkRow>& rows) {
    std::string text;
    for (const SentWorkRow& row : rows) text += row.texts[0] + ":" + row.texts[3] + "|";
    return text;
}

static std::vector<SentWorkRow> RowsOf(std::string_view names) {
    std::vector<SentWorkRow> rows;
    for (char name : names) rows.push_back({LPath(std::string_view(&name, 1)), {}});
    return rows;
}

TEST(SentWorkRows, WhatWaitsStandsFirstWithItsPlace) {
    const std::vector<SentDictation> history = {
        {.record = LPath("C:\\S\\00000003.dat"), .name = "C", .status = "Sending"},
        {.record = LPath("C:\\S\\00000002.dat"), .name = "B", .status = "Sent"},
        {.record = LPath("C:\\S\\00000001.dat"), .name = "A", .status = "Sending"},
    };
    SendQueueView queue;
    for (const char* path : {"c:\\s\\00000001.WAV", "C:\\T\\00000009.wav", "C:\\S\\00000003.wav"})
        queue.entries.push_back({LPath(path), LPath(), path[3] == 'T' ? 5u : 7u, true});
    queue.inWork = queue.entries[0].dictation;
    queue.fraction = 0.449;
    EXPECT_EQ(Text(SentWorkRows(history, queue, 7)),
              "A:Sending, 45 %|00000009:Waiting, place 2 (another user's)|C:Waiting, place 3|B:Sent|");
}

TEST(SentWorkRows, OnlyRowsThatDifferAreChanged) {
    static const std::tuple<const char*, const char*, size_t, size_t, size_t> kCases[] = {
        {"", "abc", 0, 0, 3}, {"abc", "xabc", 0, 0, 1}, {"abcde", "acbde", 1, 2, 2}, {"aa", "aaa", 2, 0, 1}};
    for (const auto& [before, after, first, removed, inserted] : kCases) {
        const RowChange change = FindRowChange(RowsOf(before), RowsOf(after));
        EXPECT_TRUE(change.first == first && change.removed == removed && change.inserted == inserted)
            << before << " " << after;
    }
}
