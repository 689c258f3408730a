// The name under which the tool finds the AT channel, /dev/smd8, or what VXK_AT_DEVICE says instead. All
// handsets of a machine share it: it is taken when it is free or left behind by a handset that was killed,
// and never from anybody else.
#pragma once

#include <string>

namespace handset {

class AtDevice {
public:
    /// Links the device to `link`, the "at" in a handset's folder, where that may be. Without a terminal
    /// there is no link.
    explicit AtDevice(std::string link);

    /// Removes its own link and no other.
    ~AtDevice();
    AtDevice(const AtDevice&) = delete;
    AtDevice& operator=(const AtDevice&) = delete;

    const std::string& name() const { return name_; }

    /// What stands in the way; empty when the device leads to this handset.
    const std::string& obstacle() const { return obstacle_; }

private:
    const std::string name_;
    const std::string link_;
    std::string obstacle_;
};

}  // namespace handset
