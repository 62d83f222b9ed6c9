#include "app/transport/CurrentDictation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

static DictationFiles Files(int32_t number) {
    return DictationFiles::OfNumber(LPath("C:\\d\\"), number);
}

// A list with some rows selected, in their order, and the focus on one, selected or not (0: none).
struct Rows final : DictationSelection {
    std::vector<int32_t> selected;
    int32_t focus = 0;

    Rows(std::vector<int32_t> numbers, int32_t focused) : selected(std::move(numbers)), focus(focused) {}
    std::optional<DictationFiles> Focused() const override {
        return std::ranges::count(selected, focus) != 0 ? std::optional(Files(focus)) : std::nullopt;
    }
    std::optional<DictationFiles> First() const override {
        return selected.empty() ? std::nullopt : std::optional(Files(selected.front()));
    }
    bool IsSelected(const DictationFiles& files) const override {
        return std::ranges::any_of(selected, [&](int32_t n) { return Files(n).record == files.record; });
    }
};

TEST(CurrentDictation, StaysTheOneAtWorkUntilTheFocusOrTheSelectionLeavesIt) {
    CurrentDictation current;
    static const std::tuple<const char*, std::vector<int32_t>, int32_t, int32_t> kSteps[] = {
        {"one row", {1}, 1, 1},
        {"a second one is added", {1, 2}, 2, 2},
        {"the focus goes to a row that is not selected", {1, 2}, 3, 2},
        {"the rows change their order", {2, 1}, 3, 2},
        {"the current one is no longer selected", {1}, 3, 1},
        {"nothing is selected", {}, 3, 0},
        {"rows without a focus", {3, 2}, 0, 3},
    };
    for (const auto& [what, selected, focus, number] : kSteps) {
        current.Set(current.Choose(Rows(selected, focus)));
        EXPECT_TRUE(current.Is(number ? std::optional(Files(number)) : std::nullopt)) << what;
    }
}
