#include "show.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "error.h"
#include "folder.h"
#include "hex_text.h"
#include "messages.h"
#include "state_board.h"

namespace handset {
namespace {

namespace fs = std::filesystem;

using Rows = std::vector<std::pair<std::string, std::string>>;

void print_heading(const std::string& heading) {
    static const bool bold = isatty(STDOUT_FILENO) != 0 && getenv("NO_COLOR") == nullptr;
    printf(bold ? "\033[1m%s\033[0m\n" : "%s\n", heading.c_str());
}

// A heading and under it two columns.
void print_table(const std::string& heading, const Rows& rows) {
    size_t width = 0;
    for (const auto& row : rows)
        width = std::max(width, row.first.size());
    printf("\n");
    print_heading(heading);
    if (rows.empty())
        printf("  none\n");
    for (const auto& row : rows)
        printf("  %-*s  %s\n", static_cast<int>(width), row.first.c_str(), row.second.c_str());
}

Rows services(const std::string& folder) {
    std::vector<std::pair<uint16_t, std::string>> found;
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(folder + "/qmi", ignored)) {
        const auto id = static_cast<uint16_t>(strtoul(entry.path().filename().c_str(), nullptr, 10));
        if (entry.is_socket(ignored))
            found.emplace_back(id, messages::service_name(id));
    }
    std::sort(found.begin(), found.end());
    Rows rows;
    for (const auto& service : found)
        rows.emplace_back("qmi " + std::to_string(service.first), service.second);
    if (fs::is_socket(folder + "/diag", ignored))
        rows.emplace_back("diag", "diag");
    for (const char* port : {"at", "dm"}) {
        if (fs::is_symlink(folder + "/" + port, ignored))
            rows.emplace_back(port, "terminal");
    }
    return rows;
}

Rows properties(const std::string& folder) {
    Rows rows;
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(folder + "/properties", ignored)) {
        std::string value;
        append_quoted(value, read_text(entry.path().string()).value_or(""));
        rows.emplace_back(entry.path().filename().string(), value);
    }
    std::sort(rows.begin(), rows.end());
    return rows;
}

std::string count_of_bytes(uintmax_t size) {
    return std::to_string(size) + (size == 1 ? " byte" : " bytes");
}

// Every file below a folder, with its size; `shown` makes a file's name from its path below it.
template <typename Shown>
Rows files(const std::string& folder, Shown shown) {
    Rows rows;
    std::error_code ignored;
    for (auto entry = fs::recursive_directory_iterator(folder, ignored);
         entry != fs::recursive_directory_iterator(); entry.increment(ignored)) {
        if (entry->is_regular_file(ignored))
            rows.emplace_back(shown(entry->path().lexically_relative(folder).string()),
                              count_of_bytes(entry->file_size(ignored)));
    }
    std::sort(rows.begin(), rows.end());
    return rows;
}

}  // namespace

void flush_output() {
    const int error = fflush(stdout) != 0 ? errno : ferror(stdout) != 0 ? EIO : 0;
    if (error != 0)
        throw system_error("cannot write to standard output", error);
}

int show(const std::string& folder) {
    std::error_code ignored;
    if (!fs::is_directory(folder + "/qmi", ignored))
        throw Error("there is no handset in " + folder + "; start one with: vxk-handset serve --dir " +
                    folder);
    const auto owner = running_handset(folder);
    print_heading("handset " + folder);
    if (owner)
        printf("  running, process %d\n", static_cast<int>(*owner));
    else
        printf("  not running\n");
    print_table("services", owner ? services(folder) : Rows());
    for (const auto& subject : read_states(folder))
        print_table(subject.first, subject.second);
    print_table("properties", properties(folder));
    for (const char* sub : {"0", "1"}) {
        const auto path = [](const std::string& name) { return "/" + name; };
        const auto item = [](const std::string& name) {
            return std::string(4 - std::min<size_t>(4, name.size()), ' ') + name;
        };
        const Rows efs = files(folder + "/efs/" + sub, path);
        const Rows nv = files(folder + "/nv/" + sub, item);
        if (!efs.empty() || *sub == '0')
            print_table(std::string("efs, subscription ") + sub, efs);
        if (!nv.empty() || *sub == '0')
            print_table(std::string("nv, subscription ") + sub, nv);
    }
    flush_output();
    return 0;
}

}  // namespace handset
