#include "media/FolderCopy.h"

#include <algorithm>
#include <set>
#include <utility>

#include "dicom/Attempt.h"
#include "platform/Ascii.h"
#include "platform/FileSystem.h"
#include "platform/PathStyle.h"

namespace Vantor {

using Platform::FolderEntry;

FolderCopy::FolderCopy(std::string source, std::string destination)
    : fSource(std::move(source)), fDestination(std::move(destination)) {}

bool FolderCopy::Run() { return Platform::IsFolder(fSource) && CopyFolder(fSource, fDestination); }

bool FolderCopy::CopyFolder(const std::string& from, const std::string& to) {
    if (LeadsBack(from)) return false;
    if (!Platform::IsFolder(to)) {
        if (!Succeeds([&] { Platform::CreateFolder(to); })) return false;
        fMadeFolders.push_back(to);
    }
    fFoldersOnTheWay.insert(fFoldersOnTheWay.end(), {from, to});
    const bool isWhole = CopyEntries(from, to);
    fFoldersOnTheWay.resize(fFoldersOnTheWay.size() - 2);
    return isWhole;
}

bool FolderCopy::CopyEntries(const std::string& from, const std::string& to) {
    const Platform::PathStyle& style = Platform::PathStyle::OfPlatform();
    const auto entries = Platform::ReadFolder(from);
    if (!entries) return false;
    std::set<std::string> names;
    bool isWhole = true;
    for (const FolderEntry& entry : *entries) {
        isWhole &= names.insert(Platform::UpperCased(entry.fName)).second &&
                   CopyEntry(style.Join(from, entry.fName), style.Join(to, entry.fName));
    }
    return isWhole;
}

bool FolderCopy::CopyEntry(const std::string& from, const std::string& to) {
    if (Platform::IsFolder(from)) return !Platform::IsLink(to) && CopyFolder(from, to);
    if (fIsKept != nullptr && fIsKept(to)) return false;
    const bool isNew = !Platform::PathExists(to);
    const bool isCopied = Succeeds([&] { Platform::CopyFileReplacing(from, to); });
    if (isNew && isCopied) fMadeFiles.push_back(to);
    return isCopied;
}

void FolderCopy::Undo() const {
    for (const std::string& file : fMadeFiles) Succeeds([&] { Platform::RemoveFile(file); });
    for (auto folder = fMadeFolders.rbegin(); folder != fMadeFolders.rend(); ++folder) {
        Succeeds([&] { Platform::RemoveFolder(*folder); });
    }
}

// A link may lead to a folder around it, and the copy may grow inside what is being copied: neither has an
// end.
bool FolderCopy::LeadsBack(const std::string& folder) const {
    return Platform::IsSameFile(folder, fDestination) ||
           std::any_of(fFoldersOnTheWay.begin(), fFoldersOnTheWay.end(),
                       [&](const std::string& each) { return Platform::IsSameFile(folder, each); });
}

}  // namespace Vantor
