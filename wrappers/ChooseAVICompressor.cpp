#include "wrappers/ChooseAVICompressor.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "host/CompressorDialog.h"
#include "host/VideoCompressors.h"
#include "platform/VideoCompression.h"

namespace VantorWrappers {

namespace {

namespace Platform = Vantor::Platform;
using VantorHost::CompressorChoice;
using VantorHost::CompressorDialog;
using VantorHost::VideoCompressor;
using VantorHost::VideoCompressors;

constexpr wchar_t kTitle[] = L"Choose Compressor";
constexpr wchar_t kUncompressed[] = L"Uncompressed";
constexpr int32_t kBestQuality = 100;
constexpr int32_t kSystemUnits = Platform::kBestQuality / kBestQuality;

HostString DescribeHostsCompressor(uint32_t handler) {
    const std::shared_ptr<VideoCompressor> compressor = VideoCompressors::Find(handler);
    return compressor == nullptr || handler == Platform::kUncompressedHandler ? HostString()
                                                                              : compressor->GetDescription();
}

std::vector<AVICompressor> GetHostsCompressors() {
    std::vector<AVICompressor> compressors;
    for (const auto& compressor : VideoCompressors::GetAll()) {
        compressors.push_back({compressor->GetHandler(), compressor->GetDescription()});
    }
    return compressors;
}

std::vector<AVICompressor> GetRealCompressors() {
    const auto installed = Platform::ListSystemCompressors();
    if (!installed) return GetHostsCompressors();
    std::vector<AVICompressor> compressors;
    for (const Platform::SystemCompressor& each : *installed) {
        compressors.push_back({each.fHandler, each.fDescription});
    }
    return compressors;
}

}  // namespace

bool ChooseAVICompressor::PresentDialog(uint32_t handler, int32_t quality, Platform::WindowHandle window) {
    CompressorChoice choice{handler, std::clamp(quality, 0, kBestQuality) * kSystemUnits};
    if (!CompressorDialog::Present(kTitle, choice, window)) return false;
    fHandler = choice.fHandler;
    fQuality = choice.fQuality / kSystemUnits;
    fCompressorString = GetCompressorString();
    return true;
}

HostString ChooseAVICompressor::GetCompressorString() const {
    const std::optional<HostString> description = Platform::DescribeSystemCompressor(fHandler);
    return description ? *description : DescribeHostsCompressor(fHandler);
}

std::vector<AVICompressor> ChooseAVICompressor::GetCompressors() {
    std::vector<AVICompressor> compressors = {{Platform::kUncompressedHandler, kUncompressed}};
    for (AVICompressor& each : GetRealCompressors()) {
        if (each.fHandler != Platform::kUncompressedHandler) compressors.push_back(std::move(each));
    }
    return compressors;
}

}  // namespace VantorWrappers
