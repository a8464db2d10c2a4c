// Documents of a hostile medium are taken into another directory, or into their own, bit by bit, while the
// source is read again or loses a document. What was imported comes back from the DICOMDIR that is written,
// and nothing beside the two media is touched.

#include "directory/TDicomDirectory.h"
#include "fuzz/HostileMedium.h"

namespace {

using namespace Vantor;
using VantorFuzz::HostileMedium;
using VantorFuzz::Require;
using VantorFuzz::Run;

constexpr int kMostSteps = 200;

// Takes documents of the source, from the top down, that the choices name.
void ChooseDocs(TDicomDirectory& source, TListOf<TDicomDoc>& chosen, VantorFuzz::Choices& input) {
    TListOf<TDicomDoc> all;
    for (TPatientDoc* patient : *source.GetPatientDocs()) {
        all.InsertItemAt(TListOf<TDicomDoc>::kAtEnd, patient);
        patient->GetChildDocs(all, false);
    }
    const uint32_t choice = input.Number();
    constexpr uint32_t kBits = 32;
    uint32_t place = 0;
    for (TDicomDoc* doc : all) {
        if ((choice >> (place++ % kBits) & 1) != 0) chosen.InsertItemAt(TListOf<TDicomDoc>::kAtEnd, doc);
    }
}

void Disturb(TDicomDirectory& source, uint8_t choice) {
    constexpr uint8_t kRefresh = 1, kClear = 2, kDiscard = 3;
    if (choice == kRefresh) source.RefreshDocs();
    if (choice == kClear) source.ClearAllDocs();
    if (choice == kDiscard && source.GetStudyDocs()->GetCount() > 0) {
        (*source.GetStudyDocs()->begin())->Discard();
    }
}

// Gives whether the import ended; a failure at a file is tried again, as hosts do that make room.
bool Import(TDicomDirectory& target, TDicomDirectory& source, VantorFuzz::Choices& input) {
    int32_t index = 0, count = 0, doneKB = 0, totalKB = 0;
    char message[TDicomDirectory::kMessageSize] = {};
    const uint8_t disturbance = input.Byte();
    bool isDone = false;
    for (int step = 0; step < kMostSteps && !isDone; ++step) {
        Run([&] { isDone = target.ImportDocs(1, index, count, doneKB, totalKB, message); });
        if (index == 0) break;
        Require(index <= count && doneKB >= 0 && totalKB >= 0);
        if (step == disturbance / 4) Run([&] { Disturb(source, disturbance % 4); });
    }
    target.ClearDocsToMove();
    return isDone;
}

void Transfer(const HostileMedium& medium, VantorFuzz::Choices& input) {
    const bool isOwn = input.Byte() >= 0xC0;
    TDicomDirectory source(medium.GetDirectorySpec(), 0);
    TDicomDirectory other(medium.MakeTarget(), 0);
    TDicomDirectory& target = isOwn ? source : other;
    {
        TListOf<TDicomDoc> docs;
        ChooseDocs(source, docs, input);
        target.SetImportDocs(docs);
    }
    Import(target, source, input);
    if (!target.IsOpen()) return;
    target.WriteDICOMDIR();
    VantorFuzz::RequireSameWhenReadAgain(target);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    constexpr size_t kChoices = 6;
    VantorFuzz::Choices input(data, size);
    const VantorTest::Bytes first = input.Take(kChoices);
    VantorFuzz::Choices choices(first.data(), first.size());
    const HostileMedium medium(input);
    Run([&] { Transfer(medium, choices); });
    medium.RequireUntouchedSurroundings();
    return 0;
}
