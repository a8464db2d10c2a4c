#include "platform/VideoCompression.h"

namespace Vantor::Platform {

std::optional<std::vector<SystemCompressor>> ListSystemCompressors() { return std::nullopt; }

std::optional<std::wstring> DescribeSystemCompressor(uint32_t /*handler*/) { return std::nullopt; }

std::optional<CompressionChoice> ShowCompressorDialog(const std::wstring& /*title*/,
                                                      const CompressionChoice& /*first*/,
                                                      WindowHandle /*window*/) {
    return std::nullopt;
}

}  // namespace Vantor::Platform
