// The word to the user when a host does not take this platform's function pointers.
#include "kit/dialog_handlers.h"

#include <gtest/gtest.h>

#include "host_double.h"
#include "kit/engine_bundle.h"

namespace {

int procedure(SXWindow, std::uint16_t, short, std::uint32_t, void*) {
    return 1;
}

TEST(DialogHandlers, AlertOnceEachWayUnderAForeignHost) {
    ASSERT_EQ(InitializeGlobals(), 0);
    EXPECT_EQ(NewFF_DialogHandlerProc(procedure), &procedure);
    DisposeFF_DialogHandlerProc(procedure);
    EXPECT_TRUE(alerts.empty());

    machOAnswer = 0;
    const Alert expected{nullptr, kAlertWarning, 0, "Should not get here!", kKitVersion};
    EXPECT_EQ(NewFF_DialogHandlerProc(procedure), &procedure);
    EXPECT_EQ(alerts, std::vector{expected});
    DisposeFF_DialogHandlerProc(procedure);
    EXPECT_EQ(alerts, (std::vector{expected, expected}));
}

}  // namespace
