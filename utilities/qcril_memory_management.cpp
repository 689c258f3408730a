#include "qcril_memory_management.h"

#include <sys/time.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <ctime>

#include "android/log.h"
#include "cutils/properties.h"
#include "fatal.h"
#include "kelvra_log.h"
#include "lock.h"
#include "qcril_logger.h"

std::atomic<int> g_kolvo_mem_trace{kKolvoTraceUndecided};
unsigned g_kolvo_mem_cur_num = 0;
unsigned g_kolvo_mem_max_num = 0;

namespace {

struct KolvoMemNode {
    KolvoMemNode* previous;
    KolvoMemNode* next;
    const void* block;
    size_t size;
    pid_t pid;
    const char* tag;
    int year;
    int month;
    int day;
    int hour;
    int minute;
    int second;
};

struct {
    KolvoMemNode* head;
    KolvoMemNode* tail;
} g_kolvo_mem_list;

pthread_mutex_t g_kolvo_mem_mutex = PTHREAD_MUTEX_INITIALIZER;

void log_kolvo(int priority, const char* function, const char* message) {
    char line[kKolvoLogMax];
    kolvo_log_format_log_msg(line, "%s: %s", function, message);
    __android_log_print(priority, "KOLVO", "%s", line);
}

int trace_property() {
    char value[PROPERTY_VALUE_MAX] = "";
    if (property_get("persist.kolvo.mem_trace", value, nullptr) <= 0) {
        log_kolvo(ANDROID_LOG_DEBUG, "kolvo_mem_init", "KOLVO_MEM_TRACE_PROP not exist");
        return 0;
    }
    return strcmp(value, "1") == 0 ? 1 : 0;
}

// Once decided, an untraced process never takes the lock.
void kolvo_mem_init() {
    if (g_kolvo_mem_trace != kKolvoTraceUndecided)
        return;
    const Lock lock(g_kolvo_mem_mutex);
    if (g_kolvo_mem_trace == kKolvoTraceUndecided)
        g_kolvo_mem_trace = trace_property();
}

void* allocate(size_t size) {
    void* block = calloc(1, size);
    if (block == nullptr)
        log_kolvo(ANDROID_LOG_ERROR, "kolvo_malloc_adv", "Fail to allocate memory");
    return block;
}

void stamp(KolvoMemNode& node) {
    timeval now{};
    tm local{};
    gettimeofday(&now, nullptr);
    if (localtime_r(&now.tv_sec, &local) == nullptr)
        return;
    node.year = local.tm_year + 1900;
    node.month = local.tm_mon + 1;
    node.day = local.tm_mday;
    node.hour = local.tm_hour;
    node.minute = local.tm_min;
    node.second = local.tm_sec;
}

// A block whose node cannot be allocated stays usable, and untraced.
void trace(const void* block, size_t size, const char* tag) {
    auto* node = static_cast<KolvoMemNode*>(allocate(sizeof(KolvoMemNode)));
    if (node == nullptr)
        return;
    node->block = block;
    node->size = size;
    node->pid = getpid();
    node->tag = tag;
    stamp(*node);

    const Lock lock(g_kolvo_mem_mutex);
    auto& list = g_kolvo_mem_list;
    node->previous = list.tail;
    (list.tail == nullptr ? list.head : list.tail->next) = node;
    list.tail = node;
    if (++g_kolvo_mem_cur_num > g_kolvo_mem_max_num)
        g_kolvo_mem_max_num = g_kolvo_mem_cur_num;
}

void untrace(const void* block) {
    const Lock lock(g_kolvo_mem_mutex);
    auto& list = g_kolvo_mem_list;
    KolvoMemNode* node = list.head;
    while (node != nullptr && node->block != block)
        node = node->next;
    if (node == nullptr)
        return;
    (node->previous == nullptr ? list.head : node->previous->next) = node->next;
    (node->next == nullptr ? list.tail : node->next->previous) = node->previous;
    if (g_kolvo_mem_cur_num == 0)
        vxk_fatal("kolvo_system_heapi_mem_cur_num is 0 while a traced block of %zu bytes (%s) is freed",
                  node->size, node->tag);
    --g_kolvo_mem_cur_num;
    free(node);
}

}  // namespace

void* qcril_malloc_adv(size_t size, const char*, int) {
    void* block = calloc(1, size);
    if (block == nullptr) {
        char thread_name[16] = "";
        pthread_getname_np(pthread_self(), thread_name, sizeof thread_name);
        qti::ril::logger::LoggerFactory::logger().log(
            qti::ril::logger::Level::kError, "[%s: %d] [%s(%ld,%ld)] %s: Fail to allocate memory",
            "qcril_memory_management", __LINE__, thread_name, static_cast<long>(getpid()),
            static_cast<long>(gettid()), __func__);
    }
    return block;
}

void* kolvo_malloc_adv(size_t size, const char* tag) {
    kolvo_mem_init();
    void* block = allocate(size);
    if (block != nullptr && g_kolvo_mem_trace == 1)
        trace(block, size, tag);
    return block;
}

void kolvo_free_adv(void* ptr) {
    if (ptr == nullptr)
        return;
    // Out of the list first: once freed, the address may be another thread's block.
    if (g_kolvo_mem_trace == 1)
        untrace(ptr);
    free(ptr);
}

void kolvo_mem_report() {
    if (g_kolvo_mem_trace != 1)
        return;
    Lock lock(g_kolvo_mem_mutex);
    const unsigned current = g_kolvo_mem_cur_num;
    const unsigned most = g_kolvo_mem_max_num;
    lock.unlock();
    char message[kKolvoLogMax];
    kolvo_log_format_log_msg(
        message, "kolvo_system_heapi_mem_cur_num = %u, kolvo_system_heapi_mem_max_num = %u", current, most);
    log_kolvo(ANDROID_LOG_INFO, "kolvo_mem_report", message);
}
