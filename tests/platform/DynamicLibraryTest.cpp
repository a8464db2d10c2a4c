#include "platform/DynamicLibrary.h"

#include <gtest/gtest.h>

#include "tests/support/TestFolder.h"

namespace Vantor::Platform {

// What is called here that succeeds, tests/wrappers/ActiveXControlTest calls.
TEST(DynamicLibrary, ExportsNothingThatIsNotThere) {
    const auto library = DynamicLibrary::Load(VantorTest::kIsWindows ? "kernel32.dll" : "libm.so.6");
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(library->Call("DllRegisterServer"), std::nullopt);
    EXPECT_EQ(library->Call(""), std::nullopt);
}

TEST(DynamicLibrary, IsNoOtherFile) {
    const VantorTest::TestFolder folder;
    const std::string text = folder.WriteFile("text.dll", "no library");
    for (const std::string& path : {text, folder.GetPath(), folder.PathOf("missing.dll"), std::string()}) {
        EXPECT_EQ(DynamicLibrary::Load(path), nullptr) << path;
    }
}

}  // namespace Vantor::Platform
