#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Volumes.h"

namespace Vantor::Platform {

// A drive that the user has named; what is left open is as the system has it.
struct NamedDrive {
    std::string fName;  // with a separator at the end
    std::optional<DriveType> fType;
    std::string fFormat;
    std::string fLabel;
};

// Reads a list of drives: full paths of folders with colons between them, each of which may go on with
// `=TYPE`, then `,FORMAT`, then `,LABEL`, such as
//
//     /media/disc=cdrom,CDFS,ECHO 12:/media/stick=removable:/data
//
// TYPE is fixed, removable, cdrom, network or ram; with any other word it is all part of the path.
std::vector<NamedDrive> ReadDriveList(std::string_view list);

}  // namespace Vantor::Platform
