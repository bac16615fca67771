// Bundles as directories: when they exist, their identity, information dictionaries, and threads that share
// them.
#include <array>
#include <atomic>
#include <thread>

#include "support.h"

namespace platform_tests {
namespace {

namespace fs = std::filesystem;

std::u16string infoValue(const Held<CFBundleRef>& bundle, CFStringRef key = kCFBundleExecutableKey) {
    const CFTypeRef value = CFBundleGetValueForInfoDictionaryKey(bundle.get(), key);
    const bool isString = value != nullptr && CFGetTypeID(value) == CFStringGetTypeID();
    return value == nullptr || isString ? units(static_cast<CFStringRef>(value)) : u"<other>";
}

TEST_F(BundleTest, AnyDirectoryAndNothingElseIsOneBundle) {
    const auto bundle = open();
    ASSERT_TRUE(bundle);
    EXPECT_EQ(CFGetTypeID(bundle.get()), CFBundleGetTypeID());
    EXPECT_EQ(CFBundleGetIdentifier(bundle.get()), nullptr);
    EXPECT_EQ(open().get(), bundle.get());
    EXPECT_EQ(openBundle(folder().native() + "/").get(), bundle.get());
    EXPECT_EQ(pathOf(Held<CFURLRef>(CFBundleCopyBundleURL(bundle.get()))), folder().native());
    write("file", "content");
    for (const fs::path& path : {folder() / "missing", folder() / "file", fs::path(std::string(100000, 'x'))})
        EXPECT_FALSE(openBundle(path));
    EXPECT_EQ(CFBundleCreate(kCFAllocatorDefault, nullptr), nullptr);
}

TEST_F(BundleTest, IsFoundByItsIdentifierWhileItLives) {
    const auto find = [](const char16_t* name) {
        return CFBundleGetBundleWithIdentifier(string(name).get());
    };
    writeInfo(entry("CFBundleIdentifier", "org.rovescio.tests.identified"));
    EXPECT_EQ(find(u"org.rovescio.tests.identified"), nullptr);
    {
        const auto bundle = open();
        EXPECT_EQ(find(u"org.rovescio.tests.identified"), bundle.get());
        EXPECT_EQ(units(CFBundleGetIdentifier(bundle.get())), u"org.rovescio.tests.identified");
        for (const char16_t* other : {u"org.rovescio.tests.IDENTIFIED", u""}) EXPECT_EQ(find(other), nullptr);
        EXPECT_EQ(CFBundleGetBundleWithIdentifier(nullptr), nullptr);
    }
    EXPECT_EQ(find(u"org.rovescio.tests.identified"), nullptr);
}

TEST_F(BundleTest, ReadsInformationOfBothTextFormatsAnew) {
    const std::string key = "<key>CFBundleExecutable</key>";
    using Row = std::pair<std::string, std::u16string_view>;
    const auto cases = table(
        Row{xmlPropertyList(entry("CFBundleExecutable", "X &amp; &#233;")), u"X & \u00E9"},
        Row{"{ CFBundleExecutable = Old; Other = (a, b); }", u"Old"},
        Row{xmlPropertyList(entry("CFBundleExecutable", "")), u""},
        Row{xmlPropertyList(key + "<integer>5</integer>"), u"<other>"},
        Row{xmlPropertyList(key + "<array><string>a</string></array>"), u"<NULL>"},
        Row{xmlPropertyList(entry("Unrelated", "a")), u"<NULL>"},
        Row{"<?xml version=\"1.0\"?><plist><dict>" + key, u"<NULL>"}, Row{"not a property list", u"<NULL>"});
    for (const auto& [content, executable] : cases) {
        for (const char* place : {"Contents/Info.plist", "Info.plist"}) {
            fs::remove_all(folder() / "Contents");
            write(place, content);
            EXPECT_EQ(infoValue(open()), executable) << place << content;
        }
    }
    write("en.lproj/Localizable.strings", "k = flat;");
    EXPECT_EQ(localized(u"k"), u"flat");
}

TEST_F(BundleTest, KeepsTheKindsOfValuesAndPrefersLocalisedOnes) {
    writeInfo("<key>I</key><integer>-3</integer><key>R</key><real>2.5</real><key>B</key><true/>" +
              entry("Name", "plain") + entry("Other", "kept"));
    write("Contents/Resources/en.lproj/InfoPlist.strings", "Name = \"localised\";");
    const auto bundle = open();
    EXPECT_EQ(infoValue(bundle, CFSTR("Name")) + infoValue(bundle, CFSTR("Other")), u"localisedkept");
    for (const auto& [key, number] : {std::pair{CFSTR("I"), -3.0}, std::pair{CFSTR("R"), 2.5}}) {
        double value = 0;
        const CFTypeRef object = CFBundleGetValueForInfoDictionaryKey(bundle.get(), key);
        ASSERT_NE(object, nullptr);
        EXPECT_TRUE(CFNumberGetValue(static_cast<CFNumberRef>(object), kCFNumberDoubleType, &value));
        EXPECT_EQ(value, number);
    }
    EXPECT_EQ(CFBundleGetValueForInfoDictionaryKey(bundle.get(), CFSTR("B")), kCFBooleanTrue);
}

TEST_F(BundleTest, WithLoadedCodeIsPreferredAmongEqualIdentifiers) {
    for (const char* name : {"first", "second"}) {
        write(fs::path(name) / "Contents/Info.plist",
              xmlPropertyList(entry("CFBundleIdentifier", "org.rovescio.tests.twin") +
                              entry("CFBundleExecutable", "Sample")));
        fs::create_directory(folder() / name / "Contents/MacOS");
    }
    fs::copy_file(SAMPLE_CODE, folder() / "second/Contents/MacOS/Sample");
    const auto first = openBundle(folder() / "first");
    const auto second = openBundle(folder() / "second");
    EXPECT_EQ(CFBundleGetBundleWithIdentifier(CFSTR("org.rovescio.tests.twin")), first.get());
    ASSERT_TRUE(CFBundleLoadExecutable(second.get()));
    EXPECT_EQ(CFBundleGetBundleWithIdentifier(CFSTR("org.rovescio.tests.twin")), second.get());
    CFBundleUnloadExecutable(second.get());
}

}  // namespace
}  // namespace platform_tests
