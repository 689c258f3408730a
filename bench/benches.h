// The comparisons, a function a subject, each in a process of its own. Standard output is the device that
// swallows everything, as when a script throws the log away; VXK_HANDSET_DIR names a running handset, which
// those of the bus find there.
#pragma once

#include "comparison.h"

namespace bench {

void compare_processes(Table& table);
void compare_exchanges(Table& table);
void compare_handset(Table& table);
void compare_hex_printer(Table& table);
void compare_record_parser(Table& table);
void compare_bus(Table& table);
void compare_stock_client(Table& table);

}  // namespace bench
