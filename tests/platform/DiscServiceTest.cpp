#include "platform/DiscService.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "platform/DynamicLibrary.h"
#include "platform/FileSystem.h"
#include "platform/PathStyle.h"
#include "platform/RecorderTable.h"
#include "platform/Registry.h"

namespace Vantor::Platform {

namespace {

using Names = std::vector<std::string>;

// As the kernel prints it: names first, the newest drive first.
std::string DriveTable(const std::string& names, const std::string& writesCD, const std::string& writesDVD) {
    return "CD-ROM information, Id: cdrom.c 3.20 2003/12/17\n\ndrive name:\t\t" + names +
           "\ndrive speed:\t\t48\t24\t0\nCan write CD-R:\t\t" + writesCD + "\nCan write CD-RW:\t" + writesCD +
           "\nCan read DVD:\t\t1\t1\t1\nCan write DVD-R:\t" + writesDVD + "\nCan write DVD-RAM:\t0\t0\t0\n\n";
}

}  // namespace

TEST(RecorderTable, NamesTheDrivesThatWriteDiscs) {
    EXPECT_EQ(ReadRecorders(DriveTable("sr2\tsr1\tsr0", "0\t1\t0", "1\t1\t0")), (Names{"sr1", "sr2"}));
    EXPECT_EQ(ReadRecorders(DriveTable("sr0", "0", "0")), Names());
    EXPECT_EQ(ReadRecorders(DriveTable("sr0", "1\t1\t1", "")), Names{"sr0"}) << "more columns than drives";
    EXPECT_EQ(ReadRecorders("Can write CD-R: 1\ndrive name"), Names());
    EXPECT_EQ(ReadRecorders(""), Names());
}

TEST(RecorderTable, MakesVolumeNamesThatEveryReaderTakes) {
    EXPECT_EQ(MakeVolumeName("ECHO 12_A"), "ECHO 12_A");
    EXPECT_EQ(MakeVolumeName(" Stress: \xC3\xA4 "), "STRESS_ __");
    EXPECT_EQ(MakeVolumeName("-volid"), "_VOLID");
    EXPECT_EQ(MakeVolumeName("0123456789ABCDEF0123456789ABCDEF!"), "0123456789ABCDEF0123456789ABCDEF");
    EXPECT_EQ(MakeVolumeName("  "), "");
}

#ifdef VANTOR_BURN_SERVER

// The shell's service is a COM class. Where there is none, a server of our own takes its place.
class ShellService : public testing::Test {
  protected:
    // A service of the system's own is left alone, and so is what its user has staged.
    void SetUp() override {
        ASSERT_EQ(DiscService::OfSystem().Connect(), nullptr) << "there is one already";
        fServer = DynamicLibrary::Load(ServerPath());
        fIsRegistered = fServer != nullptr && fServer->Call("DllRegisterServer") == 0;
        ASSERT_TRUE(fIsRegistered) << ServerPath();
    }
    void TearDown() override {
        if (fIsRegistered) {
            EXPECT_EQ(fServer->Call("DllUnregisterServer"), 0);
        }
    }

    static std::string ServerPath() {
        return std::filesystem::absolute(VANTOR_BURN_SERVER).make_preferred().string();
    }
    static void Set(bool hasRecorder, bool fails) {
        RegistryChange change(kKey);
        change.SetInteger("HasRecorder", hasRecorder ? 1 : 0);
        change.SetInteger("Fails", fails ? 1 : 0);
        EXPECT_TRUE(change.Commit());
    }
    static int64_t Noted(const std::string& name) {
        const auto key = RegistryKey::Open(kKey);
        return key ? key->ReadInteger(name).value_or(0) : -1;
    }

    static constexpr char kKey[] = "Software\\Vantor Tests\\Recorder";

    std::unique_ptr<DynamicLibrary> fServer;
    bool fIsRegistered = false;
};

TEST_F(ShellService, IsAskedForItsRecorder) {
    Set(true, false);
    auto burner = DiscService::OfSystem().Connect();
    ASSERT_NE(burner, nullptr);
    EXPECT_EQ(Noted("Objects"), 1);
    EXPECT_TRUE(burner->HasRecorder());
    EXPECT_EQ(burner->GetRecorderName(), "E:\\");
    EXPECT_TRUE(burner->Burn({reinterpret_cast<WindowHandle>(uintptr_t{0x1234}), "NAME", nullptr, nullptr}));
    EXPECT_EQ(Noted("Burns"), 1);
    EXPECT_EQ(Noted("Window"), 0x1234);
    Set(true, true);
    EXPECT_FALSE(burner->HasRecorder()) << "when it cannot tell";
    EXPECT_FALSE(burner->Burn({}));
    Set(false, false);
    EXPECT_FALSE(burner->HasRecorder());
    EXPECT_EQ(burner->GetRecorderName(), "");
    EXPECT_FALSE(burner->Burn({}));
    burner.reset();
    EXPECT_EQ(Noted("Objects"), 0);
    EXPECT_NE(DiscService::OfSystem().Connect(), nullptr) << "once more in the same thread";
    EXPECT_EQ(Noted("Objects"), 0);
}

// Made where it is missing, as on a machine that has never burned a disc.
TEST_F(ShellService, HasAFolderForWhatIsToBeBurned) {
    const std::string folder = DiscService::OfSystem().GetStagingFolder();
    RemoveFolderTree(folder);
    EXPECT_EQ(DiscService::OfSystem().GetStagingFolder(), folder);
    EXPECT_TRUE(IsFolder(folder) && WindowsPathStyle().IsFullPath(folder)) << folder;
}

#endif

}  // namespace Vantor::Platform
