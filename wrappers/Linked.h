#pragma once

#include <memory>

namespace VantorWrappers {

// An object that others know without keeping it: what they hold is null once it is gone.
template <typename T>
class Linked {
  public:
    using Link = std::shared_ptr<T* const>;

    Linked(const Linked&) = delete;
    Linked& operator=(const Linked&) = delete;

    Link GetLink() const { return fLink; }

  protected:
    explicit Linked(T* self) : fLink(std::make_shared<T*>(self)) {}
    ~Linked() { *fLink = nullptr; }

  private:
    std::shared_ptr<T*> fLink;
};

}  // namespace VantorWrappers
