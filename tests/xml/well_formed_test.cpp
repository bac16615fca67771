// What is accepted as XML and what is not, and where the fault is said to lie.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "xml/tree.h"

namespace rovescio::xml {
namespace {

using Kind = ParseFault::Kind;

TEST(WellFormed, IsAccepted) {
    const std::string texts[] = {
        "<a/>",
        " \r\n<a></a>\t",
        "\xEF\xBB\xBF<?xml version='1.0'?><a/>",
        "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone='yes' ?><a/>",
        "<?xml\tversion = '1.12'\n?><!-- - x --><?p?><a/><?xml-model a?><!---->",
        "<a b='\"x' c = \"'&lt;>]]&gt;\"\n/>",
        "<a >&amp;&lt;&gt;&quot;&apos;&#9;&#x10FFFF;&#xd7FF;\x7F\xC2\x80</a\n>",
        "<a>]]<![CDATA[]]]]><![CDATA[<&]>]]>]><!-- <a> & --><?p <a> & ?></a>",
        "<_:-.0\xC3\xA9\xC2\xB7 \xE3\x80\x81\xF0\x90\x80\x80='1'/>",
        "<r><a/><b/><a/><b\xC3\xA9/></r>",
        "<!DOCTYPE a><a/>",
        "<!DOCTYPE a SYSTEM '\"<&%'\n><a/>",
        "<!DOCTYPE a PUBLIC \"-//x y'(z)\" 'u' [ %p; <?p?><!-- - --> ] ><a/>",
        "<!DOCTYPE a [<!ELEMENT a EMPTY><!ELEMENT b ANY >]><a/>",
        "<!DOCTYPE a [<!ELEMENT c (#PCDATA)><!ELEMENT d ( #PCDATA | e )* >]><a/>",
        "<!DOCTYPE a [<!ELEMENT a ( b? , ( c | (d)* )+ , e )*><!ELEMENT b (c)><!ATTLIST a>]><a/>",
        "<!DOCTYPE a [<!ATTLIST a b CDATA #REQUIRED c ID #IMPLIED d (0|e ) '&#65;'>]><a/>",
        "<!DOCTYPE a [<!ATTLIST a b NOTATION ( g ) #FIXED \"h\">]><a/>",
        "<!DOCTYPE a [<!NOTATION n SYSTEM ''><!NOTATION n PUBLIC '' ><!NOTATION n PUBLIC \"\" \"\">]><a/>",
    };
    for (const std::string& text : texts) EXPECT_EQ(Tree(text, {}).fault().description, "") << text;
}

// Texts that are apart from one another by two spaces or a line end.
constexpr std::string_view kMalformed = R"(
    <!---->^x<a/>  <a/>^x  <a/>^<b/>  <a/>^</a>  <a/>^<!DOCTYPE a>  <a/>^<![CDATA[]]>
    <?p?>^<?xml version='1.0'?><a/>  ^<?XML version='1.0'?><a/>  <?xml version='^1.'?><a/>
    <?xml version='^2.0'?><a/>  <?xml^?><a/>  <?xml ^encoding='UTF-8'?><a/>
    <?xml version='1.0'^encoding='UTF-8'?><a/>  <?xml version='1.0' encoding='^8'?><a/>
    <?xml version='1.0' standalone='^maybe'?><a/>
    <?xml version='1.0' standalone='no' ^encoding='UTF-8'?><a/>  <?xml version=^1.0?><a/>
    <?xml version='1.0' ^><a/>

    <abc>^</axc>  <a-name-longer-than-any-word>^</a-name-lXnger-than-any-word>
    <a>^</b>  <a>^</ab></a>  <ab>^</a>  <a></a ^b>  <a><b>^</a></b>  <a>^</></a>  <a>^< b/></a>
    <a>^<0/></a>  <a>^<</a>  <a^=''/>  <a ^=''/>  <a b^/>  <a b ^c=''/>  <a b=^c/>  <a b=''^c=''/>
    <a b='' ^b=''/>  <a b='^<'/>  <a b='^&'/>  <a ^/ >  <a ^'b'/>

    <a>^]]></a>  <a>^&b;</a>  <a>^& </a>  <a>^&amp</a>  <a>^&#x1F;</a>  <a>^&#xD800;</a>  <a>^&#xFFFE;</a>
    <a>^&#x110000;</a>  <a>^&#99999999999;</a>  <a>^&#4294967361;</a>  <a>^&#;</a>  <a>^&#xg;</a>  <a>^&#X41;</a>
    <a>^<![cdata[]]></a>  <a>^<!DOCTYPE a></a>

    <a><!-- ^-- --></a>  <a><!-- ^---></a>  <a><!--^---></a>  <a>^<!- --></a>  <a><?^ p?></a>
    <a><?p^+?></a>  <a>^<?xMl ?></a>

    <!DOCTYPE^><a/>  <!DOCTYPE ^><a/>  <!DOCTYPE a^'b'><a/>  <!DOCTYPE a ^b><a/>  <!DOCTYPE a SYSTEM ^b><a/>
    <!DOCTYPE a SYSTEM^''><a/>  <!DOCTYPE a PUBLIC ''^><a/>  <!DOCTYPE a PUBLIC '^{' ''><a/>
    <!DOCTYPE a>^<!DOCTYPE a><a/>  <!DOCTYPE a [^x]><a/>  <!DOCTYPE a [^<a/>]><a/>  <!DOCTYPE a [%^;]><a/>
    <!DOCTYPE a [%p^]><a/>  <!DOCTYPE a [^<![INCLUDE[]]>]><a/>  <!DOCTYPE a [<!ELEMENT a ^b>]><a/>
    <!DOCTYPE a [<!ELEMENT a (b,c^|d)>]><a/>  <!DOCTYPE a [<!ELEMENT a (^)>]><a/>
    <!DOCTYPE a [<!ELEMENT a (b) ^*>]><a/>  <!DOCTYPE a [<!ELEMENT a (#PCDATA|b)^>]><a/>
    <!DOCTYPE a [<!ELEMENT a (b,(^#PCDATA))>]><a/>  <!DOCTYPE a [<!ATTLIST a b ^c ''>]><a/>
    <!DOCTYPE a [<!ATTLIST a b CDATA ^c>]><a/>  <!DOCTYPE a [<!ATTLIST a b CDATA '^<'>]><a/>
    <!DOCTYPE a [<!ATTLIST a b (c^,d) ''>]><a/>  <!DOCTYPE a [<!NOTATION n ^''>]><a/>
)";

std::vector<std::string> partsOf(std::string_view list) {
    std::vector<std::string> parts;
    for (std::size_t at = list.find('<'); at != std::string_view::npos;) {
        const std::size_t end = std::min(list.find("  ", at), list.find('\n', at));
        parts.emplace_back(list.substr(at, end - at));
        at = list.find_first_not_of(" \n", end);
    }
    return parts;
}

// The sign ^ is put before the byte with the fault.
TEST(WellFormed, FaultsHaveTheirPlace) {
    const std::pair<Kind, std::vector<std::string>> table[] = {
        {Kind::noElement,
         {"^", "^\n", "^a<b/>", "^< a/>", "^%PDF-1.4 <a/>", "<?xml version='1.0'?><!-- -->^"}},
        {Kind::entities, {"<!DOCTYPE a [^<!ENTITY b 'c'>]><a/>", "<!DOCTYPE a [^<!ENTITY % b 'c'>%b;]><a/>"}},
        {Kind::malformed, partsOf(kMalformed)},
        {Kind::malformed,
         {" ^<?xml version='1.0'?><a/>", "<a\xC3\xA9^\xC3\x97/>", "<a>^\x01</a>", "<a^\x1F/>",
          "<a>^\xC0\x80</a>", "<a>^\xE0\x9F\xBF</a>", "<a>^\xF0\x8F\xBF\xBD</a>", "<a>^\xED\xA0\x80</a>",
          "<a>^\xEF\xBF\xBE</a>", "<a>^\xEF\xBF\xBF</a>", "<a>^\xF4\x90\x80\x80</a>", "<a>^\x80</a>",
          "<a>^\xC3</a>", "<a>^\xE2\x82</a>", "<a/>^\xE2\x82", "<a b='^\xFF'/>", "\xEF\xBB\xBF<a>^</b>",
          "<a>^\x1F" + std::string(70, '.') + "</a>"}},
    };
    for (const auto& [kind, texts] : table) {
        for (std::string text : texts) {
            SCOPED_TRACE(text);
            const std::size_t place = text.find('^');
            text.erase(place, 1);
            const ParseFault fault = Tree(text, {}).fault();
            EXPECT_EQ(fault.kind, kind) << fault.description;
            EXPECT_EQ(fault.offset, place) << fault.description;
        }
    }
}

// The beginning of a document has no fault but its missing end.
TEST(WellFormed, EveryBeginningIsTruncated) {
    const std::string text =
        "<?xml version='1.0' encoding='UTF-8' standalone='no'?><!--c--><?p q?>"
        "<!DOCTYPE a PUBLIC 'p' \"s\" [<!ELEMENT a (b|(c,d?)*)+><!ELEMENT b (#PCDATA|c)*>%p;<!--c-->"
        "<!ATTLIST a b NOTATION (c|d) #FIXED 'e&amp;' f (g) #IMPLIED h CDATA #REQUIRED>"
        "<!NOTATION n PUBLIC 'p'>]>"
        "<a b='1' \xC3\xA9 = \"&#65;\"><b/>x&amp;\xE2\x82\xAC<!--c--><?p q?><![CDATA[d]]></a>";
    ASSERT_EQ(Tree(text, {}).fault().description, "");
    for (std::size_t size = 0; size < text.size(); ++size) {
        const std::string beginning = text.substr(0, size);
        const ParseFault fault = Tree(beginning, {}).fault();
        EXPECT_TRUE(fault.kind == Kind::truncated || fault.kind == Kind::noElement)
            << beginning << ": " << fault.description;
    }
}

TEST(WellFormed, DescriptionsNameWhatIsWrong) {
    const std::pair<std::string, std::string> table[] = {
        {"<a><b></a>", "the end tag </a> does not belong to <b>"},
        {"<a b='1' b='2'/>", "the attribute b occurs twice in the tag <a>"},
        {"<a>&eacute;</a>", "the reference &eacute; is not defined"},
        {"<a>", "the text ends inside <a>"},
        {"<a>\x1B[2J</a>", "there is a control character"},
        {"<a>&" + std::string(38, 'x') +
             "\xE2\x82\xAC"
             "yz;</a>",
         "the reference &" + std::string(38, 'x') + "..."},
    };
    for (const auto& [text, description] : table) {
        EXPECT_EQ(Tree(text, {}).fault().description.substr(0, description.size()), description);
    }
}

std::string repeated(std::string_view text, std::size_t times) {
    std::string whole;
    for (std::size_t i = 0; i < times; ++i) whole += text;
    return whole;
}

std::string withAttributes(std::size_t count) {
    std::string tag = "<a";
    for (std::size_t i = 0; i < count; ++i) tag += " b" + std::to_string(i) + "=''";
    return tag + "/>";
}

TEST(WellFormed, LimitsAreNamed) {
    const Limits limits{.elements = 4, .attributes = 40, .attributesOfElement = 20, .depth = 3};
    const std::pair<std::string, std::string> table[] = {
        {"<a><b/><b/><b/></a>", ""},
        {"<a><b/><b/><b/><b/></a>", "there are more elements than 4"},
        {"<a><a><a></a></a></a>", ""},
        {"<a><a><a><a></a></a></a></a>", "elements are nested more than 3 deep"},
        {withAttributes(20), ""},
        {withAttributes(21), "an element has more attributes than 20"},
        {"<a>" + withAttributes(20) + withAttributes(20) + "</a>", ""},
        {"<a>" + withAttributes(20) + withAttributes(20) + withAttributes(1) + "</a>",
         "there are more attributes than 40"},
    };
    for (const auto& [text, description] : table) {
        const ParseFault fault = Tree(text, {}, limits).fault();
        EXPECT_EQ(fault.description, description) << text;
        EXPECT_EQ(fault.kind, description.empty() ? Kind::none : Kind::tooLarge) << text;
    }
    std::string twice = withAttributes(19);
    twice.insert(twice.size() - 2, " b18=''");
    EXPECT_EQ(Tree(twice, {}).fault().description, "the attribute b18 occurs twice in the tag <a>");
}

TEST(WellFormed, NeitherDepthNorNamesOverflow) {
    constexpr std::size_t kDepth = 500'000;
    const std::string deep = repeated("<a>", kDepth) + repeated("</a>", kDepth);
    EXPECT_EQ(Tree(deep, {}, {.depth = kDepth}).size(), kDepth + 1);
    std::string names = "<a>";
    for (std::size_t i = 1; i < Names::kMost; ++i) names += "<name-number-" + std::to_string(i) + "/>";
    EXPECT_EQ(Tree(names + "</a>", {}).fault().description, "");
    const ParseFault fault = Tree(names + "<b/></a>", {}).fault();
    EXPECT_EQ(fault.description, "there are more element names than 65535");
    EXPECT_EQ(fault.offset, names.size());
}

}  // namespace
}  // namespace rovescio::xml
