// The scripted user with dialog procedures made for each test.
#include "dialogs/scripted_user_interface.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "engine/interface/strictness.h"

namespace rovescio::dialogs {
namespace {

using engine::Rule;

// Dialog 100 has one item of each kind, dialog 200 only a button.
DialogResources testResources() {
    auto resources = DialogResources::parse(
        R"({"dialogs": [{"number": 100, "items": [{"item": 1, "kind": "button"}, {"item": 2, "kind": "check"},
            {"item": 3, "kind": "popup", "entries": 4}, {"item": 4, "kind": "number"},
            {"item": 5, "kind": "text"}]}, {"number": 200, "items": [{"item": 1, "kind": "button"}]}]})",
        "test");
    return resources.value();
}

class ScriptedDialog : public testing::Test {
  protected:
    // What a test's procedure does with each message; a press of item 1 has closed the dialog by then.
    using Handler = std::function<void(SXWindow, std::uint16_t message, short item, std::uint32_t parameter)>;

    void SetUp() override {
        active_ = this;
        engine::setBrokenRuleHandler(
            [this](Rule rule, const std::string& detail) { broken.emplace_back(rule, detail); });
    }

    ScriptedUserInterface& open(Script script) {
        Scripts all = scripts;
        all.emplace(100, std::move(script));
        front = std::make_unique<ScriptedUserInterface>(resources, std::move(all), nullptr);
        front->runDialog(100, procedure, nullptr, 0, nullptr);
        return *front;
    }

    static int procedure(SXWindow dialog, std::uint16_t message, short item, std::uint32_t parameter, void*) {
        if (message == kDialogCommand && item == 1) active_->front->endDialog(dialog);
        if (active_->handler) active_->handler(dialog, message, item, parameter);
        return 1;
    }

    DialogResources resources = testResources();
    Scripts scripts;
    Handler handler;
    std::unique_ptr<ScriptedUserInterface> front;
    std::vector<std::pair<Rule, std::string>> broken;

  private:
    static inline ScriptedDialog* active_ = nullptr;
};

TEST_F(ScriptedDialog, SendsWhatAHandWouldCause) {
    std::vector<std::string> messages;
    handler = [&](SXWindow dialog, std::uint16_t message, short item, std::uint32_t parameter) {
        std::string text = std::to_string(message) + " " + std::to_string(item) + " " +
                           std::to_string(parameter >> 16) + " " + std::to_string(parameter & 0xFFFF);
        if (item == 2) text += " = " + std::to_string(front->value(dialog, 2, kCheckValue));
        if (item == 3) text += " = " + std::to_string(front->value(dialog, 3, kPopupValue));
        if (item == 4) text += " = " + std::to_string(front->value(dialog, 4, kNumberValue));
        messages.push_back(text);
    };
    open({Set{3, 4}, Set{2, 1}, Set{4, -300}, Press{1}});
    EXPECT_EQ(messages, (std::vector<std::string>{"272 0 0 0", "273 3 514 3 = 4", "273 2 0 2 = 1",
                                                  "273 4 0 4 = -300", "273 1 0 1"}));
    EXPECT_FALSE(front->problem());
    EXPECT_TRUE(broken.empty());
}

TEST_F(ScriptedDialog, RefusesWhatAHandCannotDo) {
    const std::pair<Script, const char*> cases[] = {
        {{Set{3, 5}, Press{1}}, "item 3 of dialog 100, a popup, cannot be set to 5"},
        {{Set{3, 0}, Press{1}}, "cannot be set to 0"},
        {{Set{2, 2}, Press{1}}, "a check, cannot be set to 2"},
        {{Set{4, 40000}, Press{1}}, "a number, cannot be set to 40000"},
        {{Set{1, 1}, Press{1}}, "a button, cannot be set"},
        {{Press{5}, Press{1}}, "item 5 of dialog 100 is not a button but a text"},
        {{Press{6}, Press{1}}, "there is no item 6 of dialog 100"},
        {{Set{2, 1}}, "dialog 100 was left open"},
    };
    for (const auto& [script, problem] : cases) {
        const ScriptedUserInterface& after = open(script);
        ASSERT_TRUE(after.problem()) << problem;
        EXPECT_NE(after.problem()->message.find(problem), std::string::npos) << after.problem()->message;
    }
    EXPECT_TRUE(broken.empty()) << "what the user cannot do is not the plug-in's fault";
}

TEST_F(ScriptedDialog, CannotReachItemsHiddenOrDisabled) {
    for (const bool hidden : {true, false}) {
        bool reached = false;
        handler = [&](SXWindow dialog, std::uint16_t message, short item, std::uint32_t) {
            if (message == kDialogInit) {
                hidden ? front->show(dialog, 3, false) : front->enable(dialog, 3, false);
            }
            reached = reached || item == 3;
        };
        const ScriptedUserInterface& after = open({Set{3, 2}, Press{1}});
        ASSERT_TRUE(after.problem());
        EXPECT_EQ(after.problem()->message,
                  std::string("item 3 of dialog 100 is ") + (hidden ? "hidden" : "disabled"));
        EXPECT_FALSE(reached) << "the procedure must not hear of it";
    }
}

TEST_F(ScriptedDialog, NamesWhatThePlugInDoesWrong) {
    using Interface = ScriptedUserInterface;
    const std::pair<Rule, std::function<void(Interface&, SXWindow)>> cases[] = {
        {Rule::dialogMisused, [](Interface& ui, SXWindow dialog) { ui.value(dialog, 3, kCheckValue); }},
        {Rule::dialogMisused, [](Interface& ui, SXWindow dialog) { ui.value(dialog, 9, kPopupValue); }},
        {Rule::dialogMisused, [](Interface& ui, SXWindow dialog) { ui.value(dialog, 5, kPopupValue); }},
        {Rule::dialogMisused, [](Interface& ui, SXWindow dialog) { ui.setValue(dialog, 3, kPopupValue, 5); }},
        {Rule::dialogMisused,
         [](Interface& ui, SXWindow dialog) { ui.setValue(dialog, 4, kNumberValue, 70000); }},
        {Rule::dialogMisused, [](Interface& ui, SXWindow) { ui.setValue(&ui, 3, kPopupValue, 1); }},
        {Rule::dialogMisused, [](Interface& ui, SXWindow) { ui.endDialog(nullptr); }},
        {Rule::dialogMisused, [](Interface& ui, SXWindow dialog) { ui.show(dialog, 8, true); }},
        {Rule::dialogUnknown,
         [](Interface& ui, SXWindow dialog) { ui.runDialog(300, procedure, dialog, 0, nullptr); }},
        {Rule::dialogWithoutProcedure,
         [](Interface& ui, SXWindow dialog) { ui.runDialog(200, nullptr, dialog, 0, nullptr); }},
    };
    for (const auto& [rule, misdeed] : cases) {
        broken.clear();
        handler = [&, misdeed = misdeed](SXWindow dialog, std::uint16_t message, short, std::uint32_t) {
            if (message == kDialogInit) misdeed(*front, dialog);
        };
        open({Press{1}});
        ASSERT_EQ(broken.size(), 1U);
        EXPECT_EQ(broken.front().first, rule) << broken.front().second;
    }
}

TEST_F(ScriptedDialog, StopsAtTheUsersCancel) {
    bool cancel = false;
    bool wentOn = false;
    scripts.emplace(100, Script{Meanwhile{[&] {
                                    cancel = true;
                                    EXPECT_FALSE(front->progress({1, 2}));
                                }},
                                Meanwhile{[&] { wentOn = true; }}, Press{1}});
    front = std::make_unique<ScriptedUserInterface>(resources, scripts,
                                                    [&](const engine::Progress&) { return !cancel; });
    EXPECT_TRUE(front->progress({0, 2}));
    front->runDialog(100, procedure, nullptr, 0, nullptr);
    EXPECT_TRUE(front->cancelled());
    EXPECT_FALSE(wentOn);
    EXPECT_FALSE(front->problem()) << "a cancel is no fault of the script";
}

TEST_F(ScriptedDialog, AnswersQuestionsAsTheScriptSaysAndRemembersWarnings) {
    std::vector<short> answers;
    handler = [&](SXWindow, std::uint16_t, short item, std::uint32_t) {
        if (item == 2) answers.push_back(front->alert(nullptr, kAlertYesNo, "Repair it?"));
        if (item == 4) front->alert(nullptr, kAlertWarning, "It was broken");
    };
    const ScriptedUserInterface& after =
        open({Set{2, 1}, Answer{true}, Set{2, 0}, Set{4, 0}, Answer{false}, Set{2, 1}, Press{1}});
    ASSERT_EQ(answers.size(), 3U);
    EXPECT_NE(answers[0], kAnswerYes);
    EXPECT_EQ(answers[1], kAnswerYes);
    EXPECT_NE(answers[2], kAnswerYes);
    EXPECT_EQ(after.alerts(), std::vector<std::string>{"It was broken"});
    EXPECT_EQ(after.questions(), std::vector<std::string>(3, "Repair it?"));
}

}  // namespace
}  // namespace rovescio::dialogs
