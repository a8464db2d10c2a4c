// Arbitrary bytes as an image file that is shown: its description, and the pictures of its first frames.

#include "cli/FramePicture.h"
#include "fuzz/FuzzInput.h"
#include "platform/CodePage.h"
#include "tests/support/TestFolder.h"
#include "wrappers/ImageFrames.h"

namespace {

constexpr int32_t kFramesShown = 3;

void Show(const std::wstring& path) {
    VantorWrappers::ImageFrames image(path);
    VantorCli::FramePicture picture(image.GetDescription());
    for (int32_t frame = 1; frame <= kFramesShown; ++frame) {
        if (image.LoadFrame(frame)) {
            const auto bytes = VantorFuzz::ExactCopy(image.GetFrame().data(), image.GetFrame().size());
            picture.Draw(bytes);
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const VantorTest::TestFolder folder;
    const std::string path = folder.WriteFile("image", VantorTest::Bytes(data, data + size));
    VantorFuzz::Run([&] { Show(Vantor::Platform::ToHostText(path)); });
    return 0;
}
