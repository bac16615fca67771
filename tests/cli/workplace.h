// A folder of its own for each test, in which the built program is run through the shell as users do.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "musicxml/score_builder.h"

namespace rovescio::test {

struct ProgramRun {
    int code = -1;
    std::string out;
    std::string err;
};

class Workplace : public testing::Test {
  protected:
    void SetUp() override {
        std::string name = (std::filesystem::temp_directory_path() / "rovescio-test-XXXXXX").string();
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        folder_ = name;
        for (const char* example : {"frere-jacques.musicxml", "greensleeves.musicxml"}) {
            std::filesystem::copy_file(std::filesystem::path(EXAMPLES_FOLDER) / example, folder_ / example);
        }
    }
    void TearDown() override {
        std::filesystem::permissions(folder_, std::filesystem::perms::owner_all);
        std::filesystem::remove_all(folder_);
    }

    // Runs a line of bash in the folder; "rovescio" there is the program under test.
    [[nodiscard]] ProgramRun run(const std::string& line) const {
        const std::filesystem::path logs = folder_.string() + ".logs";
        std::filesystem::create_directory(logs);
        const std::string out = (logs / "out").string();
        const std::string err = (logs / "err").string();
        write("../" + logs.filename().string() + "/line", line);
        const std::string command =
            "cd '" + folder_.string() + "' && PATH='" PROGRAM_FOLDER "':\"$PATH\" bash '" +
            (logs / "line").string() + "' > '" + out + "' 2> '" + err + "' < /dev/null";
        const int status = std::system(command.c_str());
        ProgramRun result{.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1,
                          .out = contentOf(out),
                          .err = contentOf(err)};
        std::filesystem::remove_all(logs);
        return result;
    }

    [[nodiscard]] std::filesystem::path path(const std::string& name) const { return folder_ / name; }
    [[nodiscard]] std::string read(const std::string& name) const { return contentOf(folder_ / name); }
    void write(const std::string& name, const std::string& content) const {
        std::ofstream(folder_ / name, std::ios::binary) << content;
    }

    // Names in the folder, sorted; hidden ones too.
    [[nodiscard]] std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_)) {
            found.push_back(entry.path().lexically_relative(folder_).string());
        }
        std::sort(found.begin(), found.end());
        return found;
    }

    // The pitches of a score's measures as they are written: "F4 G4 | Bb4". Rests are left out.
    static std::string pitches(const std::string& xml) {
        static const std::regex parts(
            R"(<measure |<step>(.)</step>(?:\s*<alter>(-?\d)</alter>)?\s*<octave>(\d)</octave>)");
        std::string text;
        for (std::sregex_iterator part(xml.begin(), xml.end(), parts); part != std::sregex_iterator();
             ++part) {
            if (!text.empty()) text += ' ';
            if (!(*part)[1].matched) {
                text += '|';
                continue;
            }
            const int alter = (*part)[2].matched ? std::stoi((*part)[2]) : 0;
            text += (*part)[1].str() +
                    std::string(static_cast<std::size_t>(std::abs(alter)), alter < 0 ? 'b' : '#') +
                    (*part)[3].str();
        }
        return text;
    }

    // A run that must fail: one clear message, the right exit code, and no file made or changed.
    void expectRefused(const std::string& line, int code, const std::string& message) const {
        const auto files = [this] { return run("ls -lAR --time-style=full-iso").out; };
        const std::string before = files();
        const ProgramRun refused = run(line);
        EXPECT_EQ(refused.code, code) << line << "\n" << refused.err;
        EXPECT_NE(refused.err.find(message), std::string::npos) << line << "\n" << refused.err;
        EXPECT_EQ(refused.err.find("rovescio: "), 0U) << refused.err;
        EXPECT_EQ(std::count(refused.err.begin(), refused.err.end(), '\n'), 1) << refused.err;
        EXPECT_EQ(refused.out, "") << line;
        EXPECT_EQ(files(), before) << line;
    }

    // Runs that must fail, one to a line: the exit code, the command and a part of the message. A command
    // that does not name the program has the arguments after "rovescio greensleeves.musicxml".
    void expectRefusals(const std::string& table) const {
        static const std::regex row(R"( *(\d) \| (.*) \| (.*))");
        std::istringstream lines(table);
        std::smatch part;
        for (std::string line; std::getline(lines, line);) {
            if (line.find_first_not_of(' ') == std::string::npos) continue;
            ASSERT_TRUE(std::regex_match(line, part, row)) << line;
            const std::string command = part[2];
            const bool isWhole = command.find("rovescio") != std::string::npos;
            expectRefused(isWhole ? command : "rovescio greensleeves.musicxml " + command, std::stoi(part[1]),
                          part[3]);
        }
    }

  private:
    static std::string contentOf(const std::filesystem::path& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    std::filesystem::path folder_;
};

// A score of as many measures of four quarter notes C5 as asked for.
inline std::string longScore(std::size_t measures) {
    return scoreOf(std::vector(measures, voice("1", "c5:q c5:q c5:q c5:q")));
}

}  // namespace rovescio::test
