#include "note.h"

#include <cerrno>
#include <cstdio>
#include <mutex>
#include <set>

namespace seam {

void note(const std::string& line) {
    static auto* mutex = new std::mutex;
    static auto* told = new std::set<std::string>;
    const std::lock_guard<std::mutex> lock(*mutex);
    if (told->insert(line).second)
        fprintf(stderr, "%s: %s\n", program_invocation_short_name, line.c_str());
}

}  // namespace seam
