// Data records: numbering, closing up, and walking.
#include "engine/record_store.h"

#include <gtest/gtest.h>

namespace rovescio::engine {
namespace {

constexpr std::uint32_t kTag = 0x6F744D78;

std::byte bytes[1];

bool create(RecordStore& store, std::uint16_t cmper, std::uint16_t inci, int content) {
    bytes[0] = static_cast<std::byte>(content);
    RecordKey key{cmper, 0, inci};
    return store.create(kTag, key, bytes);
}

// The records as "cmper.inci=content", in the order of the walk.
std::string listing(const RecordStore& store, bool forward = true) {
    std::string text;
    RecordKey key{forward ? 0U : 0xFFFFU, 0, 0xFFFF};
    while (const auto* record = forward ? store.next(kTag, key) : store.previous(kTag, key)) {
        text += std::to_string(key.owner) + "." + std::to_string(key.inci) + "=" +
                std::to_string(std::to_integer<int>(record->front())) + " ";
    }
    return text;
}

TEST(RecordStore, NumbersWithoutGapsAndClosesUp) {
    RecordStore store;
    EXPECT_TRUE(create(store, 5, RecordStore::kAppend, 1));
    EXPECT_TRUE(create(store, 5, 1, 2));
    EXPECT_FALSE(create(store, 5, 3, 9));
    EXPECT_TRUE(create(store, 5, RecordStore::kAppend, 3));
    EXPECT_TRUE(create(store, 2, 0, 4));
    EXPECT_EQ(listing(store), "2.0=4 5.0=1 5.1=2 5.2=3 ");
    EXPECT_EQ(listing(store, false), "5.2=3 5.1=2 5.0=1 2.0=4 ");
    EXPECT_TRUE(store.remove(kTag, {5, 0, 0}));
    EXPECT_EQ(listing(store), "2.0=4 5.0=2 5.1=3 ");
    EXPECT_FALSE(store.remove(kTag, {5, 0, 2}));
    bytes[0] = std::byte{8};
    EXPECT_TRUE(store.save(kTag, {5, 0, 1}, bytes));
    EXPECT_FALSE(store.save(kTag, {5, 0, 2}, bytes));
    EXPECT_EQ(listing(store), "2.0=4 5.0=2 5.1=8 ");
    EXPECT_EQ(store.count(kTag), 3U);
    EXPECT_EQ(store.find(kTag + 1, {5, 0, 0}), nullptr);
}

}  // namespace
}  // namespace rovescio::engine
