#include "app/window/NotSentText.h"

#include "tests/unit/TestKit.h"

TEST(NotSentText, NamesEachReasonOnceWithItsDictationsAndCountsAll) {
    std::vector<NotSent> left = {{"A", "Why."}, {"B", "So."}, {"C", "Why."}};
    std::string text = NotSentText(left, 4);
    EXPECT_NE(text.find(": 7\n"), std::string::npos) << text;
    EXPECT_NE(text.find("A, C:\nWhy.\n\nB:\nSo."), std::string::npos) << text;
    for (int i = 0; i < 1000; ++i) left.push_back({std::string(1000, 'x'), "Why."});
    EXPECT_LT(NotSentText(left, 0).size(), 2000u);
}
