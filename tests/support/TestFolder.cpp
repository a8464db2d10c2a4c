#include "tests/support/TestFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <random>
#include <stdexcept>
#include <system_error>

namespace VantorTest {

namespace fs = std::filesystem;

namespace {

constexpr int kNameAttempts = 100;

std::string RandomName() {
    constexpr std::string_view kDigits = "0123456789abcdef";
    constexpr size_t kLength = 8;
    static std::random_device random;
    std::uniform_int_distribution<size_t> anyDigit(0, kDigits.size() - 1);
    std::string name = "vantor-";
    for (size_t i = 0; i < kLength; ++i) {
        name += kDigits[anyDigit(random)];
    }
    return name;
}

fs::path MakeUniqueFolder(const fs::path& parent) {
    for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
        fs::path folder = parent / RandomName();
        if (fs::create_directory(folder)) {
            return folder;
        }
    }
    throw std::runtime_error("no folder for the test in " + parent.string());
}

// A test may have taken rights away from what it made.
void GiveRightsBack(const fs::path& folder) {
    std::error_code ignored;
    fs::permissions(folder, fs::perms::owner_all, fs::perm_options::add, ignored);
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, ignored)) {
        if (entry.is_directory(ignored) && !entry.is_symlink(ignored)) {
            GiveRightsBack(entry.path());
        } else if (entry.is_regular_file(ignored)) {
            fs::permissions(entry.path(), fs::perms::owner_write, fs::perm_options::add, ignored);
        }
    }
}

}  // namespace

TestFolder::TestFolder(const fs::path& parent) : fPath(MakeUniqueFolder(parent).make_preferred()) {}

TestFolder::~TestFolder() {
    std::error_code error;
    fs::remove_all(fPath, error);
    if (error) {
        GiveRightsBack(fPath);
        fs::remove_all(fPath, error);
    }
    if (error) {
        ADD_FAILURE() << "cannot remove " << fPath.string()
                      << " (is a file in it still open?): " << error.message();
    }
}

std::string TestFolder::PathOf(std::string_view name) const {
    return (fPath / fs::path(name)).make_preferred().string();
}

std::string TestFolder::MakeFolder(std::string_view name) const {
    std::string path = PathOf(name);
    fs::create_directories(path);
    return path;
}

std::string TestFolder::WriteFile(std::string_view name, const Bytes& content) const {
    std::string path = PathOf(name);
    fs::create_directories(fs::path(path).parent_path());
    WriteWholeFile(path, content);
    return path;
}

std::string TestFolder::WriteFile(std::string_view name, std::string_view content) const {
    return WriteFile(name, BytesOf(content));
}

std::vector<std::string> TestFolder::ListFiles() const {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(fPath)) {
        if (!entry.is_directory()) {
            names.push_back(entry.path().lexically_relative(fPath).generic_string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

Bytes ReadWholeFile(const std::string& path) {
    std::ifstream file(fs::path(path), std::ios::binary);
    if (!file) {
        ADD_FAILURE() << "cannot read " << path;
        return {};
    }
    Bytes content(static_cast<size_t>(fs::file_size(path)));
    file.read(reinterpret_cast<char*>(content.data()), static_cast<std::streamsize>(content.size()));
    content.resize(static_cast<size_t>(file.gcount()));
    return content;
}

std::string ReadWholeFileAsText(const std::string& path) {
    const Bytes bytes = ReadWholeFile(path);
    return std::string(bytes.begin(), bytes.end());
}

void WriteWholeFile(const std::string& path, const Bytes& content) {
    std::ofstream file(fs::path(path), std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
    file.close();
    if (!file) {
        ADD_FAILURE() << "cannot write " << path;
    }
}

void WriteWholeFile(const std::string& path, std::string_view content) {
    WriteWholeFile(path, BytesOf(content));
}

Bytes BytesOf(std::string_view text) { return Bytes(text.begin(), text.end()); }

}  // namespace VantorTest
