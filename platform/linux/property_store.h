// Where a modem's machine keeps its properties. Any thread.
#pragma once

#include <memory>
#include <string>

namespace seam {

class PropertyStore {
public:
    virtual ~PropertyStore() = default;

    /// The value, empty when it is unset. `key` is a name without slashes that begins with a letter or digit.
    virtual std::string get(const std::string& key) = 0;

    /// An empty value unsets. False when it cannot be stored.
    virtual bool set(const std::string& key, const std::string& value) = 0;
};

/// One file a property, in `folder`/properties.
std::unique_ptr<PropertyStore> property_files(std::string folder);

/// Of the machine that the process runs on: Android's property service where it is, else files in the state
/// folder (VXK_STATE_DIR; /var/lib/vxk for root; $XDG_STATE_HOME/vxk, else ~/.local/state/vxk, for others).
std::unique_ptr<PropertyStore> machine_properties();

}  // namespace seam
