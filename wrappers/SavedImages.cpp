#include "wrappers/SavedImages.h"

#include <new>
#include <random>
#include <utility>

#include "dicom/TDataSetEdit.h"
#include "dicom/TException.h"
#include "dicom/TFileRewrite.h"
#include "dicom/Tags.h"
#include "dicom/ValueText.h"
#include "platform/FileException.h"
#include "records/TDicomUtils.h"
#include "wrappers/ImageFileEditor.h"
#include "wrappers/SavedImagesState.h"

namespace VantorWrappers {

using Vantor::TDataSetEdit;
using Vantor::TException;
using Vantor::TFileRewrite;

namespace {

// Below the library's root, two numbers that nobody has had before.
std::string MakeUid() {
    std::random_device device;
    std::uniform_int_distribution<uint64_t> number(1);
    return Vantor::TDicomUtils().GetRootUID(true) + std::to_string(number(device)) + '.' +
           std::to_string(number(device));
}

void RewriteUids(const std::string& path, const UidMap& uids) {
    const auto find = [&uids](std::string_view uid) -> std::optional<std::string> {
        const auto found = uids.find(uid);
        if (found == uids.end()) return std::nullopt;
        return found->second;
    };
    TDataSetEdit edit;
    edit.SetRule([&find](const TDataSetEdit::Element& element) {
        auto replaced = ReplaceUidsOf(element, find);
        return replaced ? TDataSetEdit::Fate::Replace(std::move(*replaced)) : TDataSetEdit::Fate::Keep();
    });
    TFileRewrite rewrite(path);
    const auto elements = edit.Apply(rewrite.GetElements(), rewrite.GetEncoding());
    rewrite.Begin(path, rewrite.GetMeta(), elements, TFileRewrite::Rest::kKept);
    rewrite.CopyNext(rewrite.GetSizeToCopy());
    rewrite.Finish();
}

}  // namespace

SavedImages::SavedImages() : fState(std::make_unique<State>()) {}

SavedImages::~SavedImages() = default;

int32_t SavedImages::Finish() { return fState->FinishAll(); }

void SavedImages::State::Add(const std::string& uid) {
    const std::lock_guard<std::mutex> guard(fLock);
    if (!uid.empty()) fImages.insert(uid);
}

bool SavedImages::State::IsAmong(std::string_view uid) const {
    const std::lock_guard<std::mutex> guard(fLock);
    return fImages.find(uid) != fImages.end();
}

std::optional<std::string> SavedImages::State::FindNewUid(std::string_view uid) const {
    const std::lock_guard<std::mutex> guard(fLock);
    const auto found = fNewUids.find(uid);
    if (found == fNewUids.end()) return std::nullopt;
    return found->second;
}

std::string SavedImages::State::FindReplacement(std::string_view uid) {
    const std::lock_guard<std::mutex> guard(fLock);
    const auto [found, isNew] = fReplacements.try_emplace(std::string(uid));
    if (isNew) found->second = MakeUid();
    return found->second;
}

void SavedImages::State::NoteSaved(const std::string& uid, const std::string& newUid, const std::string& path,
                                   UidMap unresolved) {
    const std::lock_guard<std::mutex> guard(fLock);
    fNewUids[uid] = newUid;
    if (!unresolved.empty()) fFiles.push_back({path, std::move(unresolved)});
}

int32_t SavedImages::State::FinishAll() {
    const std::lock_guard<std::mutex> guard(fLock);
    int32_t failure = 0;
    for (const File& file : std::exchange(fFiles, {})) {
        UidMap uids;
        for (const auto& [named, uid] : file.fUnresolved) {
            const auto found = fNewUids.find(uid);
            if (found != fNewUids.end() && found->second != named) uids[named] = found->second;
        }
        if (uids.empty()) continue;
        const int32_t number = FailureNumberOf([&] { RewriteUids(file.fPath, uids); });
        if (number != 0) failure = number;
    }
    fNewUids.clear();
    fReplacements.clear();
    return failure;
}

std::optional<std::string> ReplaceUidsOf(const TDataSetEdit::Element& element,
                                         const Vantor::UidFinder& find) {
    const bool isItem = element.fTag.fGroup == Vantor::Tags::kItem.fGroup;
    const bool mayHaveUids = element.fVr == Vantor::Vr::kUI || element.fVr == Vantor::Vr::kNotKnown;
    if (element.fIsSequence || isItem || !mayHaveUids) return std::nullopt;
    return Vantor::ReplaceUids(element.fValue, find);
}

int32_t FailureNumberOf(const std::function<void()>& work) {
    try {
        work();
        return 0;
    } catch (TException* thrown) {
        const std::unique_ptr<TException> error(thrown);
        const bool isDeflated = error->GetErrorText() == std::string_view(TFileRewrite::kDeflatedFile);
        return isDeflated ? ImageFileEditor::kDeflated : ImageFileEditor::kNoDicomFile;
    } catch (const CharacterSetFailure&) {
        return ImageFileEditor::kCharacterSet;
    } catch (const Vantor::Platform::FileException& error) {
        return error.GetOsError() != 0 ? error.GetOsError() : ImageFileEditor::kOtherFailure;
    } catch (const std::bad_alloc&) {
        return ImageFileEditor::kNoMemory;
    } catch (const std::exception&) {
        return ImageFileEditor::kOtherFailure;
    }
}

}  // namespace VantorWrappers
