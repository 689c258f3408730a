// The eSIM state command of group 5, and its pieces.
#pragma once

#include <cstdint>

/// Takes the whole command line. Returns -1 when it is too short, else 0: the outcome is printed.
int kelvra_cmn_esim_test(int argc, char** argv);

/// Set once the EID is known to be stored; this process does not look again. Main thread only.
extern bool IS_EID_SAVE;

/// Whether the 32 characters, each taken as its distance from '0', make a decimal number that leaves 1
/// modulo 97.
bool is_eid_valid(const char* eid_text);

/// Writes the 16 bytes to the EID file of subscription 1, unless a file is there already, whatever it holds.
/// Returns 0, or the result of the write that failed.
int save_eid_to_efs(const uint8_t* eid);

/// Prints the words of the two card states.
void map_sim_state(const int8_t* states);
