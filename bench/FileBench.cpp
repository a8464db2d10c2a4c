// Reading files: headers by the size of the file, which should not matter, and frames.

#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

#include "dicom/TDicomFile.h"
#include "dicom/TImageFile.h"
#include "tests/support/FileBuilder.h"
#include "tests/support/TestFolder.h"

namespace {

using namespace Vantor;
using namespace VantorTest;

constexpr uint32_t kFrameSize = 1 << 20;
constexpr uint32_t kIdentifyingElements = 100;

// A native multi-frame file whose frames are a hole in the file: its size is made without writing it.
std::string SparseCineLoop(const TestFolder& folder, uint32_t frames) {
    FileBuilder file;
    for (uint16_t index = 0; index < kIdentifyingElements; ++index) {
        file.Data().Text({0x0018, static_cast<uint16_t>(0x1000 + 2 * index)}, Vr::kLO, "identifying text");
    }
    file.Data()
        .Text(Tags::kNumberOfFrames, Vr::kIS, std::to_string(frames))
        .Header(Tags::kPixelData, Vr::kOB, frames * kFrameSize);
    const Bytes start = file.Build();
    const std::string path = folder.WriteFile("loop" + std::to_string(frames), start);
    std::filesystem::resize_file(path, start.size() + uint64_t{frames} * kFrameSize);
    return path;
}

// By the number of megabytes of pixel data.
void ReadMetaHeader(benchmark::State& state) {
    const TestFolder folder;
    const TFileSpec spec(SparseCineLoop(folder, static_cast<uint32_t>(state.range(0))));
    for (auto _ : state) {
        TDicomFile file(0, spec, 0);
        file.OpenFile(Platform::FileAccess::kRead);
        benchmark::DoNotOptimize(file.ReadMetaHeader());
        file.CloseFile();
    }
}
BENCHMARK(ReadMetaHeader)->Arg(1);

void ReadAllButPixels(benchmark::State& state) {
    const TestFolder folder;
    const TFileSpec spec(SparseCineLoop(folder, static_cast<uint32_t>(state.range(0))));
    for (auto _ : state) {
        TImageFile file(0, spec, 0);
        benchmark::DoNotOptimize(file.GetDataSet());
    }
}
BENCHMARK(ReadAllButPixels)->Arg(1)->Arg(32)->Arg(1024);

void LoadFrame(benchmark::State& state) {
    const TestFolder folder;
    const auto frames = static_cast<uint32_t>(state.range(0));
    TImageFile file(0, TFileSpec(SparseCineLoop(folder, frames)), 0);
    int32_t frame = 0;
    for (auto _ : state) {
        frame = frame % static_cast<int32_t>(frames) + 1;
        benchmark::DoNotOptimize(file.LoadFrame(frame));
    }
    state.SetBytesProcessed(state.iterations() * kFrameSize);
}
BENCHMARK(LoadFrame)->Arg(32)->Arg(1024);

}  // namespace
