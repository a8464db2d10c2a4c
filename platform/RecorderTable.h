#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Vantor::Platform {

// The names of the drives that can write discs, "sr0", from the table that the Linux kernel keeps of its disc
// drives (/proc/sys/dev/cdrom/info), in the order in which the kernel found them.
std::vector<std::string> ReadRecorders(std::string_view table);

// A name for a disc as ISO 9660 takes it: at most 32 letters, digits and `_`, in capitals, and blanks, which
// readers take as well and file-set IDs have. Other characters become `_`; empty when there are none but
// blanks.
std::string MakeVolumeName(std::string_view text);

}  // namespace Vantor::Platform
