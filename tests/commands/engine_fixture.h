// A score in the engine with the plug-in's host functions bound to it.
#pragma once

#include <gtest/gtest.h>

#include <sstream>

#include "dialogs/dialog_numbers.h"
#include "engine/interface/session.h"
#include "engine/interface/strictness.h"
#include "kit/engine_bundle.h"
#include "kit/mass_edit.h"
#include "shell/main_dialog.h"
#include "support/memory_user_interface.h"
#include "support/score_text.h"

namespace rovescio::test {

// A region by the list of all staves, from one position to another, both included.
inline EREGION region(short startSlot, short endSlot, short startMeasure, short endMeasure,
                      std::int32_t startPosition = 0, std::int32_t endPosition = 0x7FFFFFFF) {
    return {{0, startSlot, startMeasure, startPosition}, {0, endSlot, endMeasure, endPosition}};
}

// The engine's session over a score given as text; every broken rule fails the test.
class EngineFixture {
  public:
    explicit EngineFixture(const std::vector<std::string>& lines) : document(scoreFromText(lines)) {
        InitializeGlobals();
        QorVersion = kKitVersion;
        engine::setBrokenRuleHandler([](engine::Rule rule, const std::string& detail) {
            ADD_FAILURE() << engine::ruleName(rule) << ": " << detail;
        });
        session.pluginString = [](std::uint32_t id) {
            return std::to_string(id >> 16) + "," + std::to_string(id & 0xFFFF);
        };
    }
    ~EngineFixture() {
        session.checkBalanced();
        engine::setBrokenRuleHandler({});
        engine::traceCalls(nullptr);
        engine::clearFaults();
    }
    EngineFixture(const EngineFixture&) = delete;
    EngineFixture& operator=(const EngineFixture&) = delete;

    EREGION everything() const { return region(1, document.staffCount(), 1, document.measureCount()); }

    // Runs one transformation inside a mass edit; the edit is ended as the transformation left it.
    template <class Transformation>
    short run(Transformation&& transformation) {
        kit::MassEdit massEdit;
        const auto result = static_cast<short>(transformation(&massEdit.progress));
        cancelled = massEdit.progress.cancelled != 0;
        massEdit.end();
        return result;
    }
    // The same with a command of the plug-in and its arguments, of which plain numbers are short ones there,
    // between the region and the progress.
    template <class Command, class... Arguments>
    short transform(EREGION selected, Command command, Arguments... arguments) {
        return run([&](CProgress* progress) {
            return command(&selected,
                           std::conditional_t<std::is_same_v<Arguments, int>, short, Arguments>(arguments)...,
                           progress);
        });
    }
    // Opens the plug-in's main dialog for a user.
    void workMainDialog(const std::function<void(MemoryDialog&)>& user) {
        front.users[dialogs::main_dialog::kNumber] = user;
        EXPECT_EQ(SUDialog(nullptr, nullptr, nullptr), 0);
    }

    engine::Document document;
    MemoryUserInterface front;
    engine::Session session{document, front};
    bool cancelled = false;
};

// A score of one staff after a command on all of it, which must say that it has done its work.
template <class Command, class... Arguments>
std::string textAfter(const std::string& line, Command command, Arguments... arguments) {
    EngineFixture engine({line});
    EXPECT_EQ(engine.transform(engine.everything(), command, arguments...), 1);
    return textOf(engine.document);
}

// Keeps the trace of host calls while it lives.
class CallTrace {
  public:
    CallTrace() { engine::traceCalls(&out_); }
    ~CallTrace() { engine::traceCalls(nullptr); }
    CallTrace(const CallTrace&) = delete;
    CallTrace& operator=(const CallTrace&) = delete;

    // Loads of frames and polls of progress in order, as "s1m2l0 " and "poll ".
    [[nodiscard]] std::string walk() const {
        std::istringstream in(out_.str());
        std::string result;
        for (std::string line; std::getline(in, line);) {
            int place[3];
            if (std::sscanf(line.c_str(), "SX_LoadTGF(staffList=0, slot=%d, measure=%d, layer=%d", &place[0],
                            &place[1], &place[2]) == 3) {
                char text[40];
                std::snprintf(text, sizeof text, "s%dm%dl%d ", place[0], place[1], place[2]);
                result += text;
            } else if (line.starts_with("SX_MassEditProgress(")) {
                result += "poll ";
            }
        }
        return result;
    }
    [[nodiscard]] std::string text() const { return out_.str(); }

  private:
    std::ostringstream out_;
};

}  // namespace rovescio::test
