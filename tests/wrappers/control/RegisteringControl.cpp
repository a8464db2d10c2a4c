// A library as that of an image control: it registers itself when it is asked to. Here it notes in the
// current folder what it was asked, with nothing but the C library, so that the system can unload it.

#include <cstdint>
#include <cstdio>

namespace {

void Note(const char* text) {
    if (std::FILE* const notes = std::fopen("notes.txt", "a")) {
        std::fputs(text, notes);
        std::fclose(notes);
    }
}

bool IsToFail() {
    std::FILE* const wish = std::fopen("fail.txt", "r");
    if (wish != nullptr) std::fclose(wish);
    return wish != nullptr;
}

class Presence {
  public:
    Presence() { Note("load "); }
    ~Presence() { Note("unload "); }
    Presence(const Presence&) = delete;
    Presence& operator=(const Presence&) = delete;
};

const Presence kPresence;

constexpr int32_t kSucceeded = 0;
constexpr int32_t kFailed = -1;

}  // namespace

extern "C" int32_t DllRegisterServer();
extern "C" int32_t DllUnregisterServer();

int32_t DllRegisterServer() {
    Note("register ");
    return IsToFail() ? kFailed : kSucceeded;
}

int32_t DllUnregisterServer() {
    Note("unregister ");
    return IsToFail() ? kFailed : kSucceeded;
}
