#pragma once

#include <memory>
#include <string>

#include "platform/File.h"
#include "platform/FileMark.h"

namespace Vantor::Platform {

// Opens an existing disk file whose content is to be replaced as a whole. As OpenDiskFile for reading and
// writing; what it adds is that until this file is destroyed nobody else gets the file at that path this way,
// also where a system has to close a file before another one can take its place.
std::unique_ptr<File> OpenDiskFileToReplace(const std::string& path);

// True for a file that is there only while another one is open to be replaced, and that nobody else can read,
// and for new content that has not been put in place: of a replacement under way, or left behind by a program
// that was ended in the middle of one. Neither is a file of the medium.
bool IsUnfinished(const std::string& path);

// New content for a file: written in full beside it, and then put in its place at once, so that nobody finds
// half of it, whatever fails on the way. Where there was no file at the beginning, one that somebody else has
// made meanwhile is not replaced (kSharingViolation).
class FileReplacement {
  public:
    // Whether it may replace a file: one that is there at the beginning, or none.
    enum class Place { kAny, kFree };

    // Creates the new file, empty, in the folder of `path`, where there need not be a file yet. A link is
    // followed: what it leads to is replaced. Throws FileException, which names `path`.
    explicit FileReplacement(const std::string& path, Place place = Place::kAny);

    // Removes the new file unless it is in place.
    ~FileReplacement();
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;

    // The new file, open for writing.
    File& GetFile();

    // Hands the new file to the medium, closes it and gives it the path, with the rights of the file that was
    // there, and with a later last-write time, however coarse the volume keeps times. `held` is the old file
    // as this program has it open to replace it, or null: it is of no use afterwards, but has to be kept
    // until the caller has done what the others must wait for. Somebody else who is just reading the old file
    // is waited for, where he is in the way, for up to ten seconds. Gives the mark of what is at the path
    // now. Throws FileException; the old file is then as it was, and `held` may be closed.
    FileMark PutInPlace(File* held);

  private:
    class State;
    std::unique_ptr<State> fState;
};

}  // namespace Vantor::Platform
