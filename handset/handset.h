// The handset as a whole: a core, and the subjects that subjects.h puts into it.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace handset {

class Core;
class EventLoop;
struct Profile;
class ReplayBook;
struct Subjects;
class Transport;

class Handset {
public:
    /// Takes the folder, puts all subjects in, and publishes them in it and on the further transports. Throws
    /// Error when the folder cannot be used. What is replayed outlives the handset.
    Handset(EventLoop& loop, const std::string& folder, const Profile& profile,
            std::vector<std::unique_ptr<Transport>> transports = {}, ReplayBook* replay = nullptr);
    ~Handset();
    Handset(const Handset&) = delete;
    Handset& operator=(const Handset&) = delete;

    /// The folder's name, absolute.
    const std::string& folder() const;

    /// One line for a person who wants to send AT commands by the device's name, when they would not arrive
    /// here; else empty.
    std::string at_notice() const;

private:
    const std::unique_ptr<const Profile> profile_;
    const std::unique_ptr<Core> core_;
    const std::unique_ptr<Subjects> subjects_;
};

}  // namespace handset
