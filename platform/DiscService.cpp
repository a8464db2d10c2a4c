#include "platform/DiscService.h"

namespace Vantor::Platform {

namespace {

DiscService*& CurrentService() {
    static DiscService* current = &DiscService::OfSystem();
    return current;
}

}  // namespace

DiscService& DiscService::Current() { return *CurrentService(); }

ReplacedDiscService::ReplacedDiscService(DiscService& service) : fPrevious(CurrentService()) {
    CurrentService() = &service;
}

ReplacedDiscService::~ReplacedDiscService() { CurrentService() = fPrevious; }

}  // namespace Vantor::Platform
