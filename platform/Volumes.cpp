#include "platform/Volumes.h"

namespace Vantor::Platform {

namespace {

Volumes*& CurrentVolumes() {
    static Volumes* current = &Volumes::OfSystem();
    return current;
}

}  // namespace

Volumes& Volumes::Current() { return *CurrentVolumes(); }

ReplacedVolumes::ReplacedVolumes(Volumes& volumes) : fPrevious(CurrentVolumes()) {
    CurrentVolumes() = &volumes;
}

ReplacedVolumes::~ReplacedVolumes() { CurrentVolumes() = fPrevious; }

}  // namespace Vantor::Platform
