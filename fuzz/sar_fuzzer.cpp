// The one question to the SAR service: its input is the modem's records.
#include "groups.h"
#include "modem.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    char words[][4] = {"vxk", "5", "5"};
    char* argv[] = {words[0], words[1], words[2], nullptr};
    Input input(data, size);
    run_tool(input, [&] { kelvra_test_cmn_do(3, argv); });
    return 0;
}
