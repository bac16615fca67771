// The forms of twelve-note rows against matrices made of numbers alone.
#include <map>

#include "cli/workplace.h"

namespace rovescio::test {
namespace {

class RowForms : public Workplace {
  protected:
    // Pitch classes by the form's name, as a score has them.
    static std::map<std::string, std::vector<int>> formsIn(const std::string& xml) {
        static const std::regex parts(
            R"(<words>(\w+)</words>|<step>(.)</step>(?:\s*<alter>(-?\d)</alter>)?)");
        std::map<std::string, std::vector<int>> forms;
        std::string name;
        for (std::sregex_iterator part(xml.begin(), xml.end(), parts); part != std::sregex_iterator();
             ++part) {
            if ((*part)[1].matched) {
                name = (*part)[1];
                continue;
            }
            constexpr int kHeights[] = {9, 11, 0, 2, 4, 5, 7};
            const int alter = (*part)[3].matched ? std::stoi((*part)[3]) : 0;
            EXPECT_LE(std::abs(alter), 1) << name << " is spelled with a double accidental";
            forms[name].push_back((kHeights[(*part)[2].str()[0] - 'A'] + alter + 12) % 12);
        }
        return forms;
    }
};

TEST_F(RowForms, AreThoseOfTheMatrix) {
    const std::pair<const char*, std::vector<int>> cases[] = {
        {"0 11 3 4 8 7 9 5 6 1 2 10", {0, 11, 3, 4, 8, 7, 9, 5, 6, 1, 2, 10}},
        // Webern, opus 21.
        {"A,F#,G,Ab,E,F,B,Bb,D,C#,C,Eb", {9, 6, 7, 8, 4, 5, 11, 10, 2, 1, 0, 3}},
        {"4 5 7 1 6 3 8 2 11 0 9 10", {4, 5, 7, 1, 6, 3, 8, 2, 11, 0, 9, 10}},
    };
    for (const auto& [given, row] : cases) {
        const ProgramRun run =
            this->run(std::string("rovescio --row-forms '") + given + "' -o forms.musicxml");
        ASSERT_EQ(run.code, 0) << run.err;
        EXPECT_EQ(run.err, "rovescio: wrote 48 forms of the row -> forms.musicxml\n");
        const auto forms = formsIn(read("forms.musicxml"));
        EXPECT_EQ(forms.size(), 48U);
        for (int level = 0; level < 12; ++level) {
            std::vector<int> prime;
            std::vector<int> inverted;
            for (const int pitch : row) {
                prime.push_back((pitch + level) % 12);
                inverted.push_back((2 * row[0] - pitch + level + 12) % 12);
            }
            const std::string number = std::to_string(level);
            EXPECT_EQ(forms.at("P" + number), prime);
            EXPECT_EQ(forms.at("I" + number), inverted);
            EXPECT_EQ(forms.at("R" + number), std::vector<int>(prime.rbegin(), prime.rend()));
            EXPECT_EQ(forms.at("RI" + number), std::vector<int>(inverted.rbegin(), inverted.rend()));
        }
        const bool isOwnRetrograde = row[0] == 9;
        EXPECT_EQ(forms.at("R0") == forms.at("P6"), isOwnRetrograde)
            << "its retrograde is itself a tritone away";
    }
}

TEST_F(RowForms, RefusesWhatIsNoRow) {
    expectRefusals(R"(
        2 | rovescio --row-forms '0 1 2 3 4 5 6 7 8 9 10' -o a.musicxml | a row has 12 notes, not 11
        2 | rovescio --row-forms '0 1 2 3 4 5 6 7 8 9 10 11 0' -o a.musicxml | a row has 12 notes, not 13
        2 | rovescio --row-forms '0 1 2 3 4 5 6 7 8 9 10 12' -o a.musicxml | "12" is not a pitch class
        2 | rovescio --row-forms '0 1 2 3 4 5 6 7 8 9 H 11' -o a.musicxml | "H" is not a pitch class
        2 | rovescio --row-forms 'C C# Db D Eb E F F# G Ab A Bb' -o a.musicxml | "C#" and "Db" are the same note
        2 | rovescio --row-forms '0 1 2 3 4 5 6 7 8 9 10 10' -o a.musicxml | "10" comes twice
        2 | rovescio --row-forms '0 1 2 3 4 5 6 7 8 9 10 11' | the result needs a name
        2 | rovescio --row-forms '0 1 2 3 4 5 6 7 8 9 10 11' -o a.musicxml --steps 1 | makes a new score
        2 | rovescio --row-forms '0 1 2 3 4 5 6 7 8 9 10 11' -o a.musicxml greensleeves.musicxml | makes a new score
    )");
}

}  // namespace
}  // namespace rovescio::test
