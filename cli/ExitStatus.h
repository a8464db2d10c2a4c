#pragma once

namespace VantorCli {

// What the program tells whoever started it.
enum class ExitStatus {
    kDone = 0,
    kFailed = 1,      // the operation failed, or a file could not be read
    kWrongUsage = 2,  // the command line was not understood
};

}  // namespace VantorCli
