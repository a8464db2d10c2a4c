#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/FileException.h"
#include "platform/StructuredStorage.h"
#include "tests/support/TestFolder.h"

namespace VantorTest {

// A structured storage in memory, for what a real one or a disk does too seldom: full media, streams that
// become shorter while they are read, renames that fail. Stream names are the same in either case.
class MemoryStorage : public Vantor::Platform::StructuredStorage {
  public:
    // The failures that can be asked for.
    enum class Fault { kNone, kRead, kWrite, kFlush, kRename, kRemove };

    // From now on operations of this kind fail.
    void FailOn(Fault fault) { fFault = fault; }

    // A stream's content, whatever its state. Setting it makes the stream.
    Bytes GetContent(const std::string& name) const { return fStreams.at(name)->fContent; }
    void SetContent(const std::string& name, const Bytes& content);

    // True when nothing has been written to the stream since it was last flushed.
    bool IsFlushed(const std::string& name) const { return fStreams.at(name)->fIsFlushed; }

    std::vector<std::string> ListStreams() const;

    std::unique_ptr<Vantor::Platform::File> OpenStream(const std::string& name,
                                                       Vantor::Platform::FileAccess access) override;
    std::unique_ptr<Vantor::Platform::File> CreateStream(const std::string& name) override;
    bool HasStream(const std::string& name) override { return fStreams.count(name) != 0; }
    void RemoveStream(const std::string& name) override;
    void RenameStream(const std::string& from, const std::string& to) override;

  private:
    struct Content {
        Bytes fContent;
        bool fIsOpen = false;
        bool fIsFlushed = true;
    };
    class Stream;

    struct IgnoringCase {
        bool operator()(const std::string& a, const std::string& b) const;
    };

    void FailIf(Fault fault, Vantor::Platform::FileException::Cause cause, const std::string& name) const;
    Content& ClosedStream(const std::string& name);

    std::map<std::string, std::shared_ptr<Content>, IgnoringCase> fStreams;
    Fault fFault = Fault::kNone;
};

}  // namespace VantorTest
