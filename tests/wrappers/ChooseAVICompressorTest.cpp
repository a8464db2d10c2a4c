#include "wrappers/ChooseAVICompressor.h"

#include <gtest/gtest.h>

#include "host/CompressorDialog.h"
#include "platform/VideoCompression.h"
#include "tests/support/TestCompressor.h"
#include "tests/support/TestFolder.h"

namespace VantorWrappers {

namespace {

using VantorHost::CompressorChoice;
using VantorHost::CompressorDialog;
using VantorTest::TestCompressor;

constexpr uint32_t kUncompressed = Vantor::Platform::kUncompressedHandler;

class ChooseAVICompressorTest : public testing::Test {
  protected:
    ~ChooseAVICompressorTest() override { CompressorDialog::SetPresenter(nullptr); }

    ChooseAVICompressor fChooser;
};

TEST_F(ChooseAVICompressorTest, KeepsWhatTheUserHasChosen) {
    int window = 0;
    CompressorDialog::SetPresenter([&](const std::wstring& title, CompressorChoice& choice, void* owner) {
        EXPECT_EQ(title, L"Choose Compressor");
        EXPECT_EQ(choice.fHandler, 0x44434241U);
        EXPECT_EQ(choice.fQuality, 8500);
        EXPECT_EQ(owner, &window);
        choice = {kUncompressed, 4321};
        return true;
    });
    ASSERT_TRUE(fChooser.PresentDialog(0x44434241, 85, &window));
    EXPECT_EQ(fChooser.GetHandler(), kUncompressed);
    EXPECT_EQ(fChooser.GetQuality(), 43);
    EXPECT_EQ(fChooser.fHandler, kUncompressed);
    EXPECT_EQ(fChooser.fQuality, 43);

    CompressorDialog::SetPresenter([](const std::wstring&, CompressorChoice& choice, void*) {
        choice = {1, 1};
        return false;
    });
    EXPECT_FALSE(fChooser.PresentDialog(0, 0, nullptr));
    EXPECT_EQ(fChooser.GetHandler(), kUncompressed) << "what was chosen before stays";
    EXPECT_EQ(fChooser.GetQuality(), 43);
}

TEST_F(ChooseAVICompressorTest, HasNoDialogWhereTheSystemHasNone) {
    if (VantorTest::kIsWindows) GTEST_SKIP() << "there is one, and nobody to close it";
    EXPECT_FALSE(fChooser.PresentDialog(kUncompressed, 100, nullptr));
    EXPECT_EQ(fChooser.GetHandler(), 0U);
}

// The description goes with what was chosen; Windows has compressors of its own, Linux those of the host.
TEST_F(ChooseAVICompressorTest, DescribesTheCompressors) {
    VantorHost::VideoCompressors::Register(std::make_shared<TestCompressor>());
    const std::vector<AVICompressor> all = ChooseAVICompressor::GetCompressors();
    ASSERT_GE(all.size(), 2U);
    EXPECT_EQ(all[0].fHandler, kUncompressed);
    EXPECT_EQ(all[0].fDescription, L"Uncompressed");
    if (!VantorTest::kIsWindows) {
        ASSERT_EQ(all.size(), 2U);
        EXPECT_EQ(all[1].fHandler, TestCompressor::kHandler);
        EXPECT_EQ(all[1].fDescription, TestCompressor::kDescription);
    }
    for (size_t index = 1; index < all.size(); ++index) {
        fChooser.fHandler = all[index].fHandler;
        EXPECT_EQ(fChooser.GetCompressorString(), all[index].fDescription);
        CompressorDialog::SetPresenter([&](const std::wstring&, CompressorChoice& choice, void*) {
            choice.fHandler = all[index].fHandler;
            return true;
        });
        ASSERT_TRUE(fChooser.PresentDialog(0, 0, nullptr));
        EXPECT_EQ(fChooser.fCompressorString, all[index].fDescription);
    }
    for (const uint32_t none : {0U, kUncompressed, 0x12345678U}) {
        fChooser.fHandler = none;
        EXPECT_EQ(fChooser.GetCompressorString(), L"") << none;
    }
}

}  // namespace

}  // namespace VantorWrappers
