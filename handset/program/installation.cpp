#include "installation.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace handset {
namespace {

namespace fs = std::filesystem;

// Where the system's programs are when nobody says.
constexpr char kSystemPath[] = "/usr/bin:/bin";

// The folder of this executable, links resolved; empty when the system does not tell.
fs::path own_folder() {
    std::error_code ignored;
    return fs::read_symlink("/proc/self/exe", ignored).parent_path();
}

}  // namespace

void put_programs_on_path() {
    const fs::path own = own_folder();
    if (own.empty())
        return;
    const char* path = getenv("PATH");
    const std::string rest = path != nullptr && *path != '\0' ? path : kSystemPath;
    setenv("PATH", (own.string() + ":" + rest).c_str(), 1);
}

std::string found_profile(const std::string& named) {
    std::error_code ignored;
    if (named == "-" || named.find('/') != std::string::npos || fs::exists(named, ignored))
        return named;
    const fs::path installed = own_folder().parent_path() / "share/vxk/profiles" / (named + ".json");
    return fs::exists(installed, ignored) ? installed.string() : named;
}

}  // namespace handset
