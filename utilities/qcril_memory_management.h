// Allocation that zero-fills, reports failure in one place and, for the statistics code, can be traced so
// that leaks are seen.
#pragma once

#include <atomic>
#include <cstddef>

/// Whether blocks of kolvo_malloc_adv are traced: 1 yes, 0 no, kKolvoTraceUndecided before
/// the first allocation.
constexpr int kKolvoTraceUndecided = -1;
extern std::atomic<int> g_kolvo_mem_trace;

/// Live traced blocks, and the most there ever were. Guarded by this unit's mutex; read by kolvo_mem_report.
extern unsigned g_kolvo_mem_cur_num;
extern unsigned g_kolvo_mem_max_num;

/// `size` zero bytes, freed with free(); null after reporting the failure through the QCRIL logger. The
/// caller names itself; the failure's line does not use that. Any thread.
void* qcril_malloc_adv(size_t size, const char* function, int line);

/// `size` zero bytes, freed with kolvo_free_adv(); null after logging the failure. `tag` names the
/// allocation's place and must outlive the block. The first call decides, by the property
/// "persist.kolvo.mem_trace", whether blocks are traced: "1" switches tracing on. Any thread.
void* kolvo_malloc_adv(size_t size, const char* tag);

/// Frees a block of kolvo_malloc_adv; null is allowed, and so is a block that is not traced. Any thread.
void kolvo_free_adv(void* ptr);

/// Writes the two counters to the Android log, if blocks are traced. Called when the statistics framework is
/// released. Any thread.
void kolvo_mem_report();
