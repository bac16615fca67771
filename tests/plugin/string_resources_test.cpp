// Texts by id, from the strings file of the bundle that this test program sits in.
#include "kit/string_resources.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <utility>

#include "host_double.h"
#include "kit/engine_bundle.h"

namespace {

constexpr std::uint32_t kEightUnits = makeStringId(20134, 1);
constexpr std::uint32_t kAccented = makeStringId(20134, 2);

std::u16string textOf(std::uint32_t id, std::uint16_t capacity) {
    std::u16string buffer(2048, u'#');
    EXPECT_EQ(PlugIn_GetStringResource(id, buffer.data(), capacity), buffer.data());
    EXPECT_EQ(buffer[capacity], u'#') << "written beyond the capacity";
    return buffer.c_str();
}

std::string bytesOf(std::uint32_t id, std::uint16_t capacity) {
    std::string buffer(2048, '#');
    EXPECT_EQ(PlugIn_GetStringResource(id, buffer.data(), capacity), buffer.data());
    EXPECT_EQ(buffer[capacity], '#') << "written beyond the capacity";
    return buffer.c_str();
}

TEST(StringResources, IdsBecomeKeysOfSignedHalves) {
    const std::pair<std::uint32_t, std::u16string> texts[] = {
        {kEightUnits, u"12345678"},
        {7, u"no table"},
        {makeStringId(-2, -3), u"both halves negative"},
        {0x4EA6000D, u"20134,13"},  // not in the file: the key itself
        {9, u"9"},
        {0xFFFFFFFF, u"-1,-1"},
    };
    for (const auto& [id, text] : texts) EXPECT_EQ(textOf(id, 64), text);
    EXPECT_EQ(kNothingChosenText, 0x4EA6000DU);
    EXPECT_EQ(kMeasureRangeFormat, 0x4EAB0001U);
}

TEST(StringResources, CutsToTheCapacityAndTerminates) {
    const std::pair<std::uint16_t, std::string> cuts[] = {
        {10, "12345678"}, {9, "12345678"}, {8, "1234567"}, {2, "1"}, {1, ""}};
    for (const auto& [capacity, text] : cuts) {
        EXPECT_EQ(textOf(kEightUnits, capacity), std::u16string(text.begin(), text.end()));
        EXPECT_EQ(bytesOf(kEightUnits, capacity), text);
    }
    char16_t unit = u'#';
    char byte = '#';
    EXPECT_EQ(PlugIn_GetStringResource(kEightUnits, &unit, 0), nullptr);
    EXPECT_EQ(PlugIn_GetStringResource(kEightUnits, &byte, 0), nullptr);
    EXPECT_EQ(unit, u'#');
    EXPECT_EQ(byte, '#');
}

TEST(StringResources, EightBitTextsAreEncodedAndPadded) {
    setenv("LC_ALL", "C.UTF-8", 1);
    EXPECT_EQ(bytesOf(kAccented, 64), "café ♭");
    setenv("LC_ALL", "C", 1);
    EXPECT_EQ(bytesOf(kAccented, 64), "") << "the flat sign is not in the encoding";
    setenv("LC_ALL", "C.UTF-8", 1);

    char buffer[16];
    std::fill(std::begin(buffer), std::end(buffer), '#');
    PlugIn_GetStringResource(kEightUnits, buffer, 15);
    EXPECT_EQ(std::string(buffer + 8, 8), std::string("\0\0\0\0\0\0\0#", 8));
}

TEST(StringResources, EightBitTextsEndAt255Bytes) {
    EXPECT_EQ(bytesOf(makeStringId(20134, 255), 1024), std::string(255, 'a'));
    EXPECT_EQ(bytesOf(makeStringId(20134, 256), 1024), "");
    EXPECT_EQ(textOf(makeStringId(20134, 256), 1024), std::u16string(256, u'b'));
}

TEST(StringResources, LoadsByTableAndIndex) {
    char buffer[8];
    EXPECT_EQ(LoadIndString(20134, 1, buffer, sizeof buffer), 7);
    EXPECT_STREQ(buffer, "1234567");
    EXPECT_EQ(LoadIndString(20134, 1, buffer, 0), 0);
}

TEST(StringResources, DecimalIdsKeepTheThousandWhole) {
    const std::pair<std::uint32_t, std::string> texts[] = {{5, "fifth of the default table"},
                                                           {20005, "fifth of the default table"},
                                                           {21005, "fifth of 21000"},
                                                           {999, "20000,999"},
                                                           {1000, "1000,0"},
                                                           {3000005, "table number cut to 16 bits"}};
    for (const auto& [id, text] : texts) {
        EXPECT_EQ(GetResourceCString(id), text);
        EXPECT_EQ(GetResourceCString_UTF16(id), std::u16string(text.begin(), text.end()));
    }
    const char16_t* first = GetResourceCString_UTF16(5);
    EXPECT_EQ(GetResourceCString_UTF16(21005), first) << "one buffer, overwritten by each call";
}

TEST(StringResources, AMissInAFileThatExistsAlertsNobody) {
    ASSERT_EQ(InitializeGlobals(), 0);
    alerts.clear();
    EXPECT_EQ(textOf(makeStringId(20139, 99), 64), u"20139,99");
    EXPECT_TRUE(alerts.empty());
}

}  // namespace
