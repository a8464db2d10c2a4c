#pragma once

#include <cstddef>
#include <limits>
#include <mutex>
#include <set>
#include <string>

#include "platform/FileException.h"
#include "platform/MediumWatch.h"

namespace VantorTest {

// Changes of a medium that do not come through: from a certain one on, as when the program has ended there,
// or that one alone, as when the disk is full. While an object of this class is there.
class MediumFaults final : public Vantor::Platform::MediumWatch {
  public:
    using Cause = Vantor::Platform::FileException::Cause;

    static constexpr size_t kNever = std::numeric_limits<size_t>::max();

    // Counts the changes only.
    MediumFaults() = default;

    // Refuses the change of that number, counted from 0, or also all after it.
    static MediumFaults RefuseFrom(size_t number) { return MediumFaults(number, kNever, Cause::kHardIO); }
    static MediumFaults RefuseOne(size_t number, Cause cause) { return MediumFaults(number, number, cause); }

    // Calls something instead of refusing, which ends the process.
    static MediumFaults EndAt(size_t number, void (*end)()) { return {number, kNever, Cause::kHardIO, end}; }

    MediumFaults(const MediumFaults&) = delete;
    MediumFaults& operator=(const MediumFaults&) = delete;

    void BeforeChange(Vantor::Platform::MediumChange change, const std::string& path,
                      const std::string& to) override;

    // The changes so far, those that were refused among them.
    size_t GetCount() const { return fCount; }
    bool HasRefused() const { return fCount > fFirst; }

    // What a power cut leaves: files that were not handed to the medium lose their second half. To be called
    // when none of them is open.
    void LoseWhatIsNotFlushed();

  private:
    MediumFaults(size_t first, size_t last, Cause cause, void (*end)() = nullptr)
        : fFirst(first), fLast(last), fCause(cause), fEnd(end) {}

    bool IsRefused(size_t number) const { return number >= fFirst && number <= fLast; }
    void Note(Vantor::Platform::MediumChange change, const std::string& path, const std::string& to);

    size_t fFirst = kNever;
    size_t fLast = kNever;
    Cause fCause = Cause::kHardIO;
    void (*fEnd)() = nullptr;
    std::mutex fLock;
    size_t fCount = 0;
    std::set<std::string> fUnflushed;
    Vantor::Platform::PlacedMediumWatch fPlaced{*this};
};

}  // namespace VantorTest
