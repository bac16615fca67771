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
        ot_smartshape = kSmartShapeTag;
        sizeofsmartshape = sizeof(EDTOldSmartShape);
    }
    // The tag "ot" and two more characters.
    static std::uint32_t ot(const std::string& letters) { return tagOf("ot" + letters); }
    static std::uint32_t tagOf(const std::string& text) {
        return std::accumulate(text.begin(), text.end(), 0U, [](std::uint32_t tag, char letter) {
            return tag << 8 | static_cast<unsigned char>(letter);
        });
    }
};

// The keys of all calls, which must be of the tag.
std::string keysOfCalls(std::uint32_t tag) {
    char head[12];
    std::snprintf(head, sizeof head, " %08x ", tag);
    std::string text;
    for (const std::string& call : recordHost.calls) {
        const std::size_t place = call.find(head);
        EXPECT_NE(place, std::string::npos) << call;
        text += call.substr(0, 2) + call.substr(place + 10) + " ";
    }
    return text;
}

// Adds two records, then loads, saves, steps to and deletes the second, and returns the keys that the host
// saw. `last` is the number of the key that distinguishes the two.
template <class Last, class Add, class Load, class Save, class Next, class Delete>
std::string tryFamily(std::uint32_t tag, Last& last, Add add, Load load, Save save, Next next, Delete erase) {
    recordHost = {};
    EXPECT_TRUE(add() && add() && load() && save());
    --last;
    EXPECT_TRUE(next() && !next() && erase() && !load() && !erase());
    return keysOfCalls(tag);
}
#define CALL(function, ...) [&] { return function(__VA_ARGS__); }
#define TYPED_FAMILY(name, tag, last, calls, ...)                                                       \
    EXPECT_EQ(                                                                                          \
        tryFamily(tag, last, CALL(sx_add##name, __VA_ARGS__, &record),                                  \
                  CALL(sx_load##name, __VA_ARGS__, &record), CALL(sx_save##name, __VA_ARGS__, &record), \
                  CALL(sx_next##name, __VA_ARGS__, &record), CALL(sx_delete##name, __VA_ARGS__)),       \
        calls)                                                                                          \
        << #name;
#define PLAIN_FAMILY(name, tag, calls, ...)                                          \
    EXPECT_EQ(tryFamily(tag, inci, CALL(sx_add##name, tag, __VA_ARGS__, &record, 4), \
                        CALL(sx_load##name, tag, __VA_ARGS__, &record, 4),           \
                        CALL(sx_save##name, tag, __VA_ARGS__, &record, 4),           \
                        CALL(sx_next##name, tag, __VA_ARGS__, &record, 4),           \
                        CALL(sx_delete##name, tag, __VA_ARGS__)),                    \
              calls);

// The same keys from that of an appended record and those that the two records got.
std::string callsFor(const std::string& appended, const std::string& a, const std::string& b) {
    const std::string end = b + " ";
    return "cr" + appended + " sa" + a + " cr" + appended + " sa" + end + "lo" + end + "sa" + end + "ne" + a +
           " ne" + end + "de" + end + "lo" + end + "de" + end;
}

const std::string kNumberedCalls = callsFor("65535.0", "1.0", "2.0");
const std::string kOtherCalls = callsFor("65534.65535", "65534.0", "65534.1");
const std::string kPairCalls = callsFor("513.65535.0", "513.1.0", "513.2.0");
const std::string kDetailCalls = callsFor("513.7.65535", "513.7.0", "513.7.1");
const std::string kEntryCalls = callsFor("4464.1.65535", "4464.1.0", "4464.1.1");

TEST_F(DataRecords, AreFoundByTheKeysOfTheirFamilies) {
    std::uint16_t inci = 9;
#define FAMILY(name, Record, tag, last, calls, numbers, ...) \
    {                                                        \
        Record record{};                                     \
        numbers;                                             \
        TYPED_FAMILY(name, tag, last, calls, __VA_ARGS__)    \
    }
#define NUMBERED_FAMILY(name, Record, tag, Number) \
    FAMILY(name, Record, tag, number, kNumberedCalls, Number number = 9, number)
#define OTHER_FAMILY(name, Record, tag, Number) \
    FAMILY(name, Record, tag, inci, kOtherCalls, auto number = static_cast<Number>(65534), number, inci)
#define PAIR_FAMILY(name, Record, tag, First, Second) \
    FAMILY(name, Record, tag, second, kPairCalls, First first = 513; Second second = 7, first, second)
#define DETAIL_FAMILY(name, Record, tag, First, Second) \
    FAMILY(name, Record, tag, inci, kDetailCalls, First first = 513; Second second = 7, first, second, inci)
#define ENTRY_FAMILY(name, Record, tag) \
    FAMILY(name, Record, tag, inci, kEntryCalls, std::uint32_t entry = 70000, entry, inci)
#include "kit/record_families.def"
    constexpr std::uint32_t kOther = 0x534F5858;
    constexpr std::uint32_t kDetail = 0x44015858;
    constexpr std::uint32_t kEntry = 0x45015858;
    std::uint16_t number = kGlobalNumber;
    std::uint16_t first = 513;
    std::uint16_t second = 7;
    std::uint32_t entry = 70000;
    std::uint32_t record = 0;
    PLAIN_FAMILY(other, kOther, kOtherCalls, number, inci)
    PLAIN_FAMILY(detail, kDetail, kDetailCalls, first, second, inci)
    PLAIN_FAMILY(entrydetail, kEntry, kEntryCalls, entry, inci)
    // On to the record of other numbers.
    recordHost = {};
    EXPECT_TRUE(sx_adddetail(kDetail, 513, 7, inci, &record, 4) &&
                sx_addother(kOther, 513, inci, &record, 4) &&
                sx_addentrydetail(kEntry, 70000, inci, &record, 4));
    first = second = number = 0;
    entry = 0;
    EXPECT_TRUE(sx_nextdetail(kDetail, first, second, inci, &record, 4) &&
                sx_nextother(kOther, number, inci, &record, 4) &&
                sx_nextentrydetail(kEntry, entry, inci, &record, 4));
    EXPECT_EQ((std::vector<std::uint32_t>{first, second, number, entry}),
              (std::vector<std::uint32_t>{513, 7, 513, 70000}));
    recordHost = {};
    EXPECT_TRUE(sx_addglobal(kOther, inci, &record, 4) && sx_saveglobal(kOther, inci, &record, 4) &&
                sx_loadglobal(kOther, inci, &record, 4) && sx_deleteglobal(kOther, inci));
    EXPECT_EQ(keysOfCalls(kOther), "cr65534.65535 sa65534.0 sa65534.0 lo65534.0 de65534.0 ");
}

TEST_F(DataRecords, AccidentalModificationsAreFoundByTheirNote) {
    constexpr std::uint32_t kEntry = 70000;
    std::uint16_t incident = 99;
    const EDTAccidentalMods2012 record{5, 55, 0, 0, 0, 0, 0, {}};
    for (const std::uint16_t id : Words{3, 7, 7, kAnyNote})
        EXPECT_TRUE(sx_addaccidentalmod(kEntry, id, &record, incident));
    EXPECT_EQ(incident, 3);
    EDTAccidentalMods2012 loaded{};
    for (const auto& [id, expected] :
         std::map<std::uint16_t, int>{{3, 0}, {7, 1}, {5, 3}, {kAnyNote, 0}, {8, -1}}) {
        EXPECT_EQ(sx_loadaccidentalmod(kEntry, id, &loaded, incident) ? incident : -1, expected) << id;
    }
    const EDTAccidentalMods2012 other{5, 66, 0, 0, 0, 0, 0, {}};
    EXPECT_TRUE(sx_saveaccidentalmod(kEntry, 7, &other, incident));
    EXPECT_TRUE(sx_deleteaccidentalmod(kEntry, 3));
    EXPECT_FALSE(sx_saveaccidentalmod(kEntry, 3, &other, incident) || sx_deleteaccidentalmod(kEntry, 3));
    EXPECT_EQ(recordHost.listing(kAccidentalModTag), "4464.1.0=7,66 4464.1.1=7,55 4464.1.2=5,55 ");
    EXPECT_TRUE(sx_saveaccidentalmod(kEntry, kAnyNote, &other, incident));
    EXPECT_TRUE(sx_deleteaccidentalmod(kEntry, 7) && sx_deleteaccidentalmod(kEntry, kAnyNote));
    EXPECT_EQ(recordHost.listing(kAccidentalModTag), "4464.1.0=5,55 ");
    // A host that loads a record for every incident is asked no more than a thousand times.
    recordHost.calls.clear();
    recordHost.answer = [](const std::string&) { return short{2}; };
    EXPECT_FALSE(sx_loadaccidentalmod(kEntry, 9, &loaded, incident));
    EXPECT_EQ(recordHost.calls.size(), 1000U);
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

// Loads and saves a preference record with a null buffer, with one that is a byte too small, and with a large
// one; without a record of that incident (size 0) the host is asked nothing.
void tryBuffers(std::uint32_t tag, std::uint16_t incident, std::uint32_t whole) {
    SCOPED_TRACE(incident);
    EDATAKEY key{kGlobalNumber, incident};
    std::uint32_t size = 200;
    std::byte buffer[200] = {};
    recordHost.calls.clear();
    EXPECT_EQ(SX_LoadEData(tag, &key, nullptr, &size), whole != 0);
    EXPECT_EQ(size, whole != 0 ? whole : 200);
    size -= whole != 0;
    EXPECT_EQ(SX_LoadEData(tag, &key, buffer, &size) + SX_SaveEData(tag, &key, buffer, &size), 0);
    EXPECT_EQ(SX_SaveEData(tag, &key, nullptr, &(size = 200)), 0);
    EXPECT_EQ(recordHost.calls.size(), 0U);
    if (whole == 0) return;
    EXPECT_EQ(SX_SaveEData(tag, &key, buffer, &size), 1);
    EXPECT_EQ(size, whole);
    EXPECT_EQ(SX_LoadEData(tag, &key, buffer, &(size = 200)), 1);
    EXPECT_EQ(size, whole);
}

TEST_F(DataRecords, PreferencesInRunsHaveTheirSubRecords) {
    // Tag, sub-record tag, count; where the incident chooses the run, the last incident.
    const struct {
        const char* tag;
        const char* sub;
        std::uint16_t count, last;
    } cases[] = {
        {"GD", "79", 1, 0}, {"GG", "88", 11, 0}, {"Gb", "98", 1, 4}, {"Gd", "80", 1, 0},   {"Gs", "91", 1, 1},
        {"MM", "25", 2, 0}, {"ND", "04", 1, 0},  {"Nd", "66", 1, 0}, {"PF", "77", 4, 1},   {"SC", "52", 2, 0},
        {"SP", "94", 3, 0}, {"Sl", "26", 1, 15}, {"TC", "86", 5, 0}, {"SN", "40", 1, 128}, {"TI", "84", 4, 0},
        {"TX", "78", 9, 0}, {"Tp", "85", 4, 0},  {"Ts", "90", 1, 9},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.tag);
        const std::uint32_t tag = tagOf(std::string("pf") + c.tag);
        const std::uint16_t incident = c.last == 0 ? 500 : c.last;
        recordHost = {};
        tryBuffers(tag, incident, c.count * 12U);
        if (c.last != 0) tryBuffers(tag, static_cast<std::uint16_t>(c.last + 1), 0);
        // Incident 0 of the page format is that of the score, which is scattered.
        if (c.last > 1) tryBuffers(tag, 0, 0);
        auto& parts = recordHost.records[ot(c.sub)];
        for (std::uint16_t i = 0; i < 130; ++i) parts[{65534, i}] = Words(6, i);
        const auto first = static_cast<std::uint16_t>(c.last == 0 ? 0 : c.last - 1);
        const auto end = static_cast<std::uint16_t>(first + c.count);
        Words words(std::size_t{c.count} * 6, 999);
        const auto size = static_cast<std::uint32_t>(words.size() * 2);
        EXPECT_TRUE(sx_loadglobal(tag, incident, words.data(), size));
        for (unsigned i = 0; i < words.size(); ++i) EXPECT_EQ(words[i], first + i / 6);
        EXPECT_TRUE(sx_saveglobal(tag, incident, Words(words.size(), 999).data(), size));
        const Words ends{parts[{65534, first}][0], parts[{65534, static_cast<std::uint16_t>(end - 1)}][5],
                         parts[{65534, end}][0]};
        EXPECT_EQ(ends, (Words{999, 999, end}));
        parts.erase({65534, static_cast<std::uint16_t>(end - 1)});
        EXPECT_FALSE(sx_loadglobal(tag, incident, words.data(), size));
    }
    // What is in one piece, or has no key, is left to the host.
    std::uint32_t size = 4;
    std::uint32_t record = 7;
    recordHost = {};
    EXPECT_TRUE(sx_saveglobal(tagOf("pfZZ"), 0, &record, 4) && sx_loadglobal(tagOf("pfZZ"), 0, &record, 4));
    EXPECT_EQ(recordHost.calls, (std::vector<std::string>{"save 70665a5a 65534.0", "load 70665a5a 65534.0"}));
    EXPECT_EQ(SX_LoadEData(tagOf("pf05"), nullptr, &record, &size), 0);
    EXPECT_EQ(SX_SaveEData(tagOf("pf05"), nullptr, &record, &size), 0);
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
    tryBuffers(tag, 0, sizeof(record));                                  \
    EXPECT_TRUE(sx_saveglobal(tag, 0, &saved, sizeof saved));            \
    record loaded{};                                                     \
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
}

TEST_F(DataRecords, TextsThatAHostDoesNotTakeOrGiveFail) {
    constexpr std::uint32_t kTag = 0x6F745858;
    const std::string text(30, 'x');
    EXPECT_TRUE(sx_saveotherstring(kTag, 4, 0, text.c_str()));
    // It is read twice, the second time into its place.
    for (const std::size_t failing : {4U, 5U, 6U}) {
        recordHost.calls.clear();
        recordHost.answer = [&](const std::string&) -> short { return recordHost.calls.size() != failing; };
        std::unique_ptr<char[]> loaded;
        EXPECT_FALSE(sx_loadotherstring(kTag, 4, 0, loaded));
        EXPECT_EQ(loaded, nullptr);
    }
    recordHost.answer = [](const std::string& call) -> short { return call != "save 6f745858 4.1"; };
    EXPECT_FALSE(sx_saveotherstring(kTag, 4, 0, text.c_str()));
    EXPECT_EQ(recordHost.records[kTag].size(), 1U);
    // Three records need three incidents, of which the last one has none after it.
    recordHost = {};
    EXPECT_TRUE(sx_saveotherstring(kTag, 4, 65532, text.c_str()));
    EXPECT_FALSE(sx_saveotherstring(kTag, 4, 65533, text.c_str()));
    EXPECT_EQ(recordHost.records[kTag].size(), 3U);
    std::unique_ptr<char[]> loaded;
    EXPECT_TRUE(sx_loadotherstring(kTag, 4, 65532, loaded));
    EXPECT_EQ(loaded.get(), text);
    const std::uint32_t numbers[] = {1, 2, 3, 4};
    const EDATAKEY key{5, 0};
    EXPECT_EQ(VeltraOtArray_Save(kTag, &key, 4, 4, numbers), 1);
    EXPECT_EQ((recordHost.records[kTag][{5, 1}]), (Words{4, 0, 0, 0, 0, 0}));
}

TEST_F(DataRecords, WideTextsLieWholeInOneRecord) {
    constexpr std::uint32_t kTag = 0x6F745858;
    const auto textAt = [](std::uint16_t number) {
        std::unique_ptr<char16_t[]> text;
        return sx_loadotherstring_UTF16(kTag, number, 0, text) ? std::u16string(text.get()) : u"none";
    };
    EXPECT_EQ(textAt(9), u"none");
    EXPECT_TRUE(sx_saveotherstring_UTF16(kTag, 9, 0, u"Stra\u00DFe"));
    EXPECT_EQ(recordHost.records[kTag].at({9, 0}).size(), 7U);
    EXPECT_EQ(textAt(9), u"Stra\u00DFe");
    // A record without a terminator ends where it ends.
    recordHost.records[kTag][{9, 0}] = {u'a', u'b'};
    EXPECT_EQ(textAt(9), u"ab");
    recordHost.answer = [](const std::string&) -> short { return recordHost.calls.size() % 2; };
    recordHost.calls.clear();
    EXPECT_EQ(textAt(9), u"none") << "its size is told, but it is not loaded";
    recordHost.answer = [](const std::string&) { return short{2}; };
    EXPECT_FALSE(sx_saveotherstring_UTF16(kTag, 9, 0, u"")) << "only 1 is a success";
}

TEST_F(DataRecords, RawTextsHaveANumberEach) {
    std::uint16_t number = 0;
    EXPECT_TRUE(sx_addrawtext(number, u"one") && sx_addrawtext(number, u"two"));
    EXPECT_EQ(number, 2);
    EXPECT_TRUE(sx_saverawtext(number, u"second"));
    std::unique_ptr<char16_t[]> text;
    EXPECT_TRUE(sx_nextrawtext(number = 0, text));
    EXPECT_EQ(std::u16string(text.get()) + char16_t(u'0' + number), u"one1");
    EXPECT_TRUE(sx_nextrawtext(number, text));
    EXPECT_EQ(std::u16string(text.get()) + char16_t(u'0' + number), u"second2");
    EXPECT_FALSE(sx_nextrawtext(number, text));
    EXPECT_EQ(text, nullptr);
    EXPECT_TRUE(sx_deleterawtext(1) && sx_loadrawtext(2, text));
    EXPECT_FALSE(sx_loadrawtext(1, text) || sx_deleterawtext(1));
    recordHost.answer = [](const std::string&) { return short{0}; };
    EXPECT_FALSE(sx_addrawtext(number, u"three"));
}

TEST_F(DataRecords, OldHostsKeepTheHalvesOfSmartShapesTheOtherWayRound) {
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

TEST_F(DataRecords, TheOldLayoutOfSmartShapesIsSelectedByTheSizeOfTheCurrentOne) {
    EDTSmartShape shape;
    std::uint16_t number = 0;
    EXPECT_TRUE(shape.CreateShapeOnly(number));
    recordHost.records[kSmartShapeTag].at({number, 0}).resize(60);
    EXPECT_TRUE(shape.Load(number)) << "of a size that the host tells";
    EXPECT_EQ(ot_smartshape, kSmartShapeTag);
    recordHost.answer = [](const std::string&) -> short { return ++sizeofsmartshape > 0; };
    EXPECT_TRUE(shape.Load(number)) << "while the size grows";
    EXPECT_EQ(std::pair(ot_smartshape, sizeofsmartshape), std::pair(kOldSmartShapeTag, 84U));
    recordHost = {};
    EXPECT_TRUE(shape.CreateShapeOnly(number) && shape.SaveShapeOnly(number));
    EXPECT_EQ(recordHost.records.size(), 1U);
    EXPECT_EQ(recordHost.records[kOldSmartShapeTag].at({1, 0}).size(), 42U);
    EXPECT_TRUE(shape.Next(number = 0) && shape.EraseShapeOnly(number) && !shape.EraseShapeOnly(number));
}

TEST_F(DataRecords, ASmartShapeIsMadeAndErasedWithItsMarks) {
    const auto marks = [] {
        std::string text;
        for (const std::uint32_t tag : {kSmartShapeTag, kMeasureMarkTag, kCenterShapeTag, kEntryMarkTag})
            text += std::to_string(recordHost.records[tag].size());
        return text;
    };
    EDTSmartShape shape;
    shape.firstMeasure = 2;
    shape.lastMeasure = 5;
    shape.flags = SHAPE_ON_ENTRIES;
    shape.firstEntry = 70000;
    shape.lastEntry = 6;
    std::uint16_t number = 0;
    EXPECT_TRUE(shape.FullCreate(number));
    EXPECT_EQ(recordHost.listing(kMeasureMarkTag), "2.0=1,0 3.0=1,1 4.0=1,2 5.0=1,0 ");
    EXPECT_EQ(recordHost.listing(kEntryMarkTag), "6.0.0=1,0 4464.1.0=1,0 ");
    EXPECT_TRUE(shape.FullSave(number)) << "marks it once more";
    EXPECT_EQ(marks(), "1844");
    EXPECT_TRUE(EDTSmartShapeMeasMark::FindAndEraseMarkOnly(3, number) &&
                EDTSmartShapeMeasMark::FindAndEraseWithCenterShapes(4, number) &&
                EDTSmartShapeEntMark::FindAndErase(6, number));
    EXPECT_EQ(marks(), "1422");
    EXPECT_EQ(recordHost.listing(kCenterShapeTag), "1.1.0=0,0 1.3.0=0,0 ");
    EXPECT_TRUE(EDTSmartShapeMeasMark::FindAndEraseMarkOnly(2, 9)) << "of another shape";
    shape.flags = 0;
    EXPECT_TRUE(shape.FullErase(number));
    EXPECT_FALSE(shape.FullErase(number));
    EXPECT_EQ(marks(), "0022");
    recordHost.answer = [](const std::string& call) -> short { return !call.starts_with("create 6f744d78"); };
    EDTCenterShape center;
    std::uint16_t centerNumber = 0;
    EXPECT_FALSE(center.FullCreate(3, number, centerNumber)) << "without its mark";
    EXPECT_TRUE(center.Load(number, centerNumber) && center.Save(number, centerNumber));
    EXPECT_TRUE(center.EraseShapeOnly(number, centerNumber) && !center.EraseShapeOnly(number, centerNumber));
}

}  // namespace
