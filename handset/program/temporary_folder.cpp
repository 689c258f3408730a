#include "temporary_folder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "error.h"
#include "folder.h"

namespace handset {
namespace {

namespace fs = std::filesystem;

constexpr char kPrefix[] = "vxk-handset.";
constexpr char kRandomPart[] = "XXXXXX";
constexpr size_t kLongestPlace = 60;

bool has_temporary_name(const fs::path& path) {
    const std::string name = path.filename().string();
    return name.size() == strlen(kPrefix) + strlen(kRandomPart) &&
           name.compare(0, strlen(kPrefix), kPrefix) == 0;
}

// A handset names its process in the lock once it holds it: a lock with a name that nobody holds is that of a
// dead handset, and one without a name that of a handset that is about to boot.
bool left_behind(const std::string& folder) {
    struct stat info {};
    if (lstat(folder.c_str(), &info) != 0 || !S_ISDIR(info.st_mode) || info.st_uid != geteuid())
        return false;
    return !read_text(folder + "/lock").value_or("").empty() && !running_handset(folder);
}

void remove_left_behind(const std::string& place) {
    std::error_code ignored;
    for (auto entry = fs::directory_iterator(place, ignored); entry != fs::directory_iterator();
         entry.increment(ignored)) {
        if (has_temporary_name(entry->path()) && left_behind(entry->path().string()))
            fs::remove_all(entry->path(), ignored);
    }
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
    const char* named = getenv("TMPDIR");
    for (const char* place : {named, "/tmp"}) {
        if (place == nullptr || *place == '\0' || strlen(place) > kLongestPlace)
            continue;
        remove_left_behind(place);
        path_ = std::string(place) + "/" + kPrefix + kRandomPart;
        if (mkdtemp(path_.data()) != nullptr)
            return;
    }
    throw system_error("cannot create a temporary folder", errno);
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

}  // namespace handset
