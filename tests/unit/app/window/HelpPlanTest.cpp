#include "app/window/HelpPlan.h"

#include "app/window/NewPress.h"

#include "tests/unit/TestKit.h"

// A platform that has some files, and can show some.
class StandInViewer final : public HelpViewer {
public:
    std::string there, shows, shown;

    bool IsThere(const LPath& file) override { return there.find(NameOf(file)) != std::string::npos; }
    bool ShowHelpFile(const LPath& file) override { return ShowPage(file); }
    bool ShowPage(const LPath& file) override {
        if (shows.find(NameOf(file)) == std::string::npos) return false;
        shown += NameOf(file);
        return true;
    }

private:
    static std::string NameOf(const LPath& file) { return std::string(LFileNameOf(file.View())); }
};

TEST(HelpPlan, ShowsTheHelpFileWhereThatWorksElseTheManualElseSaysWhere) {
    static const struct {
        const char *there, *shows, *shown;
        HelpResult result;
    } kCases[] = {
        {"corvane.hlp corvane.htm", "corvane.hlp corvane.htm", "corvane.hlp", HelpResult::Shown},
        {"corvane.hlp corvane.htm", "corvane.htm", "corvane.htm", HelpResult::Shown},
        {"corvane.htm", "corvane.hlp corvane.htm", "corvane.htm", HelpResult::Shown},
        {"corvane.hlp", "", "", HelpResult::Missing},
        {"corvane.htm", "", "", HelpResult::NoViewer},
    };
    for (const auto& c : kCases) {
        StandInViewer viewer;
        viewer.there = c.there;
        viewer.shows = c.shows;
        EXPECT_EQ(ShowHelp(LPath("C:\\Corvane\\"), viewer), c.result) << c.there;
        EXPECT_EQ(viewer.shown, c.shown) << c.there;
    }
    EXPECT_NE(HelpText(HelpResult::Missing, LPath("C:\\Corvane\\")).find("\n\nC:\\Corvane\\corvane.htm\n"),
              std::string::npos);
    EXPECT_NE(HelpText(HelpResult::Missing, LPath(std::string(250, 'x'))).find("\n\ncorvane.htm\n"),
              std::string::npos);
}

TEST(HelpPlan, AKeyThatIsHeldAsksOnce) {
    NewPress key;
    for (const auto& [at, isNew] : std::initializer_list<std::pair<uint32_t, bool>>{
             {0xFFFFFF00u, true}, {0x000001F0u, false}, {0x00000210u, false}, {0x00000A00u, true}})
        EXPECT_EQ(key.IsNew(at, 1500), isNew) << at;
}
