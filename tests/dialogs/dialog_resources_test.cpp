// Dialog descriptions: what is read, and what is refused with its place.
#include "dialogs/dialog_resources.h"

#include <gtest/gtest.h>

namespace rovescio::dialogs {
namespace {

TEST(DialogResources, KeepsItemsInTheOrderOfTheDialog) {
    const auto resources = DialogResources::parse(
        R"({"dialogs": [{"number": 7, "items": [{"item": 4, "kind": "popup", "entries": 5},
            {"item": 9, "kind": "check"}, {"item": 1, "kind": "button"}]}, {"number": 8, "items": []}]})",
        "a.bundle");
    ASSERT_TRUE(resources);
    const DialogDescription* dialog = resources.value().find(7);
    ASSERT_NE(dialog, nullptr);
    ASSERT_EQ(dialog->items.size(), 3U);
    EXPECT_EQ(dialog->items[0].number, 4);
    EXPECT_EQ(dialog->items[0].entries, 5);
    EXPECT_EQ(dialog->items[1].kind, ItemKind::check);
    EXPECT_NE(resources.value().find(8), nullptr);
    EXPECT_EQ(resources.value().find(9), nullptr);
}

TEST(DialogResources, RefusesDescriptionsThatAreNotExact) {
    const struct {
        const char* json;
        const char* message;  // a part of it
    } cases[] = {
        {"{", "not valid JSON"},
        {"[]", "\"dialogs\""},
        {R"({"dialogs": [], "more": 1})", "\"dialogs\""},
        {R"({"dialogs": [{"number": 1}]})", "list of items"},
        {R"({"dialogs": [{"number": 40000, "items": []}]})", "between 1 and 32767"},
        {R"({"dialogs": [{"number": 1, "items": []}, {"number": 1, "items": []}]})",
         "dialog 1 is described twice"},
        {R"({"dialogs": [{"number": 1, "items": [{"item": 2}]}]})", "dialog 1 has an item without"},
        {R"({"dialogs": [{"number": 1, "items": [{"item": 0, "kind": "check"}]}]})",
         "dialog 1 has an item whose"},
        {R"({"dialogs": [{"number": 1, "items": [{"item": 2, "kind": "slider"}]}]})", "item 2 of dialog 1"},
        {R"({"dialogs": [{"number": 1, "items": [{"item": 2, "kind": "popup"}]}]})", "count of entries"},
        {R"({"dialogs": [{"number": 1, "items": [{"item": 2, "kind": "popup", "entries": 0}]}]})",
         "not positive"},
        {R"({"dialogs": [{"number": 1, "items": [{"item": 2, "kind": "check", "entries": 3}]}]})",
         "does not allow"},
        {R"({"dialogs": [{"number": 1, "items": [{"item": 2, "kind": "text"}, {"item": 2, "kind": "text"}]}]})",
         "item 2 of dialog 1 is described twice"},
    };
    for (const auto& [json, message] : cases) {
        const auto resources = DialogResources::parse(json, "a.bundle");
        ASSERT_FALSE(resources) << json;
        EXPECT_NE(resources.problem().text().find(message), std::string::npos) << resources.problem().text();
        EXPECT_EQ(resources.problem().file, "a.bundle");
    }
}

}  // namespace
}  // namespace rovescio::dialogs
