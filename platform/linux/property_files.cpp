#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "cutils/properties.h"
#include "file.h"
#include "layout.h"
#include "property_store.h"
#include "unique_fd.h"

namespace seam {

namespace {

class PropertyFiles : public PropertyStore {
public:
    explicit PropertyFiles(std::string folder) : folder_(std::move(folder) + "/" + host::kPropertiesPlace) {}

    // A line end that an editor or a shell put behind the value is not part of it.
    std::string get(const std::string& key) override {
        const host::UniqueFd file(open((folder_ + "/" + key).c_str(), O_RDONLY | O_CLOEXEC));
        char value[PROPERTY_VALUE_MAX];
        const ssize_t size = file ? read(file.get(), value, sizeof value - 1) : 0;
        value[size > 0 ? size : 0] = '\0';
        value[strcspn(value, "\n")] = '\0';
        return value;
    }

    bool set(const std::string& key, const std::string& value) override {
        const std::string path = folder_ + "/" + key;
        if (value.empty())
            return unlink(path.c_str()) == 0 || errno == ENOENT;
        mkdir(folder_.c_str(), 0700);
        const std::string beside = folder_ + "/." + key + "." + std::to_string(gettid());
        return host::replace_file(path, beside, value.data(), value.size()) == 0;
    }

private:
    const std::string folder_;
};

}  // namespace

std::unique_ptr<PropertyStore> property_files(std::string folder) {
    return std::make_unique<PropertyFiles>(std::move(folder));
}

}  // namespace seam
