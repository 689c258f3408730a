// Tracked allocation: which blocks are counted, and what stays harmless.
#include <gmock/gmock.h>

#include <cstring>

#include "platform_test.h"
#include "qcril_memory_management.h"

namespace {

using testing::ElementsAre;

class Memory : public PlatformTest {
protected:
    Memory() {
        g_kolvo_mem_trace = kKolvoTraceUndecided;
        g_kolvo_mem_cur_num = g_kolvo_mem_max_num = 0;
    }
};

TEST_F(Memory, OnlyTheValueOneTraces) {
    const struct {
        const char* value;
        unsigned live;
        size_t lines;
    } cases[] = {{"1", 1, 0}, {"", 0, 1}, {"0", 0, 0}, {"10", 0, 0}, {"true", 0, 0}};
    for (const auto& c : cases) {
        g_kolvo_mem_trace = kKolvoTraceUndecided;
        platform().android_log.clear();
        platform().properties["persist.kolvo.mem_trace"] = c.value;
        void* block = kolvo_malloc_adv(4, "tag");
        platform().properties["persist.kolvo.mem_trace"] = "1";  // the first allocation has decided
        void* second = kolvo_malloc_adv(4, "tag");
        EXPECT_EQ(g_kolvo_mem_cur_num, 2 * c.live) << c.value;
        kolvo_mem_report();
        EXPECT_EQ(platform().android_log.size(), c.lines + c.live) << c.value;
        kolvo_free_adv(block);
        kolvo_free_adv(second);
        EXPECT_EQ(g_kolvo_mem_cur_num, 0U) << c.value;
    }
}

TEST_F(Memory, ListSurvivesEveryOrderOfFreeing) {
    platform().properties["persist.kolvo.mem_trace"] = "1";
    const int orders[][3] = {{0, 1, 2}, {2, 1, 0}, {1, 0, 2}, {1, 2, 0}, {0, 2, 1}, {2, 0, 1}};
    for (const auto& order : orders) {
        void* blocks[3];
        for (void*& block : blocks) {
            block = kolvo_malloc_adv(100, "three");
            EXPECT_EQ(std::string(static_cast<char*>(block), 100), std::string(100, '\0'));
            memset(block, 0xFF, 100);
        }
        unsigned left = 3;
        for (const int index : order) {
            kolvo_free_adv(blocks[index]);
            EXPECT_EQ(g_kolvo_mem_cur_num, --left);
        }
    }
    kolvo_free_adv(nullptr);
    kolvo_free_adv(malloc(8));  // never traced
    EXPECT_EQ(g_kolvo_mem_cur_num, 0U);
    kolvo_mem_report();
    EXPECT_THAT(platform().android_log,
                ElementsAre("4 KOLVO kolvo_mem_report: kolvo_system_heapi_mem_cur_num = 0, "
                            "kolvo_system_heapi_mem_max_num = 3"));
}

TEST_F(Memory, Failures) {
    platform().properties["persist.kolvo.mem_trace"] = "1";
    fail_malloc(1);
    EXPECT_EQ(kolvo_malloc_adv(8, "block"), nullptr);
    fail_malloc(2);
    void* untraced = kolvo_malloc_adv(8, "node");
    ASSERT_NE(untraced, nullptr);
    EXPECT_EQ(g_kolvo_mem_cur_num, 0U);
    kolvo_free_adv(untraced);
    EXPECT_THAT(platform().android_log, ElementsAre("6 KOLVO kolvo_malloc_adv: Fail to allocate memory",
                                                    "6 KOLVO kolvo_malloc_adv: Fail to allocate memory"));
}

TEST_F(Memory, CounterThatLostTrackIsFatal) {
    platform().properties["persist.kolvo.mem_trace"] = "1";
    void* block = kolvo_malloc_adv(8, "lost");
    EXPECT_EXIT((g_kolvo_mem_cur_num = 0, kolvo_free_adv(block)), testing::KilledBySignal(SIGABRT),
                "vxk: fatal: .*cur_num is 0 .*8 bytes \\(lost\\)");
    kolvo_free_adv(block);
}

}  // namespace
