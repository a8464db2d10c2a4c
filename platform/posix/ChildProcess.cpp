#include "platform/posix/ChildProcess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <sstream>
#include <utility>

#include "platform/posix/SystemError.h"

extern char** environ;

namespace Vantor::Platform {

namespace {

constexpr const char* kNothingToRead = "/dev/null";
constexpr size_t kReadSize = 4096;
constexpr size_t kLongestLine = size_t{1} << 16;  // what is longer is no line, and comes in pieces

bool IsProgram(const std::string& path) {
    struct stat state = {};
    return stat(path.c_str(), &state) == 0 && S_ISREG(state.st_mode) && access(path.c_str(), X_OK) == 0;
}

struct Pipe {
    Descriptor fReading;
    Descriptor fWriting;
};

Pipe MakePipe(const std::string& path) {
    std::array<int, 2> ends = {};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) ThrowFileError(errno, path);
    return {Descriptor(ends[0]), Descriptor(ends[1])};
}

// What a new process has open.
class OpenFiles {
  public:
    explicit OpenFiles(int output) {
        posix_spawn_file_actions_init(&fActions);
        posix_spawn_file_actions_addopen(&fActions, STDIN_FILENO, kNothingToRead, O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&fActions, output, STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&fActions, output, STDERR_FILENO);
    }
    ~OpenFiles() { posix_spawn_file_actions_destroy(&fActions); }
    OpenFiles(const OpenFiles&) = delete;
    OpenFiles& operator=(const OpenFiles&) = delete;

    const posix_spawn_file_actions_t* Get() const { return &fActions; }

  private:
    posix_spawn_file_actions_t fActions = {};
};

// The signals of a new process, as a shell would leave them: whatever the host blocks or ignores.
class UsualSignals {
  public:
    UsualSignals() {
        sigset_t signals;
        posix_spawnattr_init(&fAttributes);
        posix_spawnattr_setflags(&fAttributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&fAttributes, &signals);
        for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGPIPE, SIGCHLD}) sigaddset(&signals, signal);
        posix_spawnattr_setsigdefault(&fAttributes, &signals);
    }
    ~UsualSignals() { posix_spawnattr_destroy(&fAttributes); }
    UsualSignals(const UsualSignals&) = delete;
    UsualSignals& operator=(const UsualSignals&) = delete;

    const posix_spawnattr_t* Get() const { return &fAttributes; }

  private:
    posix_spawnattr_t fAttributes = {};
};

}  // namespace

std::string FindProgram(const std::string& name) {
    const char* const variable = std::getenv("PATH");
    std::istringstream folders(variable == nullptr ? "" : variable);
    for (std::string folder; std::getline(folders, folder, ':');) {
        if (!folder.starts_with('/')) continue;
        folder.append("/").append(name);
        if (IsProgram(folder)) return folder;
    }
    return std::string();
}

ChildProcess::ChildProcess(const std::string& path, const std::vector<std::string>& arguments) {
    Pipe pipe = MakePipe(path);
    std::vector<std::string> texts = {path};
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    const OpenFiles files(pipe.fWriting.Get());
    const UsualSignals signals;
    const int error =
        posix_spawn(&fProcess, path.c_str(), files.Get(), signals.Get(), pointers.data(), environ);
    if (error != 0) {
        fProcess = kNone;
        ThrowFileError(error, path);
    }
    fOutput = std::move(pipe.fReading);
}

ChildProcess::~ChildProcess() {
    int status = 0;
    const bool isRunning = fProcess != kNone && waitpid(fProcess, &status, WNOHANG) == 0;
    if (!isRunning) return;
    kill(fProcess, SIGTERM);
    RetryInterrupted([&] { return waitpid(fProcess, &status, 0); });
}

std::optional<std::string> ChildProcess::ReadLine() {
    for (;;) {
        const size_t end = fRead.find_first_of("\r\n");
        if (end != std::string::npos) {
            std::string line = fRead.substr(0, end);
            fRead.erase(0, end + 1);
            return line;
        }
        if (fRead.size() < kLongestLine && ReadMore()) continue;
        if (fRead.empty()) return std::nullopt;
        return std::exchange(fRead, std::string());
    }
}

bool ChildProcess::ReadMore() {
    std::array<char, kReadSize> bytes = {};
    const ssize_t count = RetryInterrupted([&] { return read(fOutput.Get(), bytes.data(), bytes.size()); });
    if (count <= 0) return false;
    fRead.append(bytes.data(), static_cast<size_t>(count));
    return true;
}

bool ChildProcess::EndsWell() {
    if (fProcess == kNone) return false;
    int status = 0;
    const pid_t process = std::exchange(fProcess, kNone);
    const pid_t ended = RetryInterrupted([&] { return waitpid(process, &status, 0); });
    return ended == process && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace Vantor::Platform
