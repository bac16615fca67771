// Typed record access: keys, accidental modifications, preferences in pieces, texts in runs, shapes of old
// hosts.
#include "kit/data_records.h"

#include <gtest/gtest.h>

#include <numeric>

#include "kit/accidental_mods.h"
#include "kit/other_strings.h"
#include "kit/preferences.h"
#include "record_host.h"
#include "retrograde/smart_shapes.h"

namespace {

using Words = std::vector<std::uint16_t>;

class DataRecords : public testing::Test {
  protected:
    DataRecords() {
        InitializeGlobals();
        recordHost = {};
        QorVersion = kKitVersion;
    }
    // The tag "ot" and two more characters.
    static std::uint32_t ot(const std::string& letters) { return tagOf("ot" + letters); }
    static std::uint32_t tagOf(const std::string& text) {
        return std::accumulate(text.begin(), text.end(), 0U, [](std::uint32_t tag, char letter) {
            return tag << 8 | static_cast<unsigned char>(letter);
        });
    }
};

TEST_F(DataRecords, AccidentalModificationsAreFoundByTheirNote) {
    constexpr std::uint32_t kEntry = 70000;
    std::uint16_t incident = 99;
    for (const std::uint16_t id : Words{3, 7, 7}) {
        EDTAccidentalMods2012 record{};
        EXPECT_TRUE(sx_addaccidentalmod(kEntry, id, &record, incident));
    }
    EXPECT_EQ(incident, 2);
    EDTAccidentalMods2012 record{};
    for (const auto& [id, expected] : std::map<std::uint16_t, int>{{3, 0}, {7, 1}, {kAnyNote, 0}, {8, -1}}) {
        EXPECT_EQ(sx_loadaccidentalmod(kEntry, id, &record, incident) ? incident : -1, expected) << id;
    }
    record = {7, 55, 0, 0, 0, 0, 0, {}};
    EXPECT_TRUE(sx_saveaccidentalmod(kEntry, 7, &record, incident));
    EXPECT_TRUE(sx_deleteaccidentalmod(kEntry, 3));
    EXPECT_FALSE(sx_saveaccidentalmod(kEntry, 3, &record, incident) || sx_deleteaccidentalmod(kEntry, 3));
    EXPECT_EQ(recordHost.listing(kAccidentalModTag), "4464.1.0=7,55 4464.1.1=7,0 ");
}

TEST_F(DataRecords, AFretInstrumentCountsAsLoadedWhenSomethingWasWritten) {
    EDTFretInstrument25_3 record{};
    EDATAKEY key{1, 0};
    std::uint32_t size = sizeof record;
    for (const short written : {short{0}, short{1}}) {
        record.strings = 6;
        recordHost.answer = [&](const std::string&) -> short {
            EXPECT_EQ(record.strings, 0);
            record.frets = static_cast<std::uint16_t>(written);
            return 0;
        };
        EXPECT_EQ(SX_LoadEData(kFretInstrumentTag, &key, &record, &size), written);
    }
    size = sizeof record - 1;
    EXPECT_DEATH(SX_LoadEData(kFretInstrumentTag, &key, &record, &size),
                 "\\*size >= sizeof\\(EDTFretInstrument25_3\\)");
}

TEST_F(DataRecords, PreferencesInRunsHaveTheirSubRecords) {
    // Tag, sub-record tag, count; where the incident chooses the run, the last incident.
    const struct {
        const char* tag;
        const char* sub;
        unsigned count;
        std::uint16_t last;
    } cases[] = {
        {"GD", "79", 1, 0}, {"GG", "88", 11, 0}, {"Gb", "98", 1, 4}, {"Gd", "80", 1, 0},   {"Gs", "91", 1, 1},
        {"MM", "25", 2, 0}, {"ND", "04", 1, 0},  {"Nd", "66", 1, 0}, {"PF", "77", 4, 1},   {"SC", "52", 2, 0},
        {"SP", "94", 3, 0}, {"Sl", "26", 1, 15}, {"TC", "86", 5, 0}, {"SN", "40", 1, 128}, {"TI", "84", 4, 0},
        {"TX", "78", 9, 0}, {"Tp", "85", 4, 0},  {"Ts", "90", 1, 9},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.tag);
        const std::string tag = std::string("pf") + c.tag;
        recordHost = {};
        auto& parts = recordHost.records[ot(c.sub)];
        for (std::uint16_t i = 0; i < 130; ++i) parts[{65534, i}] = Words(6, i);
        const std::uint16_t incident = c.last == 0 ? 500 : c.last;
        const auto first = static_cast<std::uint16_t>(c.last == 0 ? 0 : c.last - 1);
        const auto end = static_cast<std::uint16_t>(first + c.count);
        Words words(std::size_t{c.count} * 6, 999);
        std::uint32_t size = 500;
        EDATAKEY key{kGlobalNumber, incident};
        EXPECT_EQ(SX_LoadEData(tagOf(tag), &key, words.data(), &size), 1);
        EXPECT_EQ(size, c.count * 12);
        for (unsigned i = 0; i < words.size(); ++i) EXPECT_EQ(words[i], first + i / 6);

        EXPECT_TRUE(sx_saveglobal(tagOf(tag), incident, Words(words.size(), 999).data(), size));
        const Words ends{parts[{65534, first}][0], parts[{65534, static_cast<std::uint16_t>(end - 1)}][5],
                         parts[{65534, end}][0]};
        EXPECT_EQ(ends, (Words{999, 999, end}));
        parts.erase({65534, static_cast<std::uint16_t>(end - 1)});
        EXPECT_FALSE(sx_loadglobal(tagOf(tag), incident, words.data(), size));
    }
}

TEST_F(DataRecords, ScatteredPreferencesAreConvertedBothWays) {
    recordHost.records[ot("41")][{65534, 0}] = {100, 50, 350, 0, 0x0302, 77};
    recordHost.records[ot("42")][{65534, 0}] = {0x1111, 0x2222, 0x3333, 0x4444, 5, 6};
    EDT2005Prefs prefs{};
    ASSERT_TRUE(sx_loadglobal(tagOf("pf05"), 0, &prefs, sizeof prefs));
    EXPECT_EQ((std::vector<int>{prefs.noteSpacing, prefs.beamThickness, prefs.stemLength, prefs.showRests,
                                prefs.tieStyle, prefs.maximumBeamHeight, prefs.maximumBeamSlope}),
              (std::vector<int>{100, 50, 350, 1, 2, 0x22221111, 0x33334444}));
    EXPECT_EQ(recordHost.calls.size(), 2U);
    prefs.showRests = 0;
    prefs.tieStyle = 1;
    prefs.maximumBeamSlope = 0x00010002;
    ASSERT_TRUE(sx_saveglobal(tagOf("pf05"), 0, &prefs, sizeof prefs));
    EXPECT_EQ((recordHost.records[ot("41")][{65534, 0}]), (Words{100, 50, 350, 1, 0x0301, 77}));
    EXPECT_EQ((recordHost.records[ot("42")][{65534, 0}]), (Words{0x1111, 0x2222, 1, 2, 5, 6}));
    recordHost.records[ot("42")].clear();
    prefs.noteSpacing = 1;
    EXPECT_FALSE(sx_loadglobal(tagOf("pf05"), 0, &prefs, sizeof prefs));
    EXPECT_EQ(+prefs.noteSpacing, 1);
}

TEST_F(DataRecords, EveryScatteredRecordComesBackAsItWasSaved) {
    using namespace kit;
    int value = 1;
#define PREFERENCES(record) \
    {                       \
        record saved{};
#define PREFERENCE(record, type, field, subTag, number, incident, word, conversion) \
    saved.field = static_cast<type>(conversion == kNegated ? 1                      \
                                    : sizeof(type) == 4    ? value++ * 65535        \
                                                           : value++);
#define PREFERENCES_END(record, tag)                                     \
    EXPECT_TRUE(sx_saveglobal(tag, 0, &saved, sizeof saved));            \
    record loaded{};                                                     \
                                                                         \
    EXPECT_EQ(preferenceSize(tag, 0), sizeof(record));                   \
    EXPECT_TRUE(sx_loadglobal(tag, 0, &loaded, sizeof loaded));          \
    EXPECT_EQ(std::memcmp(&saved, &loaded, sizeof saved), 0) << #record; \
    }
#include "kit/preferences.def"
    // Parts are extracted by settings with a number of their own.
    EXPECT_EQ(recordHost.records[ot("44")].begin()->first, (RecordHost::Key{1, 0}));
}

TEST_F(DataRecords, TextsLieInRunsOfTwelveBytes) {
    constexpr std::uint32_t kTag = 0x6F745858;
    for (const auto& [length, records] : std::vector<std::pair<std::size_t, std::size_t>>{
             {30, 3}, {0, 0}, {11, 1}, {12, 1}, {13, 2}, {24, 2}, {36, 3}}) {
        SCOPED_TRACE(length);
        const std::string saved(length, 'x');
        recordHost.calls.clear();
        std::unique_ptr<char[]> loaded;
        EXPECT_TRUE(sx_saveotherstring(kTag, 4, 2, saved.c_str()));
        EXPECT_EQ(recordHost.records[kTag].size(), records);
        // The run of 30 bytes goes from its end.
        EXPECT_TRUE(length != 0 || recordHost.calls[4] == "delete 6f745858 4.4");
        ASSERT_TRUE(sx_loadotherstring(kTag, 4, 2, loaded));
        EXPECT_EQ(loaded.get(), saved);
    }
    std::unique_ptr<char16_t[]> wide;
    EXPECT_FALSE(sx_loadotherstring_UTF16(kTag, 9, 0, wide));
    EXPECT_TRUE(sx_saveotherstring_UTF16(kTag, 9, 0, u"Stra\u00DFe"));
    EXPECT_EQ((recordHost.records[kTag][{9, 0}].size()), 7U);
    ASSERT_TRUE(sx_loadotherstring_UTF16(kTag, 9, 0, wide));
    EXPECT_EQ(std::u16string(wide.get()), u"Stra\u00DFe");
}

TEST_F(DataRecords, OldHostsKeepTheHalvesOfSmartShapesTheOtherWayRound) {
    ot_smartshape = kSmartShapeTag;
    sizeofsmartshape = sizeof(EDTOldSmartShape);
    const struct {
        std::uint32_t version;
        std::int32_t entry, swapped, back, next;
        std::uint32_t flags, rotated;
    } cases[] = {
        {0x0AFFFFFF, 0x00010002, 0x00020001, 0x00010002, 0x00010002, 0x40001234, 0x12344000},
        {0x0B000000, 0x00010002, 0x00010002, 0x00010002, 0x00020001, 0x40001234, 0x40001234},
        // The division cuts toward zero.
        {0, -0x10000, -1, -0x10000, -0x10000, 0x80000001, 0x00018000},
        {0, -0x10001, -0x10001, -0x10001, -0x10001, 1, 0x10000},
        {0, -0x7FFFF, 0x0000FFF9, -0x70000, -0x70000, 1, 0x10000},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.entry);
        recordHost = {};
        QorVersion = c.version;
        EDTSmartShape shape;
        shape.flags = c.flags;
        shape.firstEntry = shape.lastEntry = c.entry;
        std::uint16_t number = 0;
        EXPECT_TRUE(shape.CreateShapeOnly(number) && shape.SaveShapeOnly(number));
        EXPECT_EQ(+shape.firstEntry, c.entry);
        EXPECT_EQ(+shape.flags, c.flags);
        EDTOldSmartShape kept{};
        EDTSmartShape next;
        ASSERT_TRUE(sx_loadsmartshape(number, &kept) && shape.Load(number));
        EXPECT_TRUE(next.Next(number = 0) && !next.Next(number));
        EXPECT_EQ((std::vector{+kept.firstEntry, +kept.lastEntry, +shape.lastEntry, +next.firstEntry}),
                  (std::vector{c.swapped, c.swapped, c.back, c.next}));
        EXPECT_EQ((std::vector{+kept.flags, +shape.flags, +next.flags}),
                  (std::vector{c.rotated, c.flags, c.rotated}));
    }
}

}  // namespace
