// Sides that more than one subject compares.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "comparison.h"

namespace bench {

/// The size of the packets of an exchange through the library, request and answer: the
/// extension service's largest.
constexpr size_t kRequestSize = 536;

/// One exchange through the Linux library with the service of that id, which must answer each request with
/// its own bytes. Once a process.
Side library_side(uint32_t service_id);

/// A whole command, from start to exit, which must have printed `answer`: how fast it fails is of no
/// interest. `program` is a path.
Side command_side(const std::string& program, const std::string& words, const std::string& answer);

}  // namespace bench
