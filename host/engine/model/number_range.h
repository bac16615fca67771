// Consecutive numbers of staves and measures.
#pragma once

#include <algorithm>

namespace rovescio::engine {

// A walk over numbers. It counts in an int: one that counts in a short could not go beyond 32767, and so
// would not end there.
class NumberRange {
  public:
    class Iterator {
      public:
        explicit constexpr Iterator(int number) : number_(number) {}
        constexpr short operator*() const { return static_cast<short>(number_); }
        constexpr Iterator& operator++() {
            ++number_;
            return *this;
        }
        friend constexpr bool operator==(const Iterator&, const Iterator&) = default;

      private:
        int number_;
    };

    constexpr NumberRange(short first, short last) : first_(first), end_(std::max<int>(first, last + 1)) {}
    [[nodiscard]] constexpr Iterator begin() const { return Iterator(first_); }
    [[nodiscard]] constexpr Iterator end() const { return Iterator(end_); }

  private:
    int first_;
    int end_;
};

// From first to last, both included.
constexpr NumberRange numbers(short first, short last) {
    return {first, last};
}

}  // namespace rovescio::engine
