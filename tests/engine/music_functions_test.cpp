// Host functions on the selection, the score's structure and note names.
#include <gtest/gtest.h>

#include "engine/interface/functions.h"
#include "engine/interface/session.h"
#include "support/memory_user_interface.h"
#include "support/score_text.h"

namespace rovescio::engine {
namespace {

class MusicFunctionsTest : public testing::Test {
  protected:
    Document document =
        test::scoreFromText({"D 4/4 c4:w | c4:w", "bb 3/4 c4:h. | c4:h.", "none 4/4 c4:w | c4:w"});
    test::MemoryUserInterface front;
    Session session{document, front};
};

TEST_F(MusicFunctionsTest, KeysAndDurationsAreThoseOfStaffAndMeasure) {
    EXPECT_EQ(functions::SX_GetKeySig(1, 1, 0, 0), 2);
    EXPECT_EQ(functions::SX_GetKeySig(2, 2, 0, 0), 0x1FB);
    EXPECT_GE(functions::SX_GetKeySig(1, 3, 0, 0), kNonStandardKey);
    EXPECT_EQ(functions::SX_GetKeySig(3, 1, 0, 0), 0);
    EXPECT_EQ(functions::SX_GetMeasureDuration(2, 1), 3072);
    EXPECT_EQ(functions::SX_GetMeasureDuration(0, 1), 4096);
    EXPECT_EQ(functions::SX_GetMeasureDuration(4, 1), 0);
}

TEST_F(MusicFunctionsTest, SlotsOfAStaffListAreItsRecords) {
    for (std::uint16_t i = 0; i < 2; ++i) {
        EDATAKEY key{0xFFF9, i};
        EDTPlaybackStaff record{};
        record.staff = static_cast<std::int16_t>(i + 2);
        std::uint32_t size = sizeof record;
        ASSERT_EQ(functions::SX_CreateEData(0x534F4975, &key, &record, &size), 1);
    }
    EXPECT_EQ(functions::SX_SlotToInst(2, 0xFFF9), 3);
    EXPECT_EQ(functions::SX_InstToSlot(3, 0xFFF9), 2);
    EXPECT_EQ(functions::SX_InstToSlot(1, 0xFFF9), 0);
}

}  // namespace
}  // namespace rovescio::engine
