// Allocation that zero-fills, reports failure in one place and, for the statistics code, can be traced so
// that leaks are seen.
#pragma once

#include <cstddef>

/// `size` zero bytes, freed with free(); null after logging the failure. `function` and `line` name the
/// caller. Any thread.
void* qcril_malloc_adv(size_t size, const char* function, int line);

/// `size` zero bytes, freed with kolvo_free_adv(); null after logging the failure. `tag` names the
/// allocation's place and must outlive the block. The first call decides, by the property
/// "persist.kolvo.mem_trace", whether blocks are traced. Any thread.
void* kolvo_malloc_adv(size_t size, const char* tag);

/// Frees a block of kolvo_malloc_adv; null is allowed, and so is a block that is not traced.
void kolvo_free_adv(void* ptr);
