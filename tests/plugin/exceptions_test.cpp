// Exceptions end in the plug-in: every dialog procedure and entry point under a host that throws.
#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <string>
#include <tuple>
#include <vector>

#include "kit/engine_bundle.h"
#include "kit/mass_edit.h"
#include "retrograde/dialogs.h"
#include "shell/entry_points.h"
#include "shell/settings.h"
#include "transform/mirror_dialog.h"

#define HOST_DOUBLE extern "C" __attribute__((visibility("default"), used)) inline

namespace {

// The function of the host that throws, and what a dialog is sent when it is opened.
std::string thrower;
std::vector<std::pair<std::uint16_t, short>> messages;

// What the procedures answered, and how the mass edits were ended.
std::vector<int> answers;
std::vector<short> ends;

void enter(const char* function) {
    if (thrower == function) throw std::bad_alloc();
}

}  // namespace

HOST_DOUBLE std::intptr_t SX_Dialog(short, SXDialogProc procedure, SXWindow, short, void* data,
                                    std::uint32_t) {
    enter("SX_Dialog");
    for (const auto& [message, item] : messages)
        answers.push_back(procedure(nullptr, message, item, kPopupChanged << 16, data));
    return 0;
}
HOST_DOUBLE void SX_SetDlgItemVal(SXWindow, short, short, std::intptr_t, std::uint32_t) {
    enter("SX_SetDlgItemVal");
}
HOST_DOUBLE std::intptr_t SX_GetDlgItemVal(SXWindow, short, short, std::uint32_t) {
    enter("SX_GetDlgItemVal");
    return 2;
}
HOST_DOUBLE void SX_EndDialog(SXWindow, std::uint32_t) {
    enter("SX_EndDialog");
}
HOST_DOUBLE void SX_EnableDlgItem(SXWindow, short, short, std::uint32_t) {
    enter("SX_EnableDlgItem");
}
HOST_DOUBLE short SX_GetCurERegions(std::uint64_t*, EREGION* region, EREGION*, std::uint32_t) {
    *region = {{0, 1, 1, 0}, {0, 1, 1, 0}};
    return 1;
}
HOST_DOUBLE SXMassEdit SX_StartMassEdit(SXHandle, std::uint32_t, std::uint32_t) {
    return nullptr;
}
HOST_DOUBLE short SX_MassEditProgress(SXMassEdit, short, short, short, short, std::uint32_t) {
    enter("SX_MassEditProgress");
    return 1;
}
HOST_DOUBLE void SX_EndMassEdit(SXMassEdit, short cancelled, std::uint32_t) {
    ends.push_back(cancelled);
}
HOST_DOUBLE short SX_GetMaxLayers(std::uint32_t) {
    return 1;
}
HOST_DOUBLE short SX_GetShowLayer(short, std::uint32_t) {
    return 1;
}

namespace {

TEST(Exceptions, EndInTheDialogProcedure) {
    InitializeGlobals();
    STStruct settings;
    MirrorAxis axis;
    std::int16_t steps = 0;
    const struct {
        const char* dialog;
        std::function<void()> open;
        const char* initThrower;
    } cases[] = {
        {"main", [] { ScorixExtensionInvoke(nullptr, 0, nullptr, nullptr); }, "SX_SetDlgItemVal"},
        {"transposition", [&] { TransposeDialog(nullptr, &settings); }, "SX_SetDlgItemVal"},
        {"other interval", [&] { OtherTransposeDialog(nullptr, &steps, &steps); }, "SX_SetDlgItemVal"},
        {"axis", [&] { editMirrorAxis(nullptr, axis); }, "SX_SetDlgItemVal"},
        {"retrograde options", [] { RetrogradeOptionsDialog(nullptr, 3); }, "SX_SetDlgItemVal"},
        {"report", [] { RetrogradePreScanDialog(nullptr, 0x200); }, "SX_EnableDlgItem"},
    };
    for (const auto& c : cases) {
        for (const auto& [function, message, item] : {std::tuple(c.initThrower, kDialogInit, short{0}),
                                                      std::tuple("SX_EndDialog", kDialogCommand, short{2})}) {
            SCOPED_TRACE(c.dialog + std::string(" ") + function);
            thrower = function;
            messages = {{message, item}};
            answers.clear();
            EXPECT_NO_THROW(c.open());
            EXPECT_EQ(answers, std::vector<int>{0});
        }
    }
}

TEST(Exceptions, EndTheMassEditAsCancelled) {
    InitializeGlobals();
    SUItems = {};
    thrower = "SX_MassEditProgress";
    messages = {{kDialogCommand, 1}, {kDialogCommand, 12}};  // apply, check
    answers.clear();
    EXPECT_EQ(ScorixExtensionInvoke(nullptr, 0, nullptr, nullptr), 0);
    EXPECT_EQ(answers, (std::vector<int>{0, 0}));
    EXPECT_EQ(ends, (std::vector<short>{1, 1}));
    EXPECT_EQ(MassEditDepth, 0);
}

TEST(Exceptions, EndInTheEntryPoint) {
    InitializeGlobals();
    thrower = "SX_Dialog";
    EXPECT_EQ(ScorixExtensionInvoke(nullptr, 0, nullptr, nullptr), 0);
    EXPECT_EQ(Ext_invoke(nullptr, 0, nullptr, nullptr), 0);
}

}  // namespace
