// Typed record access: keys, accidental modifications, preferences in pieces, texts in runs.
#include "kit/data_records.h"

#include <gtest/gtest.h>

#include <numeric>

#include "kit/accidental_mods.h"
#include "kit/other_strings.h"
#include "kit/preference_records.h"
#include "record_host.h"

namespace {

using Words = std::vector<std::uint16_t>;

class DataRecords : public RecordHostTest {};

std::uint32_t tagOf(const std::string& text) {
    return std::accumulate(text.begin(), text.end(), 0U, [](std::uint32_t tag, char letter) {
        return tag << 8 | static_cast<unsigned char>(letter);
    });
}

constexpr std::uint32_t kTag = 0x6F745858;

// Adds two records, loads and saves the second, steps to both, and deletes the second.
template <class... Numbers, class Record, class Add, class Load, class Next, class Delete>
void tryFamily(std::tuple<Numbers...> numbers, Record record, Add& add, Load& load, Load& save, Next& next,
               Delete& erase) {
    recordHost = {};
    const auto call = [&](auto& function, auto& key) {
        return std::apply([&](auto&... number) { return function(number..., &record); }, key);
    };
    EXPECT_TRUE(call(add, numbers) && call(add, numbers) && call(load, numbers) && call(save, numbers));
    std::tuple<Numbers...> found;
    EXPECT_TRUE(call(next, found) && call(next, found) && !call(next, found));
    EXPECT_EQ(found, numbers);
    EXPECT_TRUE(std::apply(erase, numbers) && !call(load, numbers) && !std::apply(erase, numbers));
}

TEST_F(DataRecords, AreFoundByTheKeysOfTheirFamilies) {
    // With the keys of an appended record, of the two records, and of the start of the walk.
#define FAMILY(name, Record, tag, appended, a, b, start, ...)                                               \
    tryFamily(std::tuple(__VA_ARGS__), Record{}, sx_add##name, sx_load##name, sx_save##name, sx_next##name, \
              sx_delete##name);                                                                             \
    EXPECT_EQ(recordHost.keyed[tag], "cr" appended " sa" a " cr" appended " sa" b " lo" b " sa" b           \
                                     " ne" start " ne" a " ne" b " de" b " lo" b " de" b " ");
#define NUMBERED(name, Record, tag, Number) \
    FAMILY(name, Record, tag, "65535.0", "1.0", "2.0", "0.0", Number{9})
#define OTHER(name, Record, tag) \
    FAMILY(name, Record, tag, "513.65535", "513.0", "513.1", "0.0", short{513}, std::uint16_t{9})
#define ENTRY(name, Record, tag) \
    FAMILY(name, Record, tag, "4464.1.65535", "4464.1.0", "4464.1.1", "0.0.0", 70000U, std::uint16_t{9})
    NUMBERED(measurespec, EDTMeasureSpec2014, kMeasureSpecTag, short)
    NUMBERED(staffspec, EDTStaffSpec, kStaffSpecTag, short)
    NUMBERED(groupspec, EDTGroupSpec, kGroupSpecTag, std::uint16_t)
    NUMBERED(textblock, EDTTextBlock, kTextBlockTag, std::uint16_t)
    NUMBERED(textexpression, EDTTextExpression, kTextExpressionTag, std::uint16_t)
    NUMBERED(fretinstrument, EDTFretInstrument25_3, kFretInstrumentTag, std::uint16_t)
    OTHER(measuremark, MeasureMarkRecord, kMeasureMarkTag)
    OTHER(pagetext, EDTPageText, kPageTextTag)
    ENTRY(noteheadmod, EDTNoteheadMod, kNoteheadModTag)
    ENTRY(entrymark, EntryMarkRecord, kEntryMarkTag)
    FAMILY(centershape, CenterShapeRecord, kCenterShapeTag, "513.65535.0", "513.1.0", "513.2.0", "0.0.0",
           std::uint16_t{513}, std::uint16_t{7})
    FAMILY(measuretext, EDTMeasureText, kMeasureTextTag, "513.7.65535", "513.7.0", "513.7.1", "0.0.0",
           short{513}, short{7}, std::uint16_t{9})
    recordHost = {};
    std::uint16_t inci = 9;
    std::uint32_t record = 0;
    constexpr std::uint32_t kDetail = 0x44015858;
    EXPECT_TRUE(sx_adddetail(kDetail, 513, 7, inci, &record, 4) && sx_deletedetail(kDetail, 513, 7, inci));
    EXPECT_EQ(recordHost.keyed[kDetail], "cr513.7.65535 sa513.7.0 de513.7.0 ");
    recordHost = {};
    EXPECT_TRUE(sx_addglobal(kTag, inci, &record, 4) && sx_saveglobal(kTag, inci, &record, 4) &&
                sx_loadglobal(kTag, inci, &record, 4) && sx_deleteglobal(kTag, inci));
    EXPECT_EQ(recordHost.keyed[kTag], "cr65534.65535 sa65534.0 sa65534.0 lo65534.0 de65534.0 ");
}

TEST_F(DataRecords, AccidentalModificationsAreFoundByTheirNote) {
    std::uint16_t incident = 99;
    const EDTAccidentalMods2012 record{5, 55, 0, 0, 0, 0, 0, {}};
    for (const std::uint16_t id : Words{3, 7, 7, kAnyNote})
        EXPECT_TRUE(sx_addaccidentalmod(6, id, &record, incident));
    EXPECT_EQ(incident, 3);
    EDTAccidentalMods2012 loaded{};
    for (const auto& [id, expected] :
         std::map<std::uint16_t, int>{{3, 0}, {7, 1}, {5, 3}, {kAnyNote, 0}, {8, -1}}) {
        EXPECT_EQ(sx_loadaccidentalmod(6, id, &loaded, incident) ? incident : -1, expected) << id;
    }
    const EDTAccidentalMods2012 other{5, 66, 0, 0, 0, 0, 0, {}};
    EXPECT_TRUE(sx_saveaccidentalmod(6, 7, &other, incident) && sx_deleteaccidentalmod(6, 3));
    EXPECT_FALSE(sx_saveaccidentalmod(6, 3, &other, incident) || sx_deleteaccidentalmod(6, 3));
    EXPECT_EQ(recordHost.listing(kAccidentalModTag), "6.0.0=7,66 6.0.1=7,55 6.0.2=5,55 ");
    EXPECT_TRUE(sx_saveaccidentalmod(6, kAnyNote, &other, incident) && sx_deleteaccidentalmod(6, 7));
    EXPECT_TRUE(sx_addaccidentalmod(6, 9, &other, incident) && sx_deleteaccidentalmod(6, 9));
    EXPECT_TRUE(sx_deleteaccidentalmod(6, kAnyNote));
    EXPECT_EQ(recordHost.listing(kAccidentalModTag), "6.0.0=5,55 ");
    // A host that loads a record for every incident is asked no more than a thousand times.
    recordHost = {};
    recordHost.answer = [](const std::string&) { return short{2}; };
    EXPECT_FALSE(sx_loadaccidentalmod(6, 9, &loaded, incident));
    EXPECT_EQ(recordHost.calls.size(), 1000U);
}

TEST_F(DataRecords, AFretInstrumentCountsAsLoadedWhenSomethingWasWritten) {
    EDTFretInstrument25_3 record{};
    EDATAKEY key{1, 0};
    std::uint32_t size = sizeof record;
    for (const std::uint16_t written : Words{0, 1}) {
        record.strings = 6;
        recordHost.answer = [&](const std::string&) -> short {
            EXPECT_EQ(record.strings, 0);
            record.frets = written;
            return 0;
        };
        EXPECT_EQ(SX_LoadEData(kFretInstrumentTag, &key, &record, &size), written);
    }
    size = sizeof record - 1;
    EXPECT_DEATH(SX_LoadEData(kFretInstrumentTag, &key, &record, &size),
                 "\\*size >= sizeof\\(EDTFretInstrument25_3\\)");
}

// Loads and saves a preference record, empty where there is none, which goes into parts such as
// "41:65534.0=1,2,3,0,5,0 ". With a null buffer or one that is a byte too small the host is asked nothing.
void tryPreferences(std::uint32_t tag, std::uint16_t incident, const Words& record,
                    const std::string& parts) {
    SCOPED_TRACE(testing::Message() << std::hex << tag << " " << incident);
    const auto whole = static_cast<std::uint32_t>(record.size() * 2);
    const bool exists = whole != 0;
    EDATAKEY key{kGlobalNumber, incident};
    std::uint32_t size = 200;
    Words buffer(record);
    buffer.resize(100, 99);
    recordHost = {};
    EXPECT_EQ(SX_LoadEData(tag, &key, nullptr, &size), exists);
    EXPECT_EQ(size, exists ? whole : 200);
    size -= exists;
    EXPECT_EQ(SX_LoadEData(tag, &key, buffer.data(), &size) + SX_SaveEData(tag, &key, buffer.data(), &size),
              0);
    EXPECT_EQ(SX_SaveEData(tag, &key, nullptr, &(size = 200)), 0);
    EXPECT_EQ(recordHost.calls.size(), 0U);
    EXPECT_EQ(SX_SaveEData(tag, &key, buffer.data(), &size), exists);
    std::string saved;
    for (const auto& [subTag, records] : recordHost.records) {
        saved += {static_cast<char>(subTag >> 8), static_cast<char>(subTag), ':'};
        saved += recordHost.listing(subTag, 6);
    }
    EXPECT_EQ(saved, parts);
    recordHost.calls.clear();
    buffer.assign(100, 99);
    EXPECT_EQ(SX_LoadEData(tag, &key, buffer.data(), &(size = 200)), exists);
    EXPECT_EQ(size, exists ? whole : 200);
    EXPECT_EQ(Words(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(record.size())), record);
    EXPECT_EQ(buffer[record.size()], 99);
    // Each part is loaded once, and when the last is missing, so is the record.
    EXPECT_EQ(recordHost.calls.size(), std::count(parts.begin(), parts.end(), '='));
    if (!exists) return;
    auto& last = recordHost.records.rbegin()->second;
    last.erase(std::prev(last.end()));
    EXPECT_EQ(SX_LoadEData(tag, &key, buffer.data(), &size), 0);
}

// The words 1, 2, 3 ...
Words counting(std::size_t count) {
    Words words(count);
    std::iota(words.begin(), words.end(), std::uint16_t{1});
    return words;
}

TEST_F(DataRecords, PreferencesInRunsHaveTheirSubRecords) {
    // Tag, sub-record tag, count; where the incident chooses the run, the last incident.
    const struct {
        std::string tag, sub;
        std::uint16_t count, last;
    } cases[] = {
        {"GD", "79", 1, 0}, {"GG", "88", 11, 0}, {"Gb", "98", 1, 4}, {"Gd", "80", 1, 0},   {"Gs", "91", 1, 1},
        {"MM", "25", 2, 0}, {"ND", "04", 1, 0},  {"Nd", "66", 1, 0}, {"PF", "77", 4, 1},   {"SC", "52", 2, 0},
        {"SP", "94", 3, 0}, {"Sl", "26", 1, 15}, {"TC", "86", 5, 0}, {"SN", "40", 1, 128}, {"TI", "84", 4, 0},
        {"TX", "78", 9, 0}, {"Tp", "85", 4, 0},  {"Ts", "90", 1, 9},
    };
    for (const auto& c : cases) {
        const std::uint32_t tag = tagOf("pf" + c.tag);
        const Words record = counting(std::size_t{c.count} * 6);
        std::string parts = c.sub + ":";
        for (int i = 0; i < c.count; ++i) {
            const auto* const part = &record[static_cast<std::size_t>(i) * 6];
            parts += "65534." + std::to_string(std::max(c.last - 1, 0) + i) + "=" +
                     RecordHost::join({part, part + 6}, ",") + " ";
        }
        tryPreferences(tag, c.last == 0 ? 500 : c.last, record, parts);
        if (c.last != 0) tryPreferences(tag, static_cast<std::uint16_t>(c.last + 1), {}, "");
        // Incident 0 of the page format is that of the score, which is scattered.
        if (c.last > 1) tryPreferences(tag, 0, {}, "");
    }
    // What is in one piece, or has no key, is left to the host.
    std::uint32_t record = 7;
    std::uint32_t size = 4;
    recordHost = {};
    EXPECT_TRUE(sx_saveglobal(kTag, 0, &record, 4) && sx_loadglobal(kTag, 0, &record, 4));
    EXPECT_EQ(recordHost.keyed[kTag], "sa65534.0 lo65534.0 ");
    EXPECT_EQ(SX_LoadEData(kTag, nullptr, &record, &size) + SX_SaveEData(kTag, nullptr, &record, &size), 0);
}

TEST_F(DataRecords, ScatteredPreferencesAreConvertedBothWays) {
    // The words of a record that counts but for a 1 in a field that is negated, and its sub-records.
    const struct {
        std::string tag;
        std::uint16_t words, negated;
        const char* parts;
    } cases[] = {
        {"05", 9, 4, "41:65534.0=1,2,3,0,5,0 42:65534.0=6,7,9,8,0,0 "},
        {"DP", 10, 0, "43:65534.0=1,2,3,4,5,6 65534.1=7,8,9,10,0,0 "},
        {"EX", 8, 2, "44:1.0=1,0,3,4,0,0 1.1=5,6,7,8,0,0 "},
        {"MS", 8, 5, "45:65534.0=1,2,3,4,0,6 65534.1=8,7,0,0,0,0 "},
        {"PB", 6, 0, "46:65534.0=1,2,3,4,5,6 "},
        {"PF", 11, 11, "76:65534.0=1,2,3,4,5,6 65534.1=7,8,9,10,0,0 "},
        {"PL", 6, 4, "47:65534.0=1,2,3,0,6,5 "},
        {"RP", 7, 0, "48:65534.0=1,2,3,4,5,6 65534.1=7,0,0,0,0,0 "},
        {"SI", 6, 0, "49:65534.0=1,2,3,4,6,5 "},
        {"SS", 8, 5, "50:65534.0=1,2,3,4,0,6 65534.1=7,8,0,0,0,0 "},
    };
    for (const auto& c : cases) {
        Words record = counting(c.words);
        if (c.negated != 0) record[c.negated - 1U] = 1;
        tryPreferences(tagOf("pf" + c.tag), 0, record, c.parts);
    }
    // What shares their words stays; without its second part a record does not load.
    recordHost = {};
    auto& words = recordHost.records[tagOf("ot41")][{65534, 0}] = {100, 50, 350, 9, 0x0302, 77};
    EDT2005Prefs prefs{};
    EXPECT_FALSE(sx_loadglobal(tagOf("pf05"), 0, &prefs, sizeof prefs) || prefs.noteSpacing != 0);
    recordHost.records[tagOf("ot42")][{65534, 0}] = Words(6);
    EXPECT_TRUE(sx_loadglobal(tagOf("pf05"), 0, &prefs, sizeof prefs));
    EXPECT_EQ((std::pair{+prefs.showRests, +prefs.tieStyle}), (std::pair{0, 2}));
    prefs.tieStyle = 1;
    EXPECT_TRUE(sx_saveglobal(tagOf("pf05"), 0, &prefs, sizeof prefs));
    EXPECT_EQ(words, (Words{100, 50, 350, 1, 0x0301, 77}));
}

TEST_F(DataRecords, TextsLieInRunsOfTwelveBytes) {
    std::unique_ptr<char[]> loaded;
    for (const auto& [length, records] : std::vector<std::pair<std::size_t, std::size_t>>{
             {30, 3}, {0, 0}, {11, 1}, {12, 1}, {13, 2}, {24, 2}, {36, 3}}) {
        SCOPED_TRACE(length);
        const std::string saved(length, 'x');
        recordHost.calls.clear();
        EXPECT_TRUE(sx_saveotherstring(kTag, 4, 2, saved.c_str()));
        EXPECT_EQ(recordHost.records[kTag].size(), records);
        // The run of 30 bytes goes from its end.
        EXPECT_TRUE(length != 0 || recordHost.calls[4] == "delete 6f745858 4.4");
        ASSERT_TRUE(sx_loadotherstring(kTag, 4, 2, loaded));
        EXPECT_EQ(loaded.get(), saved);
    }
    const std::string text(30, 'x');
    // It is read twice, the second time into its place.
    EXPECT_TRUE(sx_saveotherstring(kTag, 4, 0, text.c_str()));
    for (const std::size_t failing : {4U, 5U, 6U}) {
        recordHost.calls.clear();
        recordHost.answer = [&](const std::string&) -> short { return recordHost.calls.size() != failing; };
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
    EXPECT_TRUE(sx_loadotherstring(kTag, 4, 65532, loaded) && loaded.get() == text);
    const std::uint32_t numbers[] = {1, 2, 3, 4};
    const EDATAKEY key{5, 0};
    EXPECT_EQ(VeltraOtArray_Save(kTag, &key, 4, 4, numbers), 1);
    EXPECT_EQ((recordHost.records[kTag][{5, 1}]), (Words{4, 0, 0, 0, 0, 0}));
}

TEST_F(DataRecords, WideTextsLieWholeInOneRecord) {
    std::unique_ptr<char16_t[]> text;
    const auto textAt = [&](std::uint16_t number) {
        return sx_loadotherstring_UTF16(kTag, number, 0, text) ? std::u16string(text.get()) : u"none";
    };
    EXPECT_EQ(textAt(9), u"none");
    EXPECT_TRUE(sx_saveotherstring_UTF16(kTag, 9, 0, u"Stra\u00DFe"));
    EXPECT_EQ(recordHost.records[kTag].at({9, 0}).size(), 7U);
    EXPECT_EQ(textAt(9), u"Stra\u00DFe");
    recordHost.records[kTag][{9, 0}] = {u'a', u'b'};
    EXPECT_EQ(textAt(9), u"ab") << "without a terminator it ends where it ends";
    recordHost.calls.clear();
    recordHost.answer = [](const std::string&) -> short { return recordHost.calls.size() % 2 != 0; };
    EXPECT_EQ(textAt(9), u"none") << "its size is told, but it is not loaded";
    recordHost.answer = [](const std::string&) { return short{2}; };
    EXPECT_FALSE(sx_saveotherstring_UTF16(kTag, 9, 0, u"")) << "only 1 is a success";
    // Raw texts have a number each.
    recordHost = {};
    std::uint16_t number = 0;
    EXPECT_TRUE(sx_addrawtext(number, u"one") && sx_addrawtext(number, u"two") && number == 2);
    EXPECT_TRUE(sx_saverawtext(number, u"second"));
    number = 0;
    for (const std::u16string expected : {u"one1", u"second2"}) {
        EXPECT_TRUE(sx_nextrawtext(number, text));
        EXPECT_EQ(std::u16string(text.get()) + static_cast<char16_t>(u'0' + number), expected);
    }
    EXPECT_FALSE(sx_nextrawtext(number, text) || text);
    EXPECT_TRUE(sx_deleterawtext(1) && sx_loadrawtext(2, text));
    EXPECT_FALSE(sx_loadrawtext(1, text) || sx_deleterawtext(1));
    recordHost.answer = [](const std::string&) { return short{0}; };
    EXPECT_FALSE(sx_addrawtext(number, u"three"));
}

}  // namespace
