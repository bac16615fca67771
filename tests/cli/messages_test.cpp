// What names in files may do to a terminal: nothing.
#include "cli/messages.h"

#include "cli/workplace.h"

namespace rovescio::cli {
namespace {

TEST(PrintableText, IsOneLineWithoutControlCharacters) {
    const std::pair<std::string, std::string> cases[] = {
        {"Flöte, Klarinette in B♭ 𝄞", "Flöte, Klarinette in B♭ 𝄞"},
        {"Horn\nin F\r\n\t1\v\f", "Horn in F   1  "},
        {"\x1b[2J\x1b]0;title\x07", "?[2J?]0;title?"},
        {std::string("a\0b\x7f\b", 5), "a?b??"},
        {"C1 \xC2\x9B\x31m, NEL \xC2\x85", "C1 ?1m, NEL ?"},
        {"\u202Egnp.exe \u2066x\u2069", "?gnp.exe ?x?"},
        {"one\u2028two", "one two"},
        {"Latin-1 \xE9, cut \xE2\x99", "Latin-1 ?, cut ??"},
        {"overlong \xC0\x9B\xE0\x80\x9B", "overlong ?????"},
    };
    for (const auto& [text, shown] : cases) EXPECT_EQ(printable(text), shown);
}

class Names : public test::Workplace {};

TEST_F(Names, OfFilesAndStavesAreShownWithoutControlCharacters) {
    std::string score = read("greensleeves.musicxml");
    score.replace(score.find("<part-name>Piano"), 16, "<part-name>Pi&#155;2J&#133;no");
    const std::string name = "a\x1b[31m.musicxml";
    write(name, score);
    for (const char* options : {"--info", "--check", "-t M2 -m 99 -o new.xml", "-t M2 -o new.xml",
                                "-t M2 --out-dir .", "--midi x -o ./*31m.musicxml"}) {
        const test::ProgramRun shown = run("rovescio a*31m.musicxml " + std::string(options));
        EXPECT_EQ((shown.out + shown.err).find_first_of("\x1b\x9b"), std::string::npos) << options;
        EXPECT_NE(shown.out + shown.err, "") << options;
    }
    EXPECT_NE(run("rovescio --info a*31m.musicxml").out.find("Pi?2J?no"), std::string::npos);
}

}  // namespace
}  // namespace rovescio::cli
