#include "platform/Registry.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <thread>
#include <vector>

#include "platform/RegistryText.h"
#include "tests/support/TestFolder.h"

namespace Vantor::Platform {

using VantorTest::kIsWindows;
using VantorTest::TestFolder;

namespace {

const std::string kKey = "Software\\Vendor\\Product";

bool SetText(const std::string& path, const std::string& name, const std::wstring& text) {
    RegistryChange change(path);
    change.SetText(name, text);
    return change.Commit();
}

std::wstring TextAt(const std::string& name) {
    const auto key = RegistryKey::Open(kKey);
    return key ? key->ReadText(name).value_or(L"no text") : L"no key";
}

}  // namespace

TEST(Registry, KeepsWhatWasSetUntilItIsPutBack) {
    const TestFolder folder;
    {
        const ReplacedRegistry replaced(folder.GetPath());
        EXPECT_FALSE(RegistryKey::Open(kKey));
        RegistryChange change(kKey);
        change.SetText("FolderDirPath1", L"C:\\a \"b\"\r\n[c]=\u00FC\u20AC");
        change.SetText("FolderDirPath2", std::wstring(L"cut\0off", 7));
        change.SetInteger("Trim", 0xFFFFFFFF);
        EXPECT_FALSE(RegistryKey::Open(kKey)) << "before Commit";
        EXPECT_TRUE(change.Commit());
        const auto before = RegistryKey::Open("SOFTWARE\\vendor\\Product");
        ASSERT_TRUE(before && RegistryKey::Open("software\\vendor"));
        EXPECT_TRUE(SetText(kKey, "FOLDERDIRPATH2", L"") && SetText(kKey + "s", "Trim", L"not here"));
        EXPECT_EQ(before->ReadText("folderdirpath2"), L"cut") << "as it was when it was opened";
        EXPECT_EQ(TextAt("FolderDirPath1"), L"C:\\a \"b\"\r\n[c]=\u00FC\u20AC");
        EXPECT_EQ(TextAt("FolderDirPath2"), L"");
        EXPECT_EQ(RegistryKey::Open(kKey)->ReadInteger("TRIM"), 0xFFFFFFFF);
        EXPECT_FALSE(before->ReadInteger("FolderDirPath1") || before->ReadText("Trim") ||
                     before->ReadText("Tri"));
    }
    EXPECT_TRUE(folder.ListFiles().empty());
    const ReplacedRegistry replaced(folder.GetPath());
    EXPECT_FALSE(RegistryKey::Open(kKey)) << "gone with the replacement";
}

// Two programs of one user save their settings when he logs off.
TEST(Registry, ManyAtOnceLoseNothing) {
    constexpr int kWriters = 4;
    constexpr int kTurns = 10;
    const TestFolder folder;
    const ReplacedRegistry replaced(folder.GetPath());
    ASSERT_TRUE(SetText(kKey, "there", L"always"));
    std::atomic<int> running = kWriters;
    std::vector<std::thread> writers;
    for (int writer = 0; writer < kWriters; ++writer) {
        writers.emplace_back([&running, writer] {
            for (int turn = 0; turn < kTurns; ++turn) {
                EXPECT_TRUE(SetText(kKey, std::to_string(writer * kTurns + turn), L"x"));
            }
            --running;
        });
    }
    while (running > 0) EXPECT_EQ(TextAt("there"), L"always");
    for (std::thread& writer : writers) writer.join();
    for (int name = 0; name < kWriters * kTurns; ++name)
        EXPECT_EQ(TextAt(std::to_string(name)), L"x") << name;
}

// What another program or a person has put in the file's place is left as it is.
TEST(Registry, LeavesAloneWhatIsNoSettings) {
    if (kIsWindows) GTEST_SKIP() << "the system keeps them";
    const TestFolder folder;
    const ReplacedRegistry replaced(folder.GetPath());
    for (const size_t size : {size_t{2'000'000}, size_t{1'048'535}}) {
        const std::string content = "[" + kKey + "]\n\"a\"=\"" + std::string(size, 'x');
        const std::string path = folder.WriteFile("registry", content);
        EXPECT_FALSE(SetText(kKey, "name", L"text"));
        EXPECT_EQ(TextAt("a"), size > 1'048'576 ? L"no key" : L"no text");
        EXPECT_EQ(VantorTest::ReadWholeFileAsText(path), content);
        std::filesystem::remove(path);
    }
    folder.MakeFolder("registry");
    EXPECT_FALSE(SetText(kKey, "name", L"text") || RegistryKey::Open(kKey));
}

TEST(RegistryText, ReadsWhatAPersonHasWritten) {
    const RegistryText text(
        "\xFF\x01no key\n\"lost\"=\"x\"\r\n[Software\\A]\r\n  \"text\" \n\"Text\"=\"first\"\n "
        "\"TEXT\"=\"a\\\\b\\\"\\n\" \n"
        "\"open\"=\"x\n\"escape\"=\"\\q\"\n\"end\"=\"\\\n\"more\"=\"x\"y\n@=\"x\"\n\"\"=\"nameless\"\n"
        "\"n\"=dword:0000002A\r\n\"long\"=dword:123456789\n\"no\"=dword:\n\"minus\"=dword:-1\n\"g\"=dword:"
        "1g\n"
        "[software\\B]\n[SOFTWARE\\a]\n\"late\"=dword:ffffffff\n\"");
    const RegistryValues expected = {
        {"TEXT", L"a\\b\"\n"}, {"", L"nameless"}, {"N", 42}, {"LATE", 0xFFFFFFFF}};
    EXPECT_EQ(text.ReadKey("software\\A"), expected);
    EXPECT_EQ(text.ReadKey("Software\\B"), RegistryValues());
    EXPECT_EQ(text.ReadKey("SOFTWARE"), RegistryValues());
    EXPECT_FALSE(text.ReadKey("Software\\") || text.ReadKey("Soft") || text.ReadKey(""));
}

TEST(RegistryText, ChangesNothingElse) {
    const std::string before = "; mine\n[A]\n\"x\"=hex:01\n\"b\"=\"1\"\n\"B\"=\"2\"\n\n[C]\n\"b\"=\"3\"";
    RegistryText text(before);
    EXPECT_FALSE(text.AddKey("D]\n[E"));
    EXPECT_TRUE(text.AddKey("a") && text.AddKey("N\\M"));
    text.Set("a", {"b", L"new"});
    text.Set("A", {"q\"\n", 10});
    text.Set("n\\m", {"c", L"\\"});
    EXPECT_EQ(text.GetText(),
              "; "
              "mine\n[A]\n\"x\"=hex:01\n\"b\"=\"1\"\n\"b\"=\"new\"\n\"q\\\"\\n\"=dword:0000000a\n\n[C]"
              "\n\"b\"=\"3\"\n\n"
              "[N\\M]\n\"c\"=\"\\\\\"\n");
    EXPECT_EQ(RegistryText(text.GetText()).GetText(), text.GetText());
}

}  // namespace Vantor::Platform
