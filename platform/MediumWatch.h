#pragma once

#include <string>

namespace Vantor::Platform {

// What the system is about to be asked to do to a disk file or folder.
enum class MediumChange {
    kCreateFile,  // or empty one that is there
    kWrite,
    kSetLength,
    kFlush,
    kMove,
    kRemoveFile,
    kCreateFolder,
    kRemoveFolder,
};

// Is told of every change before the system is asked for it, so that a test can end a program between any two
// of them, or have one fail. It is not told of room that is set aside, of rights and times, of streams inside
// structured storage, of what goes by itself with an open file, and of what a library of the system writes.
class MediumWatch {
  public:
    virtual ~MediumWatch() = default;

    // `path` is the one on disk; `to` is empty unless a file is moved there. A FileException that this throws
    // stands for the system's refusal: nothing is changed. May be called by several threads at once.
    virtual void BeforeChange(MediumChange change, const std::string& path, const std::string& to) = 0;
};

// Puts a watch in place until destroyed; nested ones end in reverse order. There is none otherwise.
class PlacedMediumWatch {
  public:
    // `watch` is not owned and must outlive this object.
    explicit PlacedMediumWatch(MediumWatch& watch);
    ~PlacedMediumWatch();
    PlacedMediumWatch(const PlacedMediumWatch&) = delete;
    PlacedMediumWatch& operator=(const PlacedMediumWatch&) = delete;

  private:
    MediumWatch* fPrevious;
};

// For the ports. Announces a change to the watch; throws what that throws.
void AnnounceChange(MediumChange change, const std::string& path, const std::string& to = std::string());

// The same where a failure has nobody to be told to: false when the change is refused.
bool MayChange(MediumChange change, const std::string& path) noexcept;

}  // namespace Vantor::Platform
