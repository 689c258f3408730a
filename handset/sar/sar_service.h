// The modem's SAR service: which device state index it transmits by.
#pragma once

#include <cstdint>

#include "qmi_service.h"

namespace handset {

class Core;
class Section;

struct SarProfile {
    uint32_t dsi = 3;
    /// False: the answer is a success that brings no index.
    bool valid = true;
};

void read_profile(Section& section, SarProfile& sar);

class SarService : public QmiService {
public:
    SarService(Core& core, const SarProfile& profile);

    QmiAnswer handle(const QmiRequest& request) override;

private:
    void show();

    Core& core_;
    SarProfile profile_;
};

}  // namespace handset
