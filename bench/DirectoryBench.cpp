// Loading a DICOMDIR by the number of its patients, each with one study of ten series of 110 images:
// 1,112, 11,120 and 111,200 records. Sorting images that are in reverse order.

#include <benchmark/benchmark.h>

#include <string>

#include "directory/TDicomDirectory.h"
#include "tests/support/DirectoryBuilder.h"
#include "tests/support/TestFolder.h"

namespace {

using namespace Vantor;
using namespace VantorTest;

constexpr int kSeriesInStudy = 10;
constexpr int kImagesInSeries = 110;

std::string Medium(const TestFolder& folder, int patients) {
    DirectoryBuilder media;
    int number = 0;
    for (int patient = 0; patient < patients; ++patient) {
        const int study = media.AddStudy(media.AddPatient(patient), patient);
        for (int index = 0; index < kSeriesInStudy; ++index) {
            const int series = media.AddSeries(study, ++number);
            for (int image = 0; image < kImagesInSeries; ++image) {
                media.AddInstance(series, number * kImagesInSeries + image);
            }
        }
    }
    return folder.WriteFile("DICOMDIR", media.Build());
}

void LoadDirectory(benchmark::State& state) {
    const TestFolder folder;
    const TFileSpec spec(Medium(folder, static_cast<int>(state.range(0))));
    for (auto _ : state) {
        TDicomDirectory directory(spec, 0);
        benchmark::DoNotOptimize(directory.GetImageDocs()->GetCount());
    }
    constexpr int kRecordsOfPatient = 2 + kSeriesInStudy * (1 + kImagesInSeries);
    state.SetItemsProcessed(state.iterations() * state.range(0) * kRecordsOfPatient);
}
BENCHMARK(LoadDirectory)->Arg(1)->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond);

void SortReversedImages(benchmark::State& state) {
    TSeriesDoc series(nullptr, nullptr);
    int32_t error = 0;
    for (auto number = static_cast<int32_t>(state.range(0)); number > 0; --number) {
        auto* const image = new TImageDoc(nullptr, nullptr, 0);
        image->SetImageNumber(number);
        series.AddChild(image, nullptr, true, error);
    }
    const TestFolder folder;
    TDicomDirectory directory(TFileSpec(folder.WriteFile("DICOMDIR", DirectoryBuilder().Build())), 0);
    for (auto _ : state) {
        state.PauseTiming();
        TListOf<TImageDoc>& images = *series.GetImageDocs();
        const std::vector<TImageDoc*> reversed(images.rbegin(), images.rend());
        if ((*images.begin())->GetImageNumber() == 1) {
            images.RemoveAllItems();
            for (TImageDoc* image : reversed) images.InsertItemAt(images.kAtEnd, image);
        }
        state.ResumeTiming();
        directory.SortImagesByNumber(&series);
    }
}
BENCHMARK(SortReversedImages)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace
