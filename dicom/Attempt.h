#pragma once

#include <exception>
#include <memory>

#include "dicom/TException.h"

namespace Vantor {

// Runs an operation whose failure costs only what it would have done. False when it fails, for whatever
// reason: the library's own exceptions, those of files, and a lack of memory.
template <typename Operation>
bool Succeeds(Operation operation) {
    try {
        operation();
        return true;
    } catch (TException* thrown) {
        const std::unique_ptr<TException> error(thrown);
    } catch (const std::exception&) {
        // Whoever cares for the reason does not come here.
    }
    return false;
}

}  // namespace Vantor
