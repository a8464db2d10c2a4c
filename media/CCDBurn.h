#pragma once

#include <memory>
#include <string>

#include "platform/DiscService.h"

namespace Vantor {

// One connection to the system's service that burns discs, held for as long as this object lives.
class CCDBurn {
  public:
    // Connects; see IsThere.
    CCDBurn();

    // False when the system has no such service, or no folder for what is to be burned. Nothing else may be
    // asked then.
    bool IsThere() const { return fBurner != nullptr && !fBurnArea.empty(); }

    bool HasRecordableDrive() { return fBurner->HasRecorder(); }

    // The recorder, as "E:\"; empty without one.
    std::string GetRecorderDriveLetter() { return fBurner->GetRecorderName(); }

    // The folder whose content is burned.
    const std::string& GetBurnArea() const { return fBurnArea; }

    // See Platform::DiscBurner.
    bool Burn(const Platform::DiscJob& job) { return fBurner->Burn(job); }

  private:
    std::unique_ptr<Platform::DiscBurner> fBurner;
    std::string fBurnArea;
};

}  // namespace Vantor
