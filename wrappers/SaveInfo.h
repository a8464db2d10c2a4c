#pragma once

namespace VantorWrappers {

// How a series is saved in place.
class SaveInfo {
  public:
    // Gives each image a new instance UID. At first false.
    void SetAssignNewUIDsFlag(bool assignsNewUIDs) { fAssignNewUIDs = assignsNewUIDs; }
    bool GetAssignNewUIDsFlag() const { return fAssignNewUIDs; }

  private:
    bool fAssignNewUIDs = false;
};

}  // namespace VantorWrappers
