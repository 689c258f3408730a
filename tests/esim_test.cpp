// The eSIM state command where no handset leads it: what it waits for, and what it does once a process.
#include "extend_double.h"
#include "group5_esim.h"
#include "kelvra_extend_uim.h"
#include "kelvra_log.h"
#include "platform_test.h"
#include "user_identity_module_v01.h"

namespace {

class Esim : public PlatformTest {
protected:
    Esim() { uim_qmi_client = nullptr; }
    ~Esim() override {
        uim_qmi_client = nullptr;
        IS_EID_SAVE = false;
        g_quiet_mode = false;
    }

    static int run(const char* action) {
        const char* argv[] = {"vxk", "5", "10", action, "1"};
        return kelvra_cmn_esim_test(5, const_cast<char**>(argv));
    }
};

TEST_F(Esim, EveryRoundWaitsForTheEid) {
    printed_by([] { run("1"); });
    EXPECT_EQ(platform().usleeps, std::vector<unsigned>(30, 100000));
    platform().usleeps.clear();
    printed_by([] { run("3"); });
    EXPECT_EQ(platform().usleeps, std::vector<unsigned>(2, 100000));
}

TEST_F(Esim, StoredEidIsLookedForOncePerRun) {
    const struct {
        int write_error;
        int result;
        size_t requests;
    } calls[] = {{-3, -103, 2}, {0, 0, 4}, {0, 0, 4}};
    const std::vector<uint8_t> eid(16, 0x89);
    for (const auto& c : calls) {
        platform().send = [&](const QmiRequest& request, void* response) {
            const bool reads = payload_of(request)[0] == 4;
            std::vector<uint8_t> answer(20);
            put_le(&answer[16], reads ? -2 : 0);
            answer_extend(response, answer);
            return reads ? 0 : c.write_error;
        };
        printed_by([&] { EXPECT_EQ(save_eid_to_efs(eid.data()), c.result); });
        EXPECT_EQ(platform().requests.size(), c.requests);
    }
}

}  // namespace
