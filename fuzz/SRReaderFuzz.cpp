// Arbitrary bytes as a structured report: every question that TSRFile answers.

#include "dicom/TSRFile.h"
#include "fuzz/FuzzInput.h"
#include "tests/support/MemoryStorage.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    VantorTest::MemoryStorage storage;
    storage.SetContent("report", VantorFuzz::ExactCopy(data, size));
    Vantor::TSRFile report(0, Vantor::TFileSpec("report", &storage));
    // None of these may throw at all, so nothing is caught here.
    char text[64];
    uint32_t length = 0;
    report.CheckForQuantixReport();
    if (report.GetQuantixReportSize(length)) {
        VantorFuzz::Require(length <= size);
        std::vector<uint8_t> block(length);
        VantorFuzz::Require(report.GetQuantixReport(block.data(), length));
    }
    report.IsSRModality();
    report.GetContentDate(text, sizeof(text), 0);
    report.GetCompletionFlag(text, 3);
    report.GetVerificationFlag(text, 1);
    report.GetReportStatus(text, sizeof(text));
    return 0;
}
