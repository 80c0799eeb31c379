#include "CancellationWatch.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

using namespace std::chrono_literals;

TEST(CancellationWatch, stopsAThreadThatWorksTooLongAndSparesOneThatWaitsForOthersUnlessThatNeverEnds) {
    const auto isStoppedWithin = [](std::chrono::milliseconds limit, std::chrono::milliseconds time, bool works) {
        fz_cookie cookie{};
        const CancellationWatch watch(nullptr, &cookie, limit);
        const auto isStopped = [&cookie] { return __atomic_load_n(&cookie.abort, __ATOMIC_RELAXED) != 0; };
        const auto end = std::chrono::steady_clock::now() + time;
        while (!isStopped() && std::chrono::steady_clock::now() < end)
            works ? std::this_thread::yield() : std::this_thread::sleep_for(5ms);
        return isStopped();
    };
    EXPECT_TRUE(isStoppedWithin(20ms, 20s, true));
    EXPECT_FALSE(isStoppedWithin(2s, 300ms, true)) << "there is time left";
    EXPECT_FALSE(isStoppedWithin(500ms, 800ms, false));
    EXPECT_TRUE(isStoppedWithin(20ms, 20s, false));
}
