#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <vector>

#include "property_store.h"
#include "unique_fd.h"

namespace seam {

namespace {

constexpr char kAndroidService[] = "/dev/socket/property_service";

/// Runs a program of the PATH and collects what it prints. False when it cannot be run or fails.
bool run(std::vector<std::string> words, std::string& output) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return false;
    const host::UniqueFd out(ends[0]);
    host::UniqueFd in(ends[1]);
    std::vector<char*> argv(words.size() + 1);
    std::transform(words.begin(), words.end(), argv.begin(), [](std::string& word) { return word.data(); });
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in.get(), STDOUT_FILENO);
    pid_t pid = 0;
    const int error = posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        return false;
    in = host::UniqueFd();
    char bytes[256];
    ssize_t size = 0;
    while ((size = read(out.get(), bytes, sizeof bytes)) > 0 || (size < 0 && errno == EINTR))
        output.append(bytes, size > 0 ? static_cast<size_t>(size) : 0);
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    return status == 0;
}

/// Android's own programs know how to reach the service, whatever its version. Starting one takes longer than
/// most commands, so each property is asked for once.
class AndroidProperties : public PropertyStore {
public:
    std::string get(const std::string& key) override {
        const std::lock_guard<std::mutex> lock(mutex_);
        const auto found = known_.find(key);
        if (found != known_.end())
            return found->second;
        std::string value;
        run({"getprop", key}, value);
        value.resize(strcspn(value.c_str(), "\n"));
        return known_[key] = value;
    }

    bool set(const std::string& key, const std::string& value) override {
        std::string ignored;
        const std::lock_guard<std::mutex> lock(mutex_);
        if (!run({"setprop", key, value}, ignored))
            return false;
        known_[key] = value;
        return true;
    }

private:
    std::mutex mutex_;
    std::map<std::string, std::string> known_;
};

std::string environment(const char* name) {
    const char* value = getenv(name);
    return value != nullptr ? value : "";
}

/// Empty when the machine tells no place.
std::string state_folder() {
    std::string named = environment("VXK_STATE_DIR");
    if (!named.empty())
        return named;
    if (geteuid() == 0)
        return "/var/lib/vxk";
    const std::string states = environment("XDG_STATE_HOME");
    // A relative one is to be ignored.
    if (!states.empty() && states.front() == '/')
        return states + "/vxk";
    const std::string home = environment("HOME");
    return home.empty() ? "" : home + "/.local/state/vxk";
}

/// Files in a folder that is made when the first property is set.
class StateProperties : public PropertyStore {
public:
    explicit StateProperties(std::string folder)
        : folder_(std::move(folder)), files_(property_files(folder_)) {}

    std::string get(const std::string& key) override { return folder_.empty() ? "" : files_->get(key); }

    bool set(const std::string& key, const std::string& value) override {
        for (size_t i = 1; i < folder_.size(); ++i) {
            if (folder_[i] == '/')
                mkdir(folder_.substr(0, i).c_str(), 0755);
        }
        mkdir(folder_.c_str(), 0700);
        return !folder_.empty() && files_->set(key, value);
    }

private:
    const std::string folder_;
    const std::unique_ptr<PropertyStore> files_;
};

/// The machine is looked at when the first property is asked for.
class MachineProperties : public PropertyStore {
public:
    std::string get(const std::string& key) override { return store().get(key); }
    bool set(const std::string& key, const std::string& value) override { return store().set(key, value); }

private:
    PropertyStore& store() {
        std::call_once(looked_, [this] {
            if (access(kAndroidService, F_OK) == 0)
                store_ = std::make_unique<AndroidProperties>();
            else
                store_ = std::make_unique<StateProperties>(state_folder());
        });
        return *store_;
    }

    std::once_flag looked_;
    std::unique_ptr<PropertyStore> store_;
};

}  // namespace

std::unique_ptr<PropertyStore> machine_properties() {
    return std::make_unique<MachineProperties>();
}

}  // namespace seam
