// Binding of host functions: looked up once, host edits balanced.
#include "kit/host_api.h"

#include "engine_fixture.h"

namespace rovescio::test {
namespace {

using engine::callCount;
using engine::HostFunction;

TEST(HostApi, ALookupThatFailedIsNeverRepeated) {
    EngineFixture engine({"C 4/4 c4:w"});
    const CFBundleRef bundle = std::exchange(gScorixBundle, nullptr);
    EXPECT_EQ(SX_FontNameToNum_UTF16(u"Serif"), 0);
    gScorixBundle = bundle;
    EXPECT_EQ(SX_FontNameToNum_UTF16(u"Serif"), 0);
    EXPECT_EQ(callCount(HostFunction::SX_FontNameToNum_UTF16), 0U);
}

TEST(HostApi, HostEditsAreEndedAsOftenAsTheyWereStarted) {
    EngineFixture engine({"C 4/4 c4:w"});
    const auto ends = [] { return callCount(HostFunction::SX_EndScorixEdit); };
    const auto before = ends();
    EXPECT_EQ(SX_EndScorixEdit(), 1);
    EXPECT_EQ(SX_CancelScorixEdit(), 1);
    EXPECT_EQ(ScorixEditDepth, 0);
    EXPECT_EQ(ends(), before);
    SX_StartScorixEdit("a");
    SX_StartScorixEdit_UTF16(u"b");
    SX_StartScorixEdit("c");
    EXPECT_EQ(SX_CancelScorixEdit(), 0);  // this host has none
    EXPECT_EQ(ScorixEditDepth, 2);
    SX_EndAllScorixEdit();
    EXPECT_EQ(ScorixEditDepth, 0);
    EXPECT_EQ(ends(), before + 2);
}

TEST(HostApi, NumbersArriveInTheirWidth) {
    EngineFixture engine({"C 4/4 c4:w"});
    engine::planFault(HostFunction::SX_RebarRegion, 1);
    const CallTrace trace;
    const auto wide = [](int number) { return static_cast<short>(number); };
    EXPECT_EQ(SX_RebarRegion(nullptr, 0xFFFE, wide(0x12345), wide(0xFFFF), 0), 0);
    EXPECT_NE(trace.text().find("mode=65534, regroup=9029, options=-1, redraw=0"), std::string::npos)
        << trace.text();
}

}  // namespace
}  // namespace rovescio::test
