#include "platform/Clipboard.h"

#include <mutex>

namespace Vantor::Platform {

namespace {

// The process's own. Its room is used again for the next picture.
class Board {
  public:
    static Board& Get() {
        static Board& board = *new Board;  // never destroyed: see platform/Clock.cpp
        return board;
    }

    void Put(const std::vector<uint8_t>& bitmap) {
        const std::lock_guard<std::mutex> guard(fLock);
        fBitmap.assign(bitmap.begin(), bitmap.end());
    }

    bool Use(const std::function<void(const uint8_t*, size_t)>& use) const {
        const std::lock_guard<std::mutex> guard(fLock);
        if (fBitmap.empty()) return false;
        use(fBitmap.data(), fBitmap.size());
        return true;
    }

    void Clear() {
        const std::lock_guard<std::mutex> guard(fLock);
        fBitmap = {};
    }

  private:
    mutable std::mutex fLock;
    std::vector<uint8_t> fBitmap;  // empty for none
};

}  // namespace

bool PutBitmapOnClipboard(const std::vector<uint8_t>& bitmap) {
    if (bitmap.empty()) return false;
    Board::Get().Put(bitmap);
    return true;
}

bool UseBitmapOnClipboard(const std::function<void(const uint8_t* bytes, size_t size)>& use) {
    return Board::Get().Use(use);
}

bool ClearClipboard() {
    Board::Get().Clear();
    return true;
}

}  // namespace Vantor::Platform
