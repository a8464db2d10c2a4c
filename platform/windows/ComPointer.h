#pragma once

#include <objbase.h>

#include <memory>

namespace Vantor::Platform {

struct ReleaseInterface {
    void operator()(IUnknown* object) const { object->Release(); }
};

// Owns one count of an object of the system's.
template <typename Interface>
using ComPointer = std::unique_ptr<Interface, ReleaseInterface>;

}  // namespace Vantor::Platform
