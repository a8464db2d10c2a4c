// The data set core: finding, putting and walking items, by the number of elements.

#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

#include "dicom/TDicomDataSet.h"

namespace {

using Vantor::Tag;
using Vantor::TDicomDataSet;
namespace Vr = Vantor::Vr;

constexpr uint16_t kElementsPerGroup = 50;
constexpr char kValue[] = "sixteen bytes of";
constexpr uint32_t kValueLength = sizeof(kValue) - 1;

// The n-th of the tags that the benchmarks use, ascending, in even groups.
Tag TagAt(int64_t index) {
    return {static_cast<uint16_t>(0x0008 + 2 * (index / kElementsPerGroup)),
            static_cast<uint16_t>(0x0010 + 2 * (index % kElementsPerGroup))};
}

std::unique_ptr<TDicomDataSet> EmptyDataSet() {
    return std::make_unique<TDicomDataSet>(true, false, 10240, 10240, 0, 0);
}

std::unique_ptr<TDicomDataSet> DataSetOf(int64_t count) {
    auto dataSet = EmptyDataSet();
    for (int64_t index = 0; index < count; ++index) {
        dataSet->PutElement(TagAt(index), Vr::kLO, kValueLength, kValue, kValueLength);
    }
    return dataSet;
}

void Find(benchmark::State& state, Tag tag) {
    const auto dataSet = DataSetOf(state.range(0));
    char value[kValueLength];
    for (auto _ : state) {
        benchmark::DoNotOptimize(dataSet->FindElement(tag, nullptr, nullptr, value, sizeof(value)));
    }
}

void FindEarly(benchmark::State& state) { Find(state, TagAt(1)); }
void FindMiddle(benchmark::State& state) { Find(state, TagAt(state.range(0) / 2)); }
void FindLast(benchmark::State& state) { Find(state, TagAt(state.range(0) - 1)); }
void FindAbsent(benchmark::State& state) { Find(state, {0x7FE0, 0x0010}); }
BENCHMARK(FindEarly)->Arg(10)->Arg(100)->Arg(1000);
BENCHMARK(FindMiddle)->Arg(10)->Arg(100)->Arg(1000);
BENCHMARK(FindLast)->Arg(10)->Arg(100)->Arg(1000);
BENCHMARK(FindAbsent)->Arg(10)->Arg(100)->Arg(1000);

void PutInOrder(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(DataSetOf(state.range(0)));
    state.SetComplexityN(state.range(0));
}
BENCHMARK(PutInOrder)->Arg(10)->Arg(100)->Arg(1000)->Complexity();

void PutOutOfOrder(benchmark::State& state) {
    for (auto _ : state) {
        const auto dataSet = EmptyDataSet();
        for (int64_t index = state.range(0) - 1; index >= 0; --index) {
            dataSet->PutElement(TagAt(index), Vr::kLO, kValueLength, kValue, kValueLength);
        }
        benchmark::DoNotOptimize(dataSet->GetDataSet());
    }
}
BENCHMARK(PutOutOfOrder)->Arg(10)->Arg(100)->Arg(1000);

std::unique_ptr<TDicomDataSet> SequenceOf(int64_t count, int32_t& sequence) {
    const auto item = DataSetOf(3);
    auto dataSet = std::make_unique<TDicomDataSet>(true, false, 1 << 20, 1 << 20, 0, 0);
    dataSet->PutElement(0x0004, 0x1220, Vr::kSQ, 0, nullptr, 0, &sequence);
    for (int64_t index = 0; index < count; ++index) {
        dataSet->AddItem(sequence, item->GetDataSet(), static_cast<uint32_t>(item->GetDataSetSize()));
    }
    return dataSet;
}

void WalkItems(benchmark::State& state) {
    int32_t sequence = 0;
    const auto dataSet = SequenceOf(state.range(0), sequence);
    for (auto _ : state) benchmark::DoNotOptimize(dataSet->CountItemsInSequence(sequence));
    state.SetComplexityN(state.range(0));
}
BENCHMARK(WalkItems)->Arg(10)->Arg(1000)->Arg(100000)->Complexity();

void AddItems(benchmark::State& state) {
    int32_t sequence = 0;
    for (auto _ : state) benchmark::DoNotOptimize(SequenceOf(state.range(0), sequence));
    state.SetComplexityN(state.range(0));
}
BENCHMARK(AddItems)->Arg(10)->Arg(1000)->Arg(100000)->Complexity();

}  // namespace
