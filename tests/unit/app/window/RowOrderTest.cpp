#include "app/window/RowOrder.h"

#include <gtest/gtest.h>

#include "app/window/DictationRow.h"

TEST(RowOrder, FindsEveryRowAfterOthersWentAndCameBackAtTheEnd) {
    RowOrder rows;
    const auto record = [](int32_t number) {
        return DictationFiles::OfNumber(LPath("C:\\Current\\"), number).record;
    };
    for (int32_t number : {5, 0, 9, 7}) rows.Append(number, record(number));
    rows.Remove(1);
    rows.Remove(0);
    rows.Append(5, record(5));
    const std::vector<int32_t> expected = {9, 7, 5};
    ASSERT_EQ(rows.Count(), 3);
    for (int index = 0; index < 3; ++index) {
        const int32_t number = expected[static_cast<size_t>(index)];
        EXPECT_EQ(rows.NumberAt(index), number);
        EXPECT_EQ(rows.IndexOf(number), index);
        EXPECT_EQ(rows.IndexOf(rows.RecordAt(index)), index);
    }
    EXPECT_EQ(rows.IndexOf(0), -1);
    EXPECT_EQ(rows.IndexOf(LPath("c:\\CURRENT\\00000009.DAT")), 0);
    EXPECT_FALSE(rows.Holds(3) || rows.Holds(-1));
}

TEST(DictationRow, ANameIsChangedOnlyByAnotherText) {
    static const struct {
        const char* typed;
        const char* stored;  // null: nothing is touched
    } kCases[] = {{"Case 2", "Case 2"},  {" Case 2\t", "Case 2"}, {"case 1", "case 1"}, {"Case 1", nullptr},
                  {" Case 1 ", nullptr}, {"", nullptr},           {" \r\n", nullptr}};
    for (const auto& c : kCases) {
        const std::optional<std::string> name = ChangedName("Case 1", c.typed);
        EXPECT_EQ(name.has_value(), c.stored != nullptr) << c.typed;
        if (name && c.stored) {
            EXPECT_EQ(*name, c.stored);
        }
    }
}
