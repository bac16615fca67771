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

}  // namespace
}  // namespace rovescio::test
