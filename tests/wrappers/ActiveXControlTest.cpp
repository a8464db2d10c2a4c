#include "wrappers/ActiveXControl.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "platform/CodePage.h"
#include "tests/support/TestFolder.h"

namespace VantorWrappers {

namespace {

using VantorTest::TestFolder;

// In a current folder of the test's own, where the control leaves its notes.
class ActiveXControlTest : public testing::Test {
  protected:
    ActiveXControlTest() { std::filesystem::current_path(fFolder.GetPath()); }
    ~ActiveXControlTest() override { std::filesystem::current_path(fPrevious); }

    std::string TakeNotes() const {
        if (!std::filesystem::exists(fFolder.PathOf("notes.txt"))) return {};
        std::string notes = VantorTest::ReadWholeFileAsText(fFolder.PathOf("notes.txt"));
        std::filesystem::remove(fFolder.PathOf("notes.txt"));
        return notes;
    }

    HostString PathOf(std::string_view name) const {
        return Vantor::Platform::ToHostText(fFolder.PathOf(name));
    }

    std::filesystem::path fPrevious = std::filesystem::current_path();
    TestFolder fFolder;
    HostString fControl = Vantor::Platform::ToHostText(VANTOR_TEST_CONTROL);
};

TEST_F(ActiveXControlTest, CallsTheControlAndUnloadsIt) {
    EXPECT_TRUE(ActiveXControl::Register(fControl));
    EXPECT_EQ(TakeNotes(), "load register unload ");
    EXPECT_TRUE(ActiveXControl::Unregister(fControl));
    EXPECT_EQ(TakeNotes(), "load unregister unload ");
    EXPECT_TRUE(ActiveXControl::Cache(fControl));
    EXPECT_EQ(TakeNotes(), "load unload ");
}

TEST_F(ActiveXControlTest, FindsTheControlWhateverTheCaseOfItsName) {
    std::filesystem::copy_file(VANTOR_TEST_CONTROL, fFolder.PathOf("Image Control.ocx"));
    EXPECT_TRUE(ActiveXControl::Register(PathOf("IMAGE CONTROL.OCX")));
    EXPECT_EQ(TakeNotes(), "load register unload ");
}

TEST_F(ActiveXControlTest, TellsThatTheControlFailed) {
    fFolder.WriteFile("fail.txt", "");
    EXPECT_FALSE(ActiveXControl::Register(fControl));
    EXPECT_FALSE(ActiveXControl::Unregister(fControl));
    EXPECT_TRUE(ActiveXControl::Cache(fControl));
    EXPECT_EQ(TakeNotes(), "load register unload load unregister unload load unload ");
}

TEST_F(ActiveXControlTest, SurvivesWhatIsNoControl) {
    fFolder.WriteFile("text.dll", "no library");
    for (const HostString& path : {PathOf("missing.dll"), PathOf("text.dll"), HostString(), PathOf("")}) {
        EXPECT_FALSE(ActiveXControl::Register(path));
        EXPECT_FALSE(ActiveXControl::Unregister(path));
        EXPECT_FALSE(ActiveXControl::Cache(path));
    }
}

// A library of any other kind exports no such operation: the C++ runtime's or the system's.
TEST_F(ActiveXControlTest, SurvivesALibraryWithoutTheOperations) {
    const HostString other = VantorTest::kIsWindows ? L"kernel32.dll" : L"libm.so.6";
    EXPECT_TRUE(ActiveXControl::Cache(other));
    EXPECT_FALSE(ActiveXControl::Register(other));
    EXPECT_FALSE(ActiveXControl::Unregister(other));
}

}  // namespace

}  // namespace VantorWrappers
