// The modem's SAR service: which device state index it transmits by.
#include <cstdint>

#include "core.h"
#include "profile_section.h"
#include "qmi_service.h"

namespace handset {
namespace {

constexpr uint16_t kGetDsi = 2;  // no request TLVs; the answer: the result, 0x10 u32
constexpr uint8_t kTlvDsi = 0x10;

struct SarProfile {
    uint32_t dsi = 3;
    /// False: the answer is a success that brings no index.
    bool valid = true;
};

void read_profile(Section& section, SarProfile& sar) {
    section.integer("dsi", sar.dsi);
    section.boolean("valid", sar.valid);
}

class SarService : public QmiService {
public:
    SarService(Core& core, const SarProfile& profile);

    QmiAnswer handle(const QmiRequest& request) override;

private:
    void show();

    Core& core_;
    SarProfile profile_;
};

SarService::SarService(Core& core, const SarProfile& profile)
    : QmiService(core, "sar"), core_(core), profile_(profile) {
    core.control().add_setting("sar", [this](Section& section) {
        SarProfile changed = profile_;
        read_profile(section, changed);
        return [this, changed] {
            profile_ = changed;
            show();
        };
    });
    show();
}

void SarService::show() {
    core_.state().set("sar", "dsi", profile_.valid ? std::to_string(profile_.dsi) : "none");
}

QmiAnswer SarService::handle(const QmiRequest& request) {
    if (request.message != kGetDsi)
        return {refusal(kQmiErrorInvalidMessage)};
    wire::Writer body = qmi_result();
    if (profile_.valid)
        body.tlv(kTlvDsi, wire::Writer().u32(profile_.dsi).data());
    return {body.take()};
}

}  // namespace

LoneService sar_service() {
    return lone_service<SarService, SarProfile>("sar");
}

}  // namespace handset
