#include "error.h"

#include <cstdio>
#include <cstring>

namespace handset {

Error system_error(const std::string& what, int error) {
    return Error(what + ": " + strerror(error));
}

void complain(const std::string& line) {
    fprintf(stderr, "vxk-handset: %s\n", line.c_str());
}

}  // namespace handset
