#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace VantorTest {

using Bytes = std::vector<uint8_t>;

// What the systems do differently, a test asks here.
inline constexpr bool kIsWindows = std::filesystem::path::preferred_separator == '\\';

// A temporary folder of a test's own, made empty and removed with all it holds at the end. Declare it before
// the objects that keep files in it open: what is still open when the folder goes fails the test on Windows.
class TestFolder {
  public:
    explicit TestFolder(const std::filesystem::path& parent = std::filesystem::temp_directory_path());
    ~TestFolder();
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    // The folder's path, without a separator at the end.
    std::string GetPath() const { return fPath.string(); }

    // The path of something in the folder, which need not exist: PathOf("IMAGESDC/I_000000.DCM"). Forward
    // slashes become the platform's separator.
    std::string PathOf(std::string_view name) const;

    // Makes a folder inside, with those above it, and gives its path.
    std::string MakeFolder(std::string_view name) const;

    // Writes a whole file inside, making the folders above it, and gives its path.
    std::string WriteFile(std::string_view name, const Bytes& content) const;
    std::string WriteFile(std::string_view name, std::string_view content) const;

    // The names in the folder, sorted; names inside a folder as "folder/name", folders themselves left out.
    std::vector<std::string> ListFiles() const;

  private:
    std::filesystem::path fPath;
};

// Whole files by path. Reading a file that is not there, or writing one that cannot be written, fails the
// test and reads as empty.
Bytes ReadWholeFile(const std::string& path);
std::string ReadWholeFileAsText(const std::string& path);
void WriteWholeFile(const std::string& path, const Bytes& content);
void WriteWholeFile(const std::string& path, std::string_view content);

// The bytes of a text, for comparing and composing: BytesOf("DICM").
Bytes BytesOf(std::string_view text);

}  // namespace VantorTest
