#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <thread>
#include <vector>

#include "dt3Library/Varn_3D.h"
#include "dt3Library/tools.h"
#include "tests/support/Failures.h"

using namespace VARN3D;
using support::outputOf;

namespace {

/// An access fault, or what a sanitizer makes of it.
bool crashed(int status) {
    return ::testing::KilledBySignal(SIGSEGV)(status) || ::testing::ExitedWithCode(1)(status) ||
           ::testing::ExitedWithCode(66)(status);
}

void count(std::string name) {
    benchCounter(name);
}

}  // namespace

TEST(Messages, WarningsErrorsAndBanners) {
    EXPECT_EQ(outputOf([] { printWarning("who", "text"); }), "\n      who, WARNING: text\n\n");
    EXPECT_EQ(outputOf([] { printError("who", "text"); }), "\n      who, ERROR: text\n\n");
    const std::string rule(36 + 4, '*');
    EXPECT_EQ(outputOf([] { printBanner("text"); }),
              "\n\n" + rule + "\n" + rule + "\n                text\n" + rule + "\n" + rule + "\n");
}

TEST(Messages, FailedChecksPrintBeforeTheyThrow) {
    const int two = 2;
    EXPECT_EQ(outputOf([&] { varnAssert(two == 2); }), "");
    EXPECT_THAT(support::failureOf([&] { varnAssert(two == 3); }),
                ::testing::StartsWith("\n      Varn, , ERROR: Condition [ two == 3 failed ]\n\n"));
    EXPECT_EQ(
        support::failureOf([&] { varnAssertAt(two == 3, "a == b", "x/dt3Library/Y.cpp", 7); }),
        "\n      Varn, , ERROR: Condition [ a == b failed ]\n\n      dt3Library/Y.cpp:7\n");
    EXPECT_EQ(
        support::failureOf([] { conditionFailed("c", "/dt3Library/a/dt3Library/b/Z.h", 12); }),
        "\n      Varn, , ERROR: Condition [ c failed ]\n\n      dt3Library/b/Z.h:12\n");
    EXPECT_STREQ(VarnException().what(),
                 "\n  VARN EXCEPTION due to a bug _or_ wrong usage of Varn. If you think it is a "
                 "\n  bug then please report this incident and it will be fixed quickly: "
                 "varn3d@example.org");
}

TEST(Messages, GoToStandardOutputOrToTheHostsStream) {
    const auto use = [] {
        testing::internal::CaptureStdout();
        Varn_3D mesh;
        std::vector<Point3> none;
        mesh.insert(none);
        EXPECT_THROW(mesh.locate({std::nan(""), 0, 0}), VarnException);
        getNormalVector({}, {}, {});
        return testing::internal::GetCapturedStdout();
    };
    const std::string expected = use();
    EXPECT_THAT(expected, ::testing::StartsWith("numPoints=0\n\n      Dt3::locate(), ERROR: "));
    EXPECT_THAT(expected, ::testing::HasSubstr(
                              support::checkReport("std::isfinite", "dt3Library/Dt3.cpp:70")));
    EXPECT_THAT(expected, ::testing::EndsWith("Null length vector!\n"));
    EXPECT_EQ(outputOf([&] { EXPECT_EQ(use(), ""); }), expected);
    EXPECT_EQ(outputOf([&] {
                  Varn_3D::setMessageStream(nullptr);
                  EXPECT_EQ(use(), "");
              }),
              "");
    EXPECT_EQ(use(), expected);
}

TEST(MessagesDeathTest, HellIsAnAccessFault) {
    EXPECT_EXIT(
        {
            support::printOnStandardError();
            std::atexit([] { std::_Exit(0); });  // an orderly exit is no crash
            goToHell("no way");
        },
        crashed, ::testing::HasSubstr("\n      goToHell, ERROR:  reason: no way\n\n"));
}

TEST(Timers, StartAndStopInTurn) {
    using Clock = std::chrono::steady_clock;
    double result = 0.0;
    const Clock::time_point start = Clock::now();
    EXPECT_EQ(outputOf([&] { result = timer("x"); }), "\n*** Timer [x] start\n");
    EXPECT_EQ(result, -1.0);
    outputOf([] { timer("y"); });
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
    EXPECT_THAT(outputOf([&] {
                    result = timer("x");
                    messageStream() << 0.5;
                }),
                ::testing::MatchesRegex("\\*\\*\\* Timer \\[x\\] stop, elapsed time: "
                                        "[0-9]+\\.[0-9][0-9][0-9] s\n0\\.500000"));
    EXPECT_GE(result, 0.002);
    EXPECT_LE(result, std::chrono::duration<double>(Clock::now() - start).count());
    outputOf([&] { result = timer("x"); });
    EXPECT_EQ(result, -1.0);
}

// One test, for the counters belong to the process.
TEST(Counters, CountOnAndTakeCallsFromManyThreads) {
    EXPECT_EQ(outputOf([] { count("GETCOUNTERS"); }), "\nCounters: \n");
    for (const char* name : {"b", "a", "a"}) count(name);
    for (int twice = 0; twice < 2; ++twice)
        EXPECT_EQ(outputOf([] { count("GETCOUNTERS"); }), "\nCounters: \na\t2\nb\t1\n");
    EXPECT_EQ(getNextDumpPrefix(), "00001_");
    outputOf([] {
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t)
            threads.emplace_back([t] {
                for (int i = 0; i < 500; ++i) {
                    count("shared");
                    timer("thread " + std::to_string(t));
                    getNextDumpPrefix();
                }
            });
        for (std::thread& thread : threads) thread.join();
    });
    EXPECT_THAT(outputOf([] { count("GETCOUNTERS"); }), ::testing::HasSubstr("shared\t2000\n"));
    for (int i = 2002; i < 99999; ++i) getNextDumpPrefix();
    EXPECT_EQ(getNextDumpPrefix(), "99999_");
    EXPECT_EQ(getNextDumpPrefix(), "100000_");
}
