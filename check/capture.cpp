#include "capture.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

#include "glob.h"
#include "plan.h"

namespace check {
namespace {

namespace fs = std::filesystem;

constexpr std::chrono::seconds kHelperLimit(20);
constexpr char kFolderSetting[] = "VXK_HANDSET_DIR=";

std::string remote_trace() {
    return "/data/local/tmp/vxk-trace-" + std::to_string(getpid());
}

std::string adb(const Handset& handset, const std::string& line) {
    std::vector<std::string> argv{"adb"};
    if (!handset.serial.empty())
        argv.insert(argv.end(), {"-s", handset.serial});
    argv.insert(argv.end(), {"shell", line});
    return run_process(argv, {}, kHelperLimit).out;
}

std::string content_of(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

// The folder of a simulated handset, empty for another.
std::string folder_of(const Handset& handset) {
    for (const std::string& setting : handset.settings) {
        if (starts_with(setting, kFolderSetting))
            return setting.substr(strlen(kFolderSetting));
    }
    const char* named = getenv("VXK_HANDSET_DIR");
    return handset.settings.empty() && named != nullptr ? named : "";
}

// "[name]: [value]", as a handset's own listing has them.
std::string properties_of(const std::string& folder) {
    std::map<std::string, std::string> properties;
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(folder + "/properties", ignored))
        properties[entry.path().filename().string()] = content_of(entry.path());
    std::string text;
    for (const auto& property : properties)
        text.append("[").append(property.first).append("]: [").append(property.second).append("]\n");
    return text;
}

}  // namespace

Capture::Capture(std::string path) : path_(std::move(path)) {
    if (!std::ofstream(path_))
        throw PlanError("cannot write " + path_ + ": " + strerror(errno));
    scratch_ = (fs::temp_directory_path() / "vxk-capture-XXXXXX").string();
    if (mkdtemp(scratch_.data()) == nullptr)
        throw PlanError("cannot create a folder for " + path_ + ": " + strerror(errno));
    std::string name = fs::path(path_).filename().string();
    name = name.substr(0, name.find(".t"));
    folder_ = scratch_ + "/" + (name.empty() || name[0] == '-' || name[0] == '.' ? "vxk-capture" : name);
    fs::create_directory(folder_);
}

Capture::~Capture() {
    std::error_code ignored;
    fs::remove_all(scratch_, ignored);
}

Handset Capture::traced(const Handset& handset) const {
    Handset traced = handset;
    if (handset.adb)
        traced.trace = remote_trace();
    else
        traced.settings.push_back("VXK_TRACE=" + folder_ + "/trace.jsonl");
    return traced;
}

void Capture::write(const Handset& handset, const Result& result) const {
    const auto write = [this](const char* name, const std::string& text) {
        std::ofstream(folder_ + "/" + name, std::ios::binary) << text;
    };
    write("command", "vxk " + command_text(result.command) + "\n");
    write("stdout", result.run.out);
    write("stderr", result.run.err);
    write("verdict.json", json_text(result_json(result)) + "\n");
    write("versions", "vxk-check " VXK_VERSION "\ntrace 1\n");
    if (handset.adb) {
        const std::string trace = remote_trace();
        write("trace.jsonl", adb(handset, "cat " + trace + "; rm -f " + trace));
        write("properties", adb(handset, "getprop"));
        write("system.log", adb(handset, "logcat -d -v threadtime -t 2000"));
    } else {
        const std::string folder = folder_of(handset);
        std::ofstream(folder_ + "/trace.jsonl", std::ios::app).flush();
        write("properties", properties_of(folder));
        write("system.log", folder.empty() ? "" : content_of(folder + "/log/system.log"));
    }
    const Run packed = run_process({"tar", "-c", "-z", "-f", fs::absolute(path_).string(), "--force-local",
                                    "-C", scratch_, fs::path(folder_).filename().string()},
                                   {}, kHelperLimit);
    if (packed.exit_status != 0)
        throw PlanError("cannot write " + path_ + ": tar failed");
}

}  // namespace check
