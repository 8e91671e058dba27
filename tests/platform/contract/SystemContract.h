// SystemContract.h: what every system back-end does as kernel32, user32 and the profile
// calls do. The maker gives system(), a files() with a scratch folder(), pause(ms), mutexName(stem)
// (a name of this run only), executable() and usLocale().
#pragma once

#include <string>

#include "platform/System.h"
#include "platform/contract/FilesContract.h"
#include "platform/contract/ProcessesContract.h"

namespace orvex::testing {

template <class Maker>
class SystemContract : public ContractTest<Maker> {
  protected:
    platform::System& sys = this->maker.system();
};

TYPED_TEST_SUITE_P(SystemContract);

TYPED_TEST_P(SystemContract, ANamedMutexIsOwnedOnceAndSeenUntilItsLastHandleCloses) {
    auto& sys = this->sys;
    const std::string name = this->maker.mutexName("OrvexContract");
    EXPECT_EQ(sys.openMutex(name), 0u);
    const auto first = sys.createMutex(name, true);
    const auto second = sys.createMutex(name, true);  // the ownership asked for is ignored
    ASSERT_TRUE(first.handle != 0 && second.handle != 0);
    EXPECT_FALSE(first.alreadyExisted);
    EXPECT_TRUE(second.alreadyExisted);
    EXPECT_TRUE(sys.releaseMutex(first.handle));
    for (auto handle : {first.handle, second.handle, platform::MutexHandle{0}})
        EXPECT_FALSE(sys.releaseMutex(handle)) << handle;
    const auto stillThere = sys.openMutex(name);  // released, but handles are still open
    EXPECT_NE(stillThere, 0u);
    for (auto handle : {stillThere, second.handle, first.handle})
        sys.closeHandle(handle);
    EXPECT_EQ(sys.openMutex(name), 0u);
}

TYPED_TEST_P(SystemContract, MutexNamesAreCaseSensitive) {
    auto& sys = this->sys;
    const std::string name = this->maker.mutexName("OrvexCase");
    const auto mixed = sys.createMutex(name, true);
    const auto other = sys.createMutex(Lower(name), false);
    EXPECT_FALSE(other.alreadyExisted);
    for (auto handle : {mixed.handle, other.handle})
        sys.closeHandle(handle);
}

TYPED_TEST_P(SystemContract, DatesAndTimesInTheUsFormsAndNothingForImpossibleDays) {
    auto& sys = this->sys;
    const auto now = sys.now();
    EXPECT_TRUE(now.year >= 2020 && now.month >= 1 && now.month <= 12 && now.day >= 1);
    EXPECT_EQ(sys.shortDateText({2026, 13, 1, 0, 0, 0}), "");
    EXPECT_EQ(sys.longTimeText({2026, 2, 30, 0, 0, 0}), "");
    if (!this->maker.usLocale()) GTEST_SKIP() << "the exact texts are those of an en-US user";
    const std::pair<platform::LocalTime, std::string> cases[] = {
        {{2026, 11, 22, 19, 14, 5}, "11/22/2026 7:14:05 PM"},
        {{2027, 1, 5, 0, 3, 9}, "1/5/2027 12:03:09 AM"},
        {{2027, 1, 5, 12, 0, 0}, "1/5/2027 12:00:00 PM"},
        {{1899, 12, 30, 11, 59, 59}, "12/30/1899 11:59:59 AM"},
    };
    for (const auto& [moment, text] : cases)
        EXPECT_EQ(sys.shortDateText(moment) + " " + sys.longTimeText(moment), text);
}

TYPED_TEST_P(SystemContract, IdentityFoldersAndTheTickCount) {
    auto& sys = this->sys;
    for (const auto& name : {sys.computerName(), sys.userName()})
        EXPECT_TRUE(name && !name->empty() && name->find('\0') == std::string::npos);
    EXPECT_EQ(Lower(sys.windowsFolder()).rfind("c:\\windows", 0), 0u) << sys.windowsFolder();
    EXPECT_EQ(Lower(sys.systemFolder()).rfind(Lower(sys.windowsFolder() + "\\System32"), 0), 0u);
    EXPECT_EQ(sys.executablePath(), this->maker.executable());
    const std::uint32_t before = sys.tickCount();
    this->maker.pause(100);
    const std::uint32_t elapsed = sys.tickCount() - before;  // wraps like GetTickCount
    EXPECT_TRUE(elapsed >= 80 && elapsed < 5000) << elapsed;
}

TYPED_TEST_P(SystemContract, ProfileStringsAreWrittenToTheFileAndCutToTheCapacity) {
    auto& sys = this->sys;
    const std::string ini = this->maker.folder() + "\\LangSetting.ini";
    EXPECT_EQ(sys.readProfileString("Language", "File", "English.lng", 260, ini), "English.lng");
    ASSERT_TRUE(sys.writeProfileString("Language", "File", "Deutsch.lng", ini));
    ASSERT_TRUE(sys.writeProfileString("Other", "Key", "1", ini));
    EXPECT_EQ(ReadAll(this->maker.files(), ini),
              "[Language]\r\nFile=Deutsch.lng\r\n[Other]\r\nKey=1\r\n");
    EXPECT_EQ(sys.readProfileString("language", "FILE", "", 260, ini), "Deutsch.lng");
    EXPECT_EQ(sys.readProfileString("Language", "File", "none", 5, ini), "Deut");
    EXPECT_EQ(sys.readProfileString("Language", "File", "none", 0, ini), "");
    EXPECT_EQ(sys.readProfileString("Language", "Other", "none", 255, ini), "none");
    EXPECT_FALSE(
        sys.writeProfileString("Language", "File", "x", this->maker.folder() + "\\no\\a.ini"));
}

REGISTER_TYPED_TEST_SUITE_P(SystemContract, ANamedMutexIsOwnedOnceAndSeenUntilItsLastHandleCloses,
                            MutexNamesAreCaseSensitive,
                            DatesAndTimesInTheUsFormsAndNothingForImpossibleDays,
                            IdentityFoldersAndTheTickCount,
                            ProfileStringsAreWrittenToTheFileAndCutToTheCapacity);

}  // namespace orvex::testing
