#include "platform/DiscService.h"

#include <sys/stat.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <optional>
#include <system_error>

#include "platform/FileException.h"
#include "platform/FileSystem.h"
#include "platform/RecorderTable.h"
#include "platform/posix/ChildProcess.h"
#include "platform/posix/Neighbour.h"
#include "platform/posix/PathLookup.h"
#include "platform/posix/UserFolder.h"

namespace Vantor::Platform {

namespace {

constexpr const char* kBurningProgram = "xorriso";
constexpr const char* kRecorderVariable = "VANTOR_RECORDER";
constexpr const char* kStagingVariable = "VANTOR_DISC_AREA";
constexpr const char* kDataVariable = "XDG_DATA_HOME";
constexpr const char* kDataFolder = ".local/share";
constexpr const char* kStagingFolder = "/vantor/disc";
constexpr const char* kDriveTable = "/proc/sys/dev/cdrom/info";
constexpr const char* kDeviceFolder = "/dev/";

// How the burning program begins the lines that tell how far it is, and that something went wrong.
constexpr std::string_view kProgressMark = " : UPDATE : ";
constexpr std::string_view kFailureMarks[] = {" : FAILURE : ", " : FATAL : ", " : ABORT : ", " : SORRY : "};

bool IsDevice(const std::string& path) {
    struct stat state = {};
    return stat(path.c_str(), &state) == 0 && S_ISBLK(state.st_mode);
}

// What the user has chosen, be it a drive or the path of an image, else the first drive that the kernel knows
// to write discs. Empty without one.
std::string FindRecorder() {
    const char* const chosen = std::getenv(kRecorderVariable);
    if (chosen != nullptr && *chosen != '\0') return chosen;
    std::ifstream table(kDriveTable);
    for (const std::string& name : ReadRecorders(std::string(std::istreambuf_iterator<char>(table), {}))) {
        if (IsDevice(kDeviceFolder + name)) return kDeviceFolder + name;
    }
    return std::string();
}

// An image can be made wherever there is a folder for it, but not in the one that it holds. Paths as on disk.
bool CanTakeImage(const std::string& path, const std::string& content) {
    std::error_code ignored;
    const auto folder = std::filesystem::canonical(std::filesystem::path(path).parent_path(), ignored);
    return path.starts_with('/') && IsFolder(folder.string()) && !IsFolder(path) &&
           !(folder.string() + "/").starts_with(content + "/");
}

constexpr int kAll = 100;  // percent

// The share of the work that is done, from a line such as "Writing:  4096s  12.5%  fifo 100%".
std::optional<int> PercentIn(const std::string& line) {
    const size_t mark = line.find(kProgressMark);
    if (mark == std::string::npos) return std::nullopt;
    const size_t sign = line.find('%', mark);
    if (sign == std::string::npos) return std::nullopt;
    const size_t start = line.find_last_of(' ', sign) + 1;
    int percent = 0;
    const auto [end, error] = std::from_chars(line.data() + start, line.data() + sign, percent);
    return error == std::errc() ? std::optional(std::clamp(percent, 0, kAll)) : std::nullopt;
}

// ISO 9660 with long names for Windows (Joliet) and for Unix (Rock Ridge), at the start of the medium. Links
// are written as what they lead to; those that lead nowhere, or round in circles, are left out, like devices.
// Whoever gets the disc may read it, whatever the rights of the folder are.
std::vector<std::string> ArgumentsFor(const std::string& folder, const std::string& output,
                                      const std::string& volumeName) {
    std::vector<std::string> arguments;
    const auto add = [&](std::initializer_list<std::string> words) {
        arguments.insert(arguments.end(), words);
    };
    add({"-no_rc", "-local_charset", "UTF-8", "-abort_on", "SORRY", "-return_with", "SORRY", "32"});
    add({"-pacifier", "interval=0.2", "-outdev", output, "-joliet", "on"});
    add({"-compliance", "iso_9660_level=2:joliet_long_names:no_emul_toc"});
    add({"-follow", "on", "-map", folder, "/"});
    for (const char* type : {"l", "b", "c", "p", "s"}) {
        add({"-find", "/", "-type", type, "-exec", "rm", "--"});
    }
    add({"-find", "/", "-exec", "chown", "0", "--", "-find", "/", "-exec", "chgrp", "0", "--"});
    add({"-find", "/", "-type", "d", "-exec", "chmod", "a=rx", "--"});
    add({"-find", "/", "-type", "f", "-exec", "chmod", "a=r", "--"});
    if (!volumeName.empty()) add({"-volid", volumeName});
    add({"-commit", "-end"});
    return arguments;
}

// Burns with a program of the system's.
class ProgramBurner final : public DiscBurner {
  public:
    ProgramBurner(std::string program, std::string folder)
        : fProgram(std::move(program)), fFolder(std::move(folder)), fRecorder(FindRecorder()) {}

    bool HasRecorder() override { return IsDevice(fRecorder) || CanTakeImage(fRecorder, fFolder); }
    std::string GetRecorderName() override { return HasRecorder() ? fRecorder : std::string(); }

    bool Burn(const DiscJob& job) override {
        try {
            if (!HasRecorder()) throw FileException(FileException::Cause::kFileNotFound, 0, fRecorder);
            if (ListFolder(fFolder).empty())
                throw FileException(FileException::Cause::kFileNotFound, 0, fFolder);
            return IsDevice(fRecorder) ? WriteTo(fRecorder, job) : WriteImage(job);
        } catch (const FileException& error) {
            if (job.fTellProblem) job.fTellProblem(error.what());
            return false;
        }
    }

  private:
    // Nobody finds half an image, nor one that took the place of a whole one.
    bool WriteImage(const DiscJob& job) {
        Neighbour image(LookUpPath(fRecorder).fPath, kRightsOfAll);
        if (!WriteTo("stdio:" + image.GetPath(), job)) return false;
        image.TakePlaceOfTarget();
        return true;
    }

    bool WriteTo(const std::string& output, const DiscJob& job) {
        ChildProcess program(fProgram, ArgumentsFor(fFolder, output, MakeVolumeName(job.fVolumeName)));
        while (const auto line = program.ReadLine()) Tell(*line, job);
        return program.EndsWell();
    }

    static void Tell(const std::string& line, const DiscJob& job) {
        const auto percent = PercentIn(line);
        if (percent && job.fTellProgress) job.fTellProgress(*percent);
        const bool isProblem =
            std::any_of(std::begin(kFailureMarks), std::end(kFailureMarks),
                        [&](std::string_view mark) { return line.find(mark) != std::string::npos; });
        if (isProblem && job.fTellProblem) job.fTellProblem(line);
    }

    std::string fProgram;
    std::string fFolder;
    std::string fRecorder;
};

class ProgramDiscService final : public DiscService {
  public:
    std::unique_ptr<DiscBurner> Connect() override {
        std::string program = FindProgram(kBurningProgram);
        if (program.empty()) return nullptr;
        return std::make_unique<ProgramBurner>(std::move(program), GetStagingFolder());
    }

    // Where the folder is a link, everything that is done there is done where it leads to.
    std::string GetStagingFolder() override {
        auto folder = FolderVariable(kStagingVariable);
        if (!folder) {
            folder = UserFolder(kDataVariable, kDataFolder);
            if (!folder) return std::string();
            *folder += kStagingFolder;
        }
        MakeFoldersOf(*folder + "/");
        std::error_code ignored;
        const std::string path = std::filesystem::canonical(*folder, ignored).string();
        return IsFolder(path) ? path : std::string();
    }
};

}  // namespace

DiscService& DiscService::OfSystem() {
    static ProgramDiscService& service = *new ProgramDiscService;  // never destroyed: see platform/Clock.cpp
    return service;
}

}  // namespace Vantor::Platform
