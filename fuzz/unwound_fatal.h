// A fatal condition as the fuzzers take it: an end of the run, not of the process.
#pragma once

/// Thrown by vxk_fatal, which unwinds here, so that what the abandoned frames hold is freed.
struct UnwoundFatal {};

/// Begins to count the locks of this thread: those that it holds at a fatal condition are a finding.
void count_locks();
