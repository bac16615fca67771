// The plug-in under hosts unlike our engine: one that throws, and ones that number octaves otherwise.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <new>
#include <string>
#include <tuple>
#include <vector>

#include "host_function.h"
#include "kit/engine_bundle.h"
#include "kit/mass_edit.h"
#include "retrograde/dialogs.h"
#include "shell/entry_points.h"
#include "shell/settings.h"
#include "transform/mirror_dialog.h"

namespace {

// The function of the host that throws, and what a dialog is sent when it is opened.
std::string thrower;
std::vector<std::pair<std::uint16_t, short>> messages;

// What the procedures answered, and how the mass edits were ended.
std::vector<int> answers;
std::vector<short> ends;

// What the items of dialogs were set to, and the MIDI note that the host calls "C4".
std::map<short, std::intptr_t> shown;
short fourthC = 60;

void enter(const char* function) {
    if (thrower == function) throw std::bad_alloc();
}

std::intptr_t send(SXDialogProc procedure, void* data) {
    for (const auto& [message, item] : messages)
        answers.push_back(procedure(nullptr, message, item, kPopupChanged << 16, data));
    return 0;
}

short select(EREGION* region) {
    *region = {{0, 1, 1, 0}, {0, 1, 1, 0}};
    return 1;
}

}  // namespace

#define HOST_THROWS(result, name, body, ...)                            \
    HOST_DOUBLE result name(__VA_ARGS__ __VA_OPT__(, ) std::uint32_t) { \
        enter(#name);                                                   \
        body;                                                           \
    }

HOST_THROWS(std::intptr_t, SX_Dialog, return send(proc, data), short, SXDialogProc proc, SXWindow, short,
            void* data)
HOST_THROWS(void, SX_SetDlgItemVal, shown[item] = value, SXWindow, short item, short, std::intptr_t value)
HOST_THROWS(short, SX_StringToMidiNote, return fourthC, const char*)
HOST_THROWS(std::intptr_t, SX_GetDlgItemVal, return 2, SXWindow, short, short)
HOST_THROWS(void, SX_EndDialog, , SXWindow)
HOST_THROWS(void, SX_EnableDlgItem, , SXWindow, short, short)
HOST_THROWS(short, SX_GetCurERegions, return select(region), std::uint64_t*, EREGION* region, EREGION*)
HOST_THROWS(SXMassEdit, SX_StartMassEdit, return nullptr, SXHandle, std::uint32_t)
HOST_THROWS(short, SX_MassEditProgress, return 1, SXMassEdit, short, short, short, short)
HOST_THROWS(void, SX_EndMassEdit, ends.push_back(cancelled), SXMassEdit, short cancelled)
HOST_THROWS(short, SX_GetMaxLayers, return 1)
HOST_THROWS(short, SX_GetShowLayer, return 1, short)

namespace {

TEST(Exceptions, EndInTheDialogProcedure) {
    InitializeGlobals();
    STStruct settings;
    MirrorAxis axis;
    std::int16_t steps = 0;
    const std::function<void()> dialogs[] = {
        [] { RetrogradePreScanDialog(nullptr, 0x200); },  // the one that sets no value
        [] { ScorixExtensionInvoke(nullptr, 0, nullptr, nullptr); },
        [&] { TransposeDialog(nullptr, &settings); },
        [&] { OtherTransposeDialog(nullptr, &steps, &steps); },
        [&] { editMirrorAxis(nullptr, axis); },
        [] { RetrogradeOptionsDialog(nullptr, 3); },
    };
    // The last two messages are of the kind that no procedure handles.
    const std::tuple<const char*, std::uint16_t, short> sent[] = {{"init", kDialogInit, 0},
                                                                  {"SX_EndDialog", kDialogCommand, 2},
                                                                  {"", kDialogCommand, 99},
                                                                  {"", 274, 1}};
    for (const auto& open : dialogs) {
        for (const auto& [function, message, item] : sent) {
            SCOPED_TRACE(function + std::to_string(&open - dialogs));
            thrower = function != std::string("init") ? function
                      : &open == dialogs              ? "SX_EnableDlgItem"
                                                      : "SX_SetDlgItemVal";
            messages = {{message, item}};
            answers.clear();
            EXPECT_NO_THROW(open());
            EXPECT_EQ(answers, std::vector<int>{0});
        }
    }
}

TEST(Exceptions, EndInTheEntryPointAndEndTheMassEditAsCancelled) {
    InitializeGlobals();
    SUItems = {};
    thrower = "SX_MassEditProgress";
    messages = {{kDialogCommand, 1}, {kDialogCommand, 12}};  // apply, check
    answers.clear();
    EXPECT_EQ(ScorixExtensionInvoke(nullptr, 0, nullptr, nullptr), 0);
    EXPECT_EQ(answers, (std::vector<int>{0, 0}));
    EXPECT_EQ(ends, (std::vector<short>{1, 1}));
    EXPECT_EQ(MassEditDepth, 0);
    thrower = "SX_Dialog";
    EXPECT_EQ(ScorixExtensionInvoke(nullptr, 0, nullptr, nullptr) + Ext_invoke(nullptr, 0, nullptr, nullptr),
              0);
}

TEST(OctaveOfMiddleC, IsThatOfTheHostsNoteNames) {
    InitializeGlobals();
    thrower.clear();
    messages = {{kDialogInit, 0}};
    for (const auto& [note, octave] :
         std::map<short, std::intptr_t>{{48, 5}, {49, 4}, {60, 4}, {71, 4}, {72, 3}}) {
        fourthC = note;
        MirrorAxis axis;
        editMirrorAxis(nullptr, axis);
        EXPECT_EQ(shown[5], octave) << note;
    }
}

}  // namespace
