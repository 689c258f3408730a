// The one question to the SAR service: its input is the modem's records.
#include "kelvra_qmi_test_cmn.h"
#include "modem.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    run_tool(input, kelvra_cmn_test_get_sar_dsi);
    return 0;
}
