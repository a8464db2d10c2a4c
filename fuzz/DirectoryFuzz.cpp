// Arbitrary bytes as a DICOMDIR: everything that comes out is walked, sorted, copied to another directory,
// held across a refresh and beyond the directory, and written until nothing changes any more.

#include <cstdlib>

#include "directory/TDicomDirectory.h"
#include "fuzz/FuzzInput.h"
#include "records/TDicomUtils.h"
#include "tests/support/DirectoryBuilder.h"
#include "tests/support/MemoryStorage.h"

namespace {

using namespace Vantor;

// So many documents are asked everything: searching is allowed to take its time for each.
constexpr int32_t kAsked = 50;

void Ask(TDicomDirectory& directory, TDicomDoc& doc) {
    char text[TFileSpec::kPathSize];
    int32_t error = 0;
    doc.IsInUse();
    doc.GetDiskSpace();
    doc.CanAddChild(*directory.GetImageDocs()->begin(), 0, error);
    doc.GetSOPClassUID(text);
    doc.GetSOPInstanceUID(text);
    if (directory.FindDoc(&doc) == nullptr && doc.GetDocType() != TDicomDoc::kPrivate) doc.IsSameRecord(&doc);
    VantorFuzz::Run([&] { doc.CompleteRecord(); });
}

void AskStudy(TStudyDoc& study) {
    char text[TFileSpec::kPathSize];
    study.GetStudyModality(text, 16);
    study.GetStudyDate(text, sizeof(text), 0);
    study.GetStudyTime(text, 6);
    study.GetPatientName(text, 3);
    study.GetQuantixSRCount();
    TDicomUtils().CreateNewSeriesUID(study);
    study.GetStudyUID(text, sizeof(text));
    TDicomUtils().CreateNewStudyUID(text);
}

void AskSeries(TDicomDirectory& directory, TSeriesDoc& series) {
    char path[TFileSpec::kPathSize];
    series.CheckSequoiaLoRes();
    series.HasQuantix4Report(path);
    series.GetPatient();
    TDicomUtils().CreateNewImageUID(series);
    directory.SortImagesByNumber(&series);
}

void WalkAll(TDicomDirectory& directory) {
    int32_t asked = 0;
    for (TPatientDoc* patient : *directory.GetPatientDocs()) {
        TListOf<TDicomDoc> below;
        patient->GetChildDocs(below, false);
        if (patient->GetImageCount() > below.GetCount()) std::abort();
        for (TDicomDoc* doc : below) {
            if (++asked > kAsked) break;
            if (directory.GetImageDocs()->GetCount() > 0) Ask(directory, *doc);
        }
    }
    for (TStudyDoc* study : *directory.GetStudyDocs()) {
        AskStudy(*study);
        directory.SortSeriesByNumber(study);
    }
    for (TSeriesDoc* series : *directory.GetSeriesDocs()) AskSeries(directory, *series);
}

// Copies the first documents of each type, and the first patient whole.
void CopyTo(TDicomDirectory& target, TDicomDirectory& source) {
    int32_t error = 0;
    TListOf<TDicomDoc> docs;
    for (TPatientDoc* patient : *source.GetPatientDocs()) patient->GetChildDocs(docs, false);
    int32_t copied = 0;
    for (TDicomDoc* doc : docs) {
        if (++copied > kAsked) break;
        VantorFuzz::Run([&] { target.FindOrCreateDoc(doc, error); });
    }
    if (source.GetPatientDocs()->GetCount() == 0) return;
    TPatientDoc* const first = *source.GetPatientDocs()->begin();
    VantorFuzz::Run([&] {
        TDicomDoc* const copy = first->CopyToDirectory(&target, nullptr, true, error);
        copy->Discard();
    });
}

VantorTest::Bytes Rewrite(VantorTest::MemoryStorage& storage) {
    TDicomDirectory directory(TFileSpec("DICOMDIR", &storage), 0);
    if (directory.OpenForUpdating()) directory.WriteDICOMDIR();
    return storage.GetContent("DICOMDIR");
}

// The first time damage is left behind, and code strings in upper case make some records others.
void WriteUntilStable(VantorTest::MemoryStorage& storage) {
    Rewrite(storage);
    const VantorTest::Bytes written = Rewrite(storage);
    if (Rewrite(storage) != written) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    VantorTest::MemoryStorage storage;
    storage.SetContent("DICOMDIR", VantorFuzz::ExactCopy(data, size));
    storage.SetContent("EMPTY", VantorTest::DirectoryBuilder().Build());
    TDicomDoc* held = nullptr;
    VantorFuzz::Run([&] {
        TDicomDirectory other(TFileSpec("EMPTY", &storage), 0);
        TDicomDirectory directory(TFileSpec("DICOMDIR", &storage), 0);
        if (directory.GetStudyDocs()->GetCount() > 0) held = *directory.GetStudyDocs()->begin();
        if (held != nullptr) held->Register();
        WalkAll(directory);
        CopyTo(other, directory);
        directory.RefreshDocs();
        WalkAll(directory);
        directory.ClearAllDocs();
    });
    VantorFuzz::Run([&] { WriteUntilStable(storage); });
    if (held != nullptr) {
        held->GetDataSet();
        held->Release();
        held->Discard();
    }
    return 0;
}
