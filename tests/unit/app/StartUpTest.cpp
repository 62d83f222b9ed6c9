#include <gtest/gtest.h>

#include <span>

#include "app/StartUpPlan.h"
#include "base/LMemoryFile.h"

TEST(StartUp, TellsSetupPackagesPackagesAndTheProgramApart) {
    static const struct {
        const char* name;
        uint32_t marker;
        bool wantsRemoval, firstRuns;
        StartUpAction expected;
    } kCases[] = {
        {"corvane", 0, false, false, StartUpAction::Run},
        {"corvane", 0, false, true, StartUpAction::ActivateFirst},
        {"corvane", 0, true, true, StartUpAction::Remove},
        {"corvane", 0x12345678, false, false, StartUpAction::Run},
        {"corvanesetup", 0, true, false, StartUpAction::RefuseCorruptInstaller},
        {"mySetUp2", 0xF0F00F0F, false, true, StartUpAction::RefuseCorruptInstaller},
        {"corvanesetup", 0x0F0FF0F0, true, true, StartUpAction::Install},
        {"corvane", 0x0F0FF0F0, false, false, StartUpAction::Install},
        {"corvane", 0xF0F00F0F, false, true, StartUpAction::Install},
    };
    for (const auto& c : kCases)
        EXPECT_EQ(DecideStartUp(c.name, c.marker, c.wantsRemoval, c.firstRuns), c.expected) << c.name;
    EXPECT_EQ(CloseWaitMs(kMarkerUpdate), 1500u);
    EXPECT_EQ(CloseWaitMs(kMarkerSetup), 2000u);
}

TEST(StartUp, TheMarkerIsTheLastFourBytes) {
    const uint8_t kExe[] = {'M', 'Z', 0, 0, 0xF0, 0xF0, 0x0F, 0x0F};
    LMemoryFile whole{std::span<const uint8_t>(kExe)};
    EXPECT_EQ(ReadInstallMarker(whole), kMarkerSetup);
    LMemoryFile tooShort{std::span<const uint8_t>(kExe).first(3)};
    EXPECT_EQ(ReadInstallMarker(tooShort), 0u);
}

TEST(StartUp, OnlyTheExactFirstArgumentShowsTheIntroduction) {
    const char* const given[] = {"corvane.exe", "/install", "/logon"};
    EXPECT_FALSE(WantsIntroduction(1, given));
    EXPECT_TRUE(WantsIntroduction(2, given));
    const char* const later[] = {"corvane.exe", "/INSTALL", "/install"};
    EXPECT_FALSE(WantsIntroduction(3, later));
}
