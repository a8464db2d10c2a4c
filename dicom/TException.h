#pragma once

#include <cstdint>

namespace Vantor {

// Error numbers of TException. Hosts and traces know these numbers.
namespace ErrorNumbers {
inline constexpr int32_t kFileBufferMemory = 0;
inline constexpr int32_t kDataSetMemory = 100;
inline constexpr int32_t kSequenceStructure = 101;
inline constexpr int32_t kRecordStructure = 102;
inline constexpr int32_t kPrivateGroup = 104;
inline constexpr int32_t kFileTooLarge = 106;
}  // namespace ErrorNumbers

// The library's exception. It is thrown by pointer: the thrower allocates it, the catcher owns it.
//
//     catch (TException* thrown) {
//         std::unique_ptr<TException> error(thrown);
//         …
//     }
class TException {
  public:
    static constexpr int32_t kMaximumTextLength = 255;

    // Copies at most kMaximumTextLength characters of the text.
    TException(int32_t errorNumber, const char* text);

    int32_t GetErrorNumber() const { return fErrorNumber; }

    // NUL-terminated; valid as long as the exception.
    const char* GetErrorText() const { return fErrorText; }

  private:
    int32_t fErrorNumber;
    char fErrorText[kMaximumTextLength + 1];
};

}  // namespace Vantor
