#include "platform/Registry.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "platform/Clock.h"
#include "platform/File.h"
#include "platform/FileException.h"
#include "platform/FileReplacement.h"
#include "platform/RegistryText.h"
#include "platform/posix/DiskFile.h"
#include "platform/posix/SystemError.h"
#include "platform/posix/UserFolder.h"

namespace Vantor::Platform {

namespace {

constexpr mode_t kFileRights = 0600;
constexpr int kOpenFlags = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;

// The settings of a user are a few lines. What is larger is something else, and is left alone.
constexpr int64_t kLargestFile = 1 << 20;

// Another program that is just changing the settings is done with it in less.
constexpr std::chrono::seconds kLongestWait(10);
constexpr std::chrono::milliseconds kRest(5);

std::string& ReplacingFolder() {
    // Empty unless a ReplacedRegistry is alive. Never destroyed: see platform/Clock.cpp.
    static std::string& folder = *new std::string;
    return folder;
}

std::optional<std::string> SettingsFolder() {
    if (!ReplacingFolder().empty()) {
        return ReplacingFolder();
    }
    const auto folder = UserFolder("XDG_CONFIG_HOME", ".config");
    return folder ? std::optional(*folder + "/vantor") : std::nullopt;
}

std::optional<std::string> SettingsFile() {
    const std::optional<std::string> folder = SettingsFolder();
    return folder ? std::optional(*folder + "/registry") : std::nullopt;
}

Descriptor Open(const std::string& path, int flags) {
    return Descriptor(RetryInterrupted([&] { return open(path.c_str(), flags | kOpenFlags, kFileRights); }));
}

bool IsDiskFile(const Descriptor& descriptor) {
    struct stat state = {};
    return fstat(descriptor.Get(), &state) == 0 && S_ISREG(state.st_mode);
}

std::string ReadAll(File& file, const std::string& path) {
    const int64_t length = file.GetLength();
    if (length > kLargestFile) {
        ThrowFileError(EFBIG, path);
    }
    std::string text(static_cast<size_t>(length), '\0');
    text.resize(file.Read(text.data(), text.size()));
    return text;
}

// Without a lock: what is at the path is replaced as a whole, so it is always a whole file.
std::optional<std::string> ReadSettings(const std::string& path) {
    Descriptor descriptor = Open(path, O_RDONLY);
    if (!descriptor.IsOpen() || !IsDiskFile(descriptor)) {
        return std::nullopt;
    }
    return ReadAll(*MakeDiskFile(std::move(descriptor), FileAccess::kRead, path, path), path);
}

std::unique_ptr<File> WaitToReplace(const std::string& path) {
    Clock& clock = Clock::Current();
    for (const auto end = clock.Now() + kLongestWait;; clock.Sleep(kRest)) {
        try {
            return OpenDiskFileToReplace(path);
        } catch (const FileException& error) {
            if (error.GetCause() != FileException::Cause::kSharingViolation || clock.Now() > end) {
                throw;
            }
        }
    }
}

bool Apply(RegistryText& text, const std::string& path, const std::vector<RegistrySetting>& settings) {
    if (!text.AddKey(path)) {
        return false;
    }
    for (const RegistrySetting& setting : settings) {
        text.Set(path, setting);
    }
    return true;
}

// From the first to the last for this program alone, so that nothing another one has set is lost.
bool Change(const std::string& file, const std::string& path, const std::vector<RegistrySetting>& settings) {
    const std::unique_ptr<File> held = WaitToReplace(file);
    RegistryText text(ReadAll(*held, file));
    if (!Apply(text, path, settings)) {
        return false;
    }
    const std::string content = text.GetText();
    if (static_cast<int64_t>(content.size()) > kLargestFile) {
        return false;
    }
    FileReplacement replacement(file);
    replacement.GetFile().Write(content.data(), content.size());
    replacement.PutInPlace(held.get());
    return true;
}

}  // namespace

std::optional<RegistryValues> ReadRegistryKey(const std::string& path) {
    try {
        const std::optional<std::string> file = SettingsFile();
        const std::optional<std::string> text = file ? ReadSettings(*file) : std::nullopt;
        return text ? RegistryText(*text).ReadKey(path) : std::nullopt;
    } catch (const FileException&) {
        return std::nullopt;
    }
}

bool WriteRegistryKey(const std::string& path, const std::vector<RegistrySetting>& settings) {
    const std::optional<std::string> file = SettingsFile();
    if (!file) {
        return false;
    }
    MakeFoldersOf(*file);
    Open(*file, O_RDWR | O_CREAT);  // an empty one, to be held, where there is none
    try {
        return Change(*file, path, settings);
    } catch (const FileException&) {
        return false;
    }
}

ReplacedRegistry::ReplacedRegistry(const std::string& folder) { ReplacingFolder() = folder; }

ReplacedRegistry::~ReplacedRegistry() {
    unlink(SettingsFile().value_or(std::string()).c_str());
    ReplacingFolder().clear();
}

}  // namespace Vantor::Platform
