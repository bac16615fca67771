#include "xml/names.h"

#include <functional>

#include "xml/bytes.h"

namespace rovescio::xml {

namespace {

std::uint64_t byteAt(const char* p) {
    return static_cast<unsigned char>(*p);
}

// Short names are hashed by their first and last bytes, which may overlap. The seed differs from run to run,
// so that nobody can write a file whose names all meet in one slot.
std::uint64_t hashOf(std::string_view name, std::uint64_t seed) {
    const char* const p = name.data();
    const std::size_t size = name.size();
    std::uint64_t first = 0;
    std::uint64_t last = 0;
    if (size > 16) {
        first = std::hash<std::string_view>{}(name);
    } else if (size >= 8) {
        first = wordAt<std::uint64_t>(p);
        last = wordAt<std::uint64_t>(p + size - 8);
    } else if (size >= 4) {
        first = wordAt<std::uint32_t>(p);
        last = wordAt<std::uint32_t>(p + size - 4);
    } else if (size > 0) {
        first = byteAt(p) | byteAt(p + size / 2) << 8;
        last = byteAt(p + size - 1);
    }
    std::uint64_t hash = (first ^ seed) * 0x9E3779B97F4A7C15U;
    hash = (hash ^ hash >> 32 ^ last ^ size << 56) * 0xD6E8FEB86659FD93U;
    return hash ^ hash >> 32;
}

constexpr std::size_t kFewestSlots = 1024;

}  // namespace

Names::Names(std::span<const std::string_view> vocabulary) : slots_(kFewestSlots) {
    seed_ = reinterpret_cast<std::uintptr_t>(slots_.data());
    texts_.reserve(vocabulary.size());
    for (const std::string_view name : vocabulary) insert(name);
}

std::size_t Names::slotOf(std::string_view name) const {
    std::size_t slot = hashOf(name, seed_) & (slots_.size() - 1);
    while (slots_[slot] != 0 && !areSame(texts_[slots_[slot] - 1], name)) {
        slot = (slot + 1) & (slots_.size() - 1);
    }
    return slot;
}

void Names::insert(std::string_view name) {
    texts_.push_back(name);
    if (texts_.size() * 2 > slots_.size()) {
        // All names get new slots, this one included.
        slots_.assign(slots_.size() * 2, 0);
        for (std::uint32_t i = 0; i < texts_.size(); ++i) slots_[slotOf(texts_[i])] = i + 1;
        return;
    }
    slots_[slotOf(name)] = static_cast<std::uint32_t>(texts_.size());
}

bool Names::find(std::string_view name, Name& number) const {
    const std::uint32_t held = slots_[slotOf(name)];
    number = static_cast<Name>(held - 1);
    return held != 0;
}

bool Names::intern(std::string_view name, Name& number) {
    if (find(name, number)) return true;
    if (texts_.size() >= kMost) return false;
    own_.emplace_back(name);
    number = static_cast<Name>(texts_.size());
    insert(own_.back());
    return true;
}

}  // namespace rovescio::xml
