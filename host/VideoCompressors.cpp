#include "host/VideoCompressors.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace VantorHost {

namespace {

using Compressor = std::shared_ptr<VideoCompressor>;

class Registered {
  public:
    static Registered& Get() {
        // Never destroyed: a host's own objects may use the library until the process ends.
        static Registered& registered = *new Registered;
        return registered;
    }

    // The one before with this handler goes once the lock is free, which its end may need.
    void Add(Compressor compressor) {
        Compressor previous;
        const uint32_t handler = compressor->GetHandler();
        const std::lock_guard<std::mutex> guard(fLock);
        const auto place = Find(handler);
        if (place != fCompressors.end()) {
            previous = std::move(place->fCompressor);
            fCompressors.erase(place);
        }
        fCompressors.push_back({handler, std::move(compressor)});
    }

    std::vector<Compressor> GetAll() const {
        std::vector<Compressor> all;
        const std::lock_guard<std::mutex> guard(fLock);
        for (const Entry& entry : fCompressors) all.push_back(entry.fCompressor);
        return all;
    }

    Compressor GetWith(uint32_t handler) {
        const std::lock_guard<std::mutex> guard(fLock);
        const auto place = Find(handler);
        return place == fCompressors.end() ? nullptr : place->fCompressor;
    }

  private:
    struct Entry {
        uint32_t fHandler;
        Compressor fCompressor;
    };

    std::vector<Entry>::iterator Find(uint32_t handler) {
        return std::find_if(fCompressors.begin(), fCompressors.end(),
                            [handler](const Entry& entry) { return entry.fHandler == handler; });
    }

    mutable std::mutex fLock;
    std::vector<Entry> fCompressors;  // one of each handler
};

}  // namespace

void VideoCompressors::Register(std::shared_ptr<VideoCompressor> compressor) {
    if (compressor != nullptr) Registered::Get().Add(std::move(compressor));
}

std::vector<std::shared_ptr<VideoCompressor>> VideoCompressors::GetAll() {
    return Registered::Get().GetAll();
}

std::shared_ptr<VideoCompressor> VideoCompressors::Find(uint32_t handler) {
    return Registered::Get().GetWith(handler);
}

}  // namespace VantorHost
