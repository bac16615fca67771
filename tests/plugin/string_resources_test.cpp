// Texts by id, from the strings file of the bundle that this test program sits in, and the word to the user
// when a host does not take this platform's function pointers.
#include "kit/string_resources.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <utility>

#include "host_double.h"
#include "kit/dialogs.h"
#include "kit/engine_bundle.h"

namespace {

constexpr std::uint32_t kEightUnits = makeStringId(20134, 1);
constexpr std::uint32_t kAccented = makeStringId(20134, 2);

template <class Unit>
std::basic_string<Unit> resource(std::uint32_t id, std::uint16_t capacity) {
    std::basic_string<Unit> buffer(2048, Unit{'#'});
    EXPECT_EQ(PlugIn_GetStringResource(id, buffer.data(), capacity), buffer.data());
    EXPECT_EQ(buffer[capacity], Unit{'#'}) << "written beyond the capacity";
    return buffer.c_str();
}
constexpr auto textOf = resource<char16_t>;
constexpr auto bytesOf = resource<char>;

TEST(StringResources, IdsBecomeKeysOfSignedHalvesOrTablesOfAThousand) {
    const std::pair<std::uint32_t, std::u16string> texts[] = {
        {kEightUnits, u"12345678"},
        {7, u"no table"},
        {makeStringId(-2, -3), u"both halves negative"},
        {kNothingChosenText, u"20134,13"},  // not in the file: the key itself
        {0xFFFFFFFF, u"-1,-1"},
    };
    for (const auto& [id, text] : texts) EXPECT_EQ(textOf(id, 64), text);
    for (const std::uint32_t id : {5U, 20005U}) {
        EXPECT_STREQ(GetResourceCString(id), "decimal");
        EXPECT_EQ(std::u16string(GetResourceCString_UTF16(id)), u"decimal");
    }
    const std::pair<std::uint32_t, const char*> missing[] = {
        {999, "20000,999"}, {1000, "1000,0"}, {21006, "21000,6"}, {134, "20000,134"}, {70007, "4464,7"}};
    for (const auto& [id, key] : missing) EXPECT_STREQ(GetResourceCString(id), key);
    EXPECT_EQ(std::u16string(GetResourceCString_UTF16(21005)), std::u16string(1023, u'c'));
    EXPECT_STREQ(GetResourceCString(21005), "") << "too long for 255 bytes";
}

TEST(StringResources, AreCutToTheCapacityAndTerminated) {
    for (std::uint16_t capacity = 1; capacity <= 10; ++capacity) {
        EXPECT_EQ(textOf(kEightUnits, capacity), std::u16string(u"12345678").substr(0, capacity - 1U));
        EXPECT_EQ(bytesOf(kEightUnits, capacity), std::string("12345678").substr(0, capacity - 1U));
    }
    char16_t unit = u'#';
    char buffer[16] = "###############";
    EXPECT_EQ(PlugIn_GetStringResource(kEightUnits, &unit, 0), nullptr);
    EXPECT_EQ(PlugIn_GetStringResource(kEightUnits, buffer, 0), nullptr);
    EXPECT_EQ(LoadIndString(20134, 1, buffer, 0), 0);
    EXPECT_EQ(std::string(1, static_cast<char>(unit)) + buffer[0], "##");
    EXPECT_EQ(LoadIndString(20134, 1, buffer, 8), 7);
    EXPECT_STREQ(buffer, "1234567");
}

TEST(StringResources, EightBitTextsAreEncodedAndEndAt255Bytes) {
    EXPECT_EQ(bytesOf(kAccented, 64), "café ♭");
    setenv("LC_ALL", "C", 1);
    EXPECT_EQ(bytesOf(kAccented, 64), "") << "the flat sign is not in the encoding";
    setenv("LC_ALL", "C.UTF-8", 1);
    EXPECT_EQ(bytesOf(makeStringId(20134, 255), 1024), std::string(255, 'a'));
    EXPECT_EQ(bytesOf(makeStringId(20134, 256), 1024), "");
    EXPECT_EQ(textOf(makeStringId(20134, 256), 1024), std::u16string(256, u'b'));
}

int procedure(SXWindow, std::uint16_t, short, std::uint32_t, void*) {
    return 1;
}

TEST(DialogHandlers, AlertOnceEachWayUnderAForeignHost) {
    ASSERT_EQ(InitializeGlobals() + InitializeGlobals(), 0) << "the second time without a lookup";
    const std::string expected = "48 Should not get here!";
    for (machOAnswer = 1; machOAnswer >= 0; --machOAnswer) {
        EXPECT_EQ(NewFF_DialogHandlerProc(procedure), &procedure);
        EXPECT_EQ(alerts, std::vector<std::string>(machOAnswer ? 0 : 1, expected));
        DisposeFF_DialogHandlerProc(procedure);
        EXPECT_EQ(alerts, std::vector<std::string>(machOAnswer ? 0 : 2, expected));
    }
}

}  // namespace
