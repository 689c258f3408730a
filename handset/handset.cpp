#include "handset.h"

#include <utility>

#include "subjects.h"

namespace handset {

Handset::Handset(EventLoop& loop, const std::string& folder, const Profile& profile,
                 std::vector<std::unique_ptr<Transport>> transports, ReplayBook* replay)
    : profile_(std::make_unique<const Profile>(profile)),
      core_(std::make_unique<Core>(loop, folder, profile.modem, profile.faults, std::move(transports))),
      subjects_(std::make_unique<Subjects>(*core_, *profile_)) {
    core_->folder().replace(core_->folder().at("state/profile.json"), profile_->text);
    core_->set_replay(replay);
    core_->start();
}

Handset::~Handset() {
    core_->stop();
}

const std::string& Handset::folder() const {
    return core_->folder().path();
}

std::string Handset::at_notice() const {
    return subjects_->at.notice();
}

}  // namespace handset
