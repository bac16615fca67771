// A file descriptor that is closed with its owner.
#pragma once

#include <unistd.h>

#include <utility>

namespace rovescio::cli {

class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    ~Descriptor() {
        if (number_ >= 0) ::close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor& operator=(Descriptor&&) = delete;

    [[nodiscard]] int number() const { return number_; }
    // Some file systems report a full disk only here.
    bool close() { return ::close(std::exchange(number_, -1)) == 0; }

  private:
    int number_;
};

}  // namespace rovescio::cli
