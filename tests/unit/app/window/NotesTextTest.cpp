#include "app/window/NotesText.h"

#include <gtest/gtest.h>

TEST(NotesText, MergingKeepsWhatEitherVersionAdded) {
    static const char* const kCases[][4] = {
        {"note", "note", "note x", "note x"},
        {"note", "note x", "note", "note x"},
        {"", "theirs", "ours", "ours\r\ntheirs"},
        {"note", "note A", "note B", "note B\r\n A"},
        {"note", "note A\r\n", "note", "note A\r\n"},
        {"note", "note\r\nA", "note B", "note B\r\nA"},
        // One goes on where the other ended.
        {"note", "note on", "note on and on", "note on and on"},
        {"note", "note on and on", "note on", "note on and on"},
        {"note A", "note B\r\n A", "note ABC", "note B\r\n ABC"},
        // At different places.
        {"one two", "zero one two", "one two three", "zero one two three"},
        {"one two", "one two three", "zero one two", "zero one two three"},
        {"one two three", "one three", "one two three four", "one three four"},
        // Of the same passage.
        {"the left arm", "the right arm", "the lame arm", "the lame\r\nright arm"},
        {"the left arm", "the sore left arm", "the right arm", "the sore right arm"},
        {"5 mg daily", "15 mg daily", "50 mg daily", "50\r\n15 mg daily"},
        {"all of it", "", "all of it and more", "all of it and more"},
    };
    for (const auto& [earlier, theirs, ours, merged] : kCases)
        EXPECT_EQ(MergeNotes(earlier, theirs, ours), merged) << theirs;
}

TEST(NotesText, WhatIsLaidOutSlowlyIsBrokenForDisplay) {
    const std::string words = "a line as it is\r\n" + std::string(16000, 'w') + " end";
    EXPECT_TRUE(IsLaidOutQuickly(std::string(9000, 'w')));
    EXPECT_FALSE(IsLaidOutQuickly(words));
    EXPECT_TRUE(IsLaidOutQuickly(BreakLongLines(words)));
    EXPECT_EQ(BreakLongLines("a line as it is\r\n"), "a line as it is\r\n");
    std::string joined = BreakLongLines(words + words);
    std::string all = words + words;
    std::erase_if(joined, [](char c) { return c == '\r' || c == '\n'; });
    std::erase_if(all, [](char c) { return c == '\r' || c == '\n'; });
    EXPECT_EQ(joined, all);
}
