// The modem's statistics service: its measurements by data id and subscription. Everything that a profile
// sets is in the form in which it leaves, so an answer may also be one that no good modem gives.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <utility>
#include <vector>

#include "qmi_service.h"
#include "statistics_indication.h"

namespace handset {

class Section;

/// The answer to one data id: entries of the answer's list, all alike.
struct StatisticsValue {
    uint32_t id = 0;
    uint16_t sub = 0;
    uint16_t length = 0;  // as announced
    wire::Bytes bytes;
    uint8_t entries = 1;
};

struct StatisticsProfile {
    /// A plausible value for every data id that has a record, on both subscriptions.
    StatisticsProfile();

    std::map<std::pair<uint32_t, uint16_t>, StatisticsValue> values;  // by data id and subscription
    std::vector<StatisticsIndication> indications;
};

void read_profile(Section& section, StatisticsProfile& statistics);

class StatisticsService : public QmiService {
public:
    StatisticsService(Core& core, const StatisticsProfile& profile);

    QmiAnswer handle(const QmiRequest& request) override;
    void connection_opened(ConnectionId connection) override;

private:
    wire::Bytes set_feature(const QmiRequest& request);
    wire::Bytes values(const QmiRequest& request);
    void say(StatisticsOccasion occasion);

    /// values.ID.SUB.FIELD of the profile's records.
    std::function<void()> read_change(Section& section);

    StatisticsProfile profile_;
};

}  // namespace handset
