// Element names as small numbers, so that a reader can switch on them and a node need not hold text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace rovescio::xml {

// The number of an element name.
using Name = std::uint16_t;

class Names {
  public:
    static constexpr std::size_t kMost = 0xFFFF;

    // The names of a vocabulary, each once, get the numbers from 0 on in their order; the views must last.
    explicit Names(std::span<const std::string_view> vocabulary);
    Names(const Names&) = delete;
    Names& operator=(const Names&) = delete;

    // The number of a name, a new one when it has none; the view of a new name is copied. False when there
    // are more names than numbers.
    bool intern(std::string_view name, Name& number);
    // The number of a name that has one; false when it has none.
    bool find(std::string_view name, Name& number) const;
    [[nodiscard]] std::string_view text(Name number) const { return texts_[number]; }
    [[nodiscard]] std::size_t size() const { return texts_.size(); }

  private:
    // Open addressing: a slot holds a number and one more, 0 for none.
    [[nodiscard]] std::size_t slotOf(std::string_view name) const;
    void insert(std::string_view name);

    std::vector<std::string_view> texts_;
    std::deque<std::string> own_;
    std::vector<std::uint32_t> slots_;
    std::uint64_t seed_ = 0;
};

}  // namespace rovescio::xml
