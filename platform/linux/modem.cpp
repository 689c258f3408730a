#include "modem.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>

#include "folder_road.h"
#include "layout.h"
#include "qrtr_road.h"

namespace seam {

namespace {

std::shared_ptr<Modem> folder_modem(const std::string& folder) {
    return std::make_shared<Modem>(Modem{std::make_unique<FolderRoad>(folder), folder_diag(folder),
                                         property_files(folder), log_file(folder)});
}

std::shared_ptr<Modem> bus_modem(std::optional<uint32_t> node, const std::string& hint = "") {
    return std::make_shared<Modem>(
        Modem{std::make_unique<QrtrRoad>(node, hint), router_diag(), machine_properties(), machine_log()});
}

bool has_default_folder() {
    struct stat status;
    return stat(host::default_handset_folder().c_str(), &status) == 0;
}

/// A number of decimal digits that fits 32 bits.
std::optional<uint32_t> node_number(const std::string& text) {
    if (text.empty() || text.size() > 10 || text.find_first_not_of("0123456789") != std::string::npos)
        return std::nullopt;
    const unsigned long long number = strtoull(text.c_str(), nullptr, 10);
    return number <= UINT32_MAX ? std::optional(static_cast<uint32_t>(number)) : std::nullopt;
}

/// Null for words that name no modem.
std::shared_ptr<Modem> named_modem(const std::string& words) {
    const size_t colon = words.find(':');
    const std::string kind = words.substr(0, colon);
    const std::string which = colon == std::string::npos ? "" : words.substr(colon + 1);
    if (words == "qrtr")
        return bus_modem(std::nullopt);
    const auto node = node_number(which);
    if (kind == "qrtr" && node)
        return bus_modem(node);
    return kind == "folder" && !which.empty() ? folder_modem(which) : nullptr;
}

/// Which choice the environment asks for, and the modem that it led to. What is empty is not asked for.
struct Choice {
    std::string words;
    std::string folder;
    bool is_default_bus = false;
    std::shared_ptr<Modem> modem;
};

void choose_default(Choice& choice) {
    const std::string folder = host::default_handset_folder();
    choice.is_default_bus = !has_default_folder() && has_qrtr();
    choice.modem = choice.is_default_bus ? bus_modem(std::nullopt, ", and no handset runs in " + folder +
                                                                       ". Start one with: vxk-handset serve")
                                         : folder_modem(folder);
}

void choose(Choice& choice) {
    if (choice.words.empty() && choice.folder.empty())
        return choose_default(choice);
    choice.modem = choice.words.empty() ? folder_modem(choice.folder) : named_modem(choice.words);
    if (choice.modem)
        return;
    fflush(stdout);
    fprintf(stderr, "%s: VXK_MODEM is \"%s\"; it must be qrtr, qrtr:<node> or folder:<path>\n",
            program_invocation_short_name, choice.words.c_str());
    _exit(EXIT_SUCCESS);
}

bool is_same(const std::string& before, const char* now) {
    return now != nullptr ? before == now : before.empty();
}

}  // namespace

std::shared_ptr<Modem> modem() {
    static auto* mutex = new std::mutex;
    static auto* last = new Choice;
    // Every line of the log asks: what has not changed is not copied.
    const char* words = getenv("VXK_MODEM");
    const char* folder = host::named_handset_folder();
    const std::lock_guard<std::mutex> lock(*mutex);
    if (last->modem && is_same(last->words, words) && is_same(last->folder, folder) &&
        !(last->is_default_bus && has_default_folder()))
        return last->modem;
    Choice now{words != nullptr ? words : "", folder != nullptr ? folder : "", false, nullptr};
    choose(now);
    *last = std::move(now);
    return last->modem;
}

}  // namespace seam
