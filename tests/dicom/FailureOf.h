#pragma once

#include <memory>
#include <string>

#include "dicom/TException.h"
#include "platform/FileException.h"

namespace VantorTest {

// How an operation on a file fails, as one text: "102 Invalid Dicom File" for a TException, "image file:
// disk is full" for a FileException, "nothing" for neither. Anything else passes and fails the test.
template <typename Operation>
std::string FailureOf(Operation operation) {
    try {
        operation();
    } catch (Vantor::TException* thrown) {
        const std::unique_ptr<Vantor::TException> error(thrown);
        return std::to_string(error->GetErrorNumber()) + " " + error->GetErrorText();
    } catch (const Vantor::Platform::FileException& error) {
        return error.what();
    }
    return "nothing";
}

}  // namespace VantorTest
