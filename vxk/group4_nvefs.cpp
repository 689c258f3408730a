// Group 4: NV items and EFS files of the modem.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "groups.h"
#include "hex_dump.h"
#include "kelvra_extend_nvefs.h"

namespace {

// The longest item or file that a command shows or writes.
constexpr int kDataMax = 365;
static_assert(kDataMax <= static_cast<int>(kNvItemMax), "an item that is typed can be written");

// A command line is: vxk 4 <command> <sub> <item or path> [<byte>...]
constexpr int kInputs = 5;

struct Data {
    uint8_t bytes[kDataMax];
    uint32_t len;
};

int fail(int result) {
    puts("kelvra_extend_qmi_send_sync fail, REQUEST_ID_EFS");
    return result;
}

int outcome(int result) {
    return result == 0 ? 0 : fail(result);
}

int show(int result, const Data& data) {
    if (result != 0)
        return fail(result);
    print_data("data: ", data.bytes, static_cast<int>(data.len));
    return 0;
}

// The decimal bytes at the end of the command line, as many as fit.
Data typed_data(int argc, char** argv) {
    Data data;
    data.len = static_cast<uint32_t>(std::min(argc - kInputs, kDataMax));
    for (uint32_t i = 0; i < data.len; ++i)
        data.bytes[i] = static_cast<uint8_t>(atoi(argv[kInputs + static_cast<int>(i)]));
    return data;
}

int sub_id_of(char** argv) {
    return atoi(argv[3]) != 0 ? 1 : 0;
}
int path_len_of(char** argv) {
    return static_cast<int>(strlen(argv[4]));
}

int kelvra_nvefs_test_nv_read(int argc, char** argv) {
    if (argc != kInputs)
        return note_need_inputs(kInputs);
    Data data;
    data.len = kDataMax;
    const int result = kelvra_nv_read(atoi(argv[3]), atoi(argv[4]), data.bytes, &data.len);
    return show(result, data);
}

int kelvra_nvefs_test_nv_write(int argc, char** argv) {
    if (argc <= kInputs)
        return note_too_few_inputs();
    const Data data = typed_data(argc, argv);
    return outcome(kelvra_nv_write_ex(atoi(argv[3]), atoi(argv[4]), data.bytes, data.len));
}

int kelvra_nvefs_test_nv_delete(int argc, char** argv) {
    if (argc != kInputs)
        return note_need_inputs(kInputs);
    return outcome(kelvra_nv_delete(atoi(argv[3]), atoi(argv[4])));
}

int kelvra_nvefs_test_efs_read(int argc, char** argv) {
    if (argc != kInputs)
        return note_need_inputs(kInputs);
    Data data;
    data.len = kDataMax;
    const int result = kelvra_efs_read(sub_id_of(argv), argv[4], path_len_of(argv), data.bytes, &data.len);
    return show(result, data);
}

int kelvra_nvefs_test_efs_write(int argc, char** argv) {
    if (argc <= kInputs)
        return note_too_few_inputs();
    const Data data = typed_data(argc, argv);
    return outcome(kelvra_efs_write(sub_id_of(argv), argv[4], path_len_of(argv), data.bytes, data.len));
}

int kelvra_nvefs_test_efs_delete(int argc, char** argv) {
    if (argc != kInputs)
        return note_need_inputs(kInputs);
    return outcome(kelvra_efs_delete(sub_id_of(argv), argv[4], path_len_of(argv)));
}

constexpr Command kCommands[] = {
    {1, " sub nv_id             /* nv read */", kelvra_nvefs_test_nv_read},
    {2, " sub nv_id nv_data     /* nv write */", kelvra_nvefs_test_nv_write},
    {3, " sub nv_id             /* nv delete */", kelvra_nvefs_test_nv_delete},
    {4, " sub efs_path          /* efs read */", kelvra_nvefs_test_efs_read},
    {5, " sub efs_path efs_data /* efs write */", kelvra_nvefs_test_efs_write},
    {6, " sub efs_path          /* efs delete */", kelvra_nvefs_test_efs_delete},
};

}  // namespace

const Group kNvefsGroup = make_group(4, "nvefs option cmd: ", kelvra_test_nvefs_do, kCommands);

int kelvra_test_nvefs_do(int argc, char** argv) {
    if (atoi(argv[1]) != kNvefsGroup.number)
        return refuse_first_parameter(kNvefsGroup);
    if (argc <= 2)
        return refuse_too_few_parameters(kNvefsGroup);
    const Command* const command = find_command(kNvefsGroup, atoi(argv[2]));
    if (command == nullptr)
        return refuse_second_parameter(kNvefsGroup);
    return report_result(kNvefsGroup, command->run(argc, argv));
}
