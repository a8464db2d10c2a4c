#include "media/TWritableCD.h"

#include <array>
#include <string_view>

#include "dicom/Attempt.h"
#include "dicom/FileLayout.h"
#include "dicom/TDicomFile.h"
#include "dicom/Tags.h"
#include "host/Trace.h"
#include "media/FolderCopy.h"
#include "platform/File.h"
#include "platform/FileSystem.h"
#include "platform/PathStyle.h"

namespace Vantor {

namespace {

constexpr std::string_view kDirectoryFile = "DICOMDIR";
constexpr std::string_view kPlayerSource = "ViewerFiles";
constexpr std::string_view kPlayerFolder = "Viewer";
constexpr std::array<std::string_view, 5> kPlayerFiles = {"autorun.inf", "Open_Studies.exe", "PlayerHelp.chm",
                                                          "README_PLAYER.txt", "CD_PLAYER_TERMS.rtf"};

std::string Join(const std::string& folder, std::string_view name) {
    return Platform::PathStyle::OfPlatform().Join(folder, name);
}

std::string PlayerSourceIn(const std::string& root) {
    return root.empty() ? std::string() : Join(root, kPlayerSource);
}

// What a player must never take the place of, whatever its name is.
bool IsDicomFile(const std::string& path) {
    std::array<char, FileLayout::kMetaOffset> start = {};
    return Platform::IsFile(path) && Succeeds([&] {
               Platform::OpenDiskFile(path, Platform::FileAccess::kRead)->Read(start.data(), start.size());
           }) &&
           std::string_view(start.data(), start.size()).ends_with(FileLayout::kPrefix);
}

bool IsThere(const std::string& path) { return Platform::PathExists(path) || Platform::IsLink(path); }

// True when it is gone.
bool RemoveFile(const std::string& path) {
    return !IsThere(path) || Succeeds([&] { Platform::RemoveFile(path); });
}

// The names of what is a file, or leads to one.
std::vector<std::string> FilesIn(const std::string& folder) {
    std::vector<std::string> names;
    if (folder.empty()) return names;
    for (const Platform::FolderEntry& entry : Platform::ListFolder(folder)) {
        if (Platform::IsFile(Join(folder, entry.fName))) names.push_back(entry.fName);
    }
    return names;
}

// What the person who burns the disc has called it; empty when that cannot be told.
std::string FileSetIDIn(const std::string& folder) {
    constexpr size_t kLongestFileSetID = 16;
    std::array<char, kLongestFileSetID + 1> fileSetID = {};
    Succeeds([&] {
        TDicomFile directory(0, TFileSpec(Join(folder, kDirectoryFile)), 0);
        directory.OpenFile(Platform::FileAccess::kRead);
        if (directory.ReadFile()) {
            directory.GetDataSet()->GetText(Tags::kFileSetID, fileSetID.data(),
                                            static_cast<uint32_t>(fileSetID.size()));
        }
    });
    return fileSetID.data();
}

void TraceProblem(const std::string& line) {
    VantorHost::Trace::Write(VantorHost::TraceArea::kMedia, VantorHost::TraceLevel::kError, line);
}

}  // namespace

// The service and the burning area are asked for anew each time: recorders come and go.
std::unique_ptr<CCDBurn> TWritableCD::MakeBurner() {
    auto burner = std::make_unique<CCDBurn>();
    return burner->IsThere() ? std::move(burner) : nullptr;
}

std::unique_ptr<CCDBurn> TWritableCD::MakeBurnerWithDrive() {
    auto burner = MakeBurner();
    return burner != nullptr && burner->HasRecordableDrive() ? std::move(burner) : nullptr;
}

bool TWritableCD::CanBurnCDs() const { return MakeBurnerWithDrive() != nullptr; }

std::string TWritableCD::GetWriteCDDrive() const {
    const auto burner = MakeBurner();
    return burner == nullptr ? std::string() : burner->GetRecorderDriveLetter();
}

std::string TWritableCD::GetWriteFolderPath() const {
    const auto burner = MakeBurnerWithDrive();
    return burner == nullptr ? std::string()
                             : Platform::PathStyle::OfPlatform().WithoutLastSeparators(burner->GetBurnArea());
}

bool TWritableCD::BurnCD(Platform::WindowHandle window, const TellProgress& tellProgress) const {
    const auto burner = MakeBurner();
    if (burner == nullptr) return false;
    return burner->Burn({window, FileSetIDIn(burner->GetBurnArea()), tellProgress, TraceProblem});
}

bool TWritableCD::CDFolderIsEmpty() const {
    const std::string area = GetWriteFolderPath();
    return area.empty() || !Platform::IsFile(Join(area, kDirectoryFile));
}

// ---- The player ----

bool TWritableCD::HasViewerFiles(const std::string& root) const {
    return !root.empty() && Platform::IsFolder(Join(PlayerSourceIn(root), kPlayerFolder));
}

std::string TWritableCD::DestinationOr(const std::string& destination) const {
    return destination.empty() ? GetWriteFolderPath() : destination;
}

bool TWritableCD::AddViewer(const std::string& destination, const std::string& sourceRoot) const {
    const std::string target = DestinationOr(destination);
    const std::string source = PlayerSourceIn(sourceRoot);
    if (target.empty() || !Platform::IsFolder(source) || Platform::IsFolder(Join(target, kPlayerFolder))) {
        return false;
    }
    if (IsThere(Join(source, kDirectoryFile))) return false;
    FolderCopy copy(source, target);
    copy.Keep(IsDicomFile);
    if (copy.Run()) return true;
    copy.Undo();
    return false;
}

bool TWritableCD::DeleteViewer(const std::string& destination, const std::string& sourceRoot) const {
    const std::string target = DestinationOr(destination);
    if (target.empty()) return false;
    bool isGone = true;
    for (const std::string_view name : kPlayerFiles) isGone &= RemoveFile(Join(target, name));
    const std::string player = Join(target, kPlayerFolder);
    if (IsThere(player)) isGone &= RecursiveDeleteFolder(player);
    for (const std::string& name : FilesIn(PlayerSourceIn(sourceRoot))) {
        const std::string path = Join(target, name);
        if (!IsDicomFile(path)) isGone &= RemoveFile(path);
    }
    return isGone;
}

// ---- Folders ----

bool TWritableCD::RecursiveCopyFolder(const std::string& source, const std::string& destination) const {
    return !source.empty() && !destination.empty() && FolderCopy(source, destination).Run();
}

bool TWritableCD::RecursiveDeleteFolder(const std::string& folder) const {
    const Platform::PathStyle& style = Platform::PathStyle::OfPlatform();
    const std::string path = style.WithoutLastSeparators(folder);
    const std::string_view name = style.LastPart(path);
    const bool isRoot = style.EndsFolder(path) || style.WithoutLastSeparators(style.VolumeRoot(path)) == path;
    if (path.empty() || isRoot || name == "." || name == "..") return false;
    return Platform::RemoveFolderTree(path, [](const std::string& each) { return each.starts_with('.'); });
}

}  // namespace Vantor
