#include "install/InstallPlan.h"

#include "tests/unit/TestKit.h"

namespace {

const LPath kDefault("C:\\Programs\\Mervald\\Corvane"), kOwn("C:\\Ada\\Mervald\\Corvane"), kOld("D:\\Old");

MachineFacts Facts(bool mayInstallForEveryone) {
    MachineFacts facts;
    facts.tellsUsersApart = true;
    facts.mayInstallForEveryone = mayInstallForEveryone;
    facts.defaultFolder = kDefault;
    facts.ownFolder = kOwn;
    return facts;
}

}  // namespace

TEST(InstallPlan, InstallsWhereThisUserMay) {
    InstallPlan administrator(Facts(true));
    EXPECT_TRUE(administrator.MayChooseScope());
    EXPECT_EQ(administrator.Chosen().folder, kDefault);
    EXPECT_EQ(administrator.Chosen().dataFolder, kDefault);
    administrator.SetScope(InstallScope::ThisUser);
    EXPECT_EQ(administrator.Chosen().folder, kOwn);
    administrator.SetFolder("D:\\Mine\\");
    EXPECT_EQ(administrator.Chosen().dataFolder, LPath("D:\\Mine"));

    const InstallPlan limited(Facts(false));
    EXPECT_TRUE(limited.IsPossible() && !limited.MayChooseScope());
    EXPECT_EQ(limited.Chosen().folder, kOwn);
    EXPECT_EQ(limited.Scope(), InstallScope::ThisUser);

    MachineFacts nowhere = Facts(false);
    nowhere.ownFolder = LPath();
    EXPECT_FALSE(InstallPlan(nowhere).IsPossible());
    MachineFacts bound = Facts(true);  // by recordings in a folder of his own
    bound.ownData = {kOld, true};
    EXPECT_EQ(InstallPlan(bound).Scope(), InstallScope::ThisUser);
}

TEST(InstallPlan, ReplacesACopyInItsPlace) {
    MachineFacts facts = Facts(true);
    facts.everyonesProgram = kOld;
    const InstallPlan update(facts);
    EXPECT_TRUE(update.IsUpdate() && !update.MayChooseScope() && !update.LeavesEveryonesCopy());
    EXPECT_EQ(update.Chosen().folder, kOld);
    facts.mayInstallForEveryone = false;
    const InstallPlan beside(facts);
    EXPECT_TRUE(!beside.IsUpdate() && beside.LeavesEveryonesCopy());
    facts.ownProgram = kOwn;
    EXPECT_TRUE(InstallPlan(facts).IsUpdate());
}

TEST(InstallPlan, LeavesNobodysDictationsBehind) {
    const LPath machines("E:\\Dictations"), users("F:\\Mine");
    static const struct {
        InstallScope scope;
        MachineFacts::Data everyones, own;
        LPath expected;
    } kCases[] = {
        {InstallScope::Everyone, {machines, true}, {users, true}, machines},
        {InstallScope::Everyone, {machines, false}, {}, kDefault},
        {InstallScope::Everyone, {machines, false}, {users, true}, kDefault},
        {InstallScope::Everyone, {}, {users, false}, kDefault},
        // What is registered for everyone is read first, and never registered for one.
        {InstallScope::ThisUser, {machines, true}, {users, true}, users},
        {InstallScope::ThisUser, {machines, true}, {}, kOwn},
        {InstallScope::ThisUser, {}, {users, true}, users},
        {InstallScope::ThisUser, {}, {}, kOwn},
    };
    for (const auto& c : kCases) {
        MachineFacts facts = Facts(true);
        facts.everyonesData = c.everyones;
        facts.ownData = c.own;
        InstallPlan plan(facts);
        plan.SetScope(c.scope);
        EXPECT_EQ(plan.Chosen().dataFolder, c.expected) << &c - kCases;
    }
}

TEST(InstallPlan, RefusesFoldersThatAreNone) {
    for (const char* good : {"C:\\Corvane", "c:/a b/Corvane\\", "\\\\server\\share\\Corvane"})
        EXPECT_EQ(WhyNotInFolder(good), nullptr) << good;
    for (const char* bad : {"", "Corvane", "C:", "C:\\", "C:Corvane", "\\Corvane", "\\\\server\\share\\",
                            "C:\\a?b", "C:\\a:b", "C:\\\n"})
        EXPECT_NE(WhyNotInFolder(bad), nullptr) << bad;
    EXPECT_NE(WhyNotInFolder("C:\\" + std::string(200, 'a')), nullptr);
}

TEST(InstallTable, QuotesTheProgramAndKeepsToItsHive) {
    Installation installation;
    installation.folder = kDefault;
    installation.dataFolder = kOld;
    installation.scope = InstallScope::ThisUser;
    for (const InstalledValue& value : InstalledValues(installation))
        EXPECT_EQ(value.hive, RegistryHive::User) << value.name;
    installation.hasServices = true;
    EXPECT_EQ(std::get<std::string>(InstalledValues(installation).back().data),
              "\"C:\\Programs\\Mervald\\Corvane\\corvane.exe\" /service");
}
