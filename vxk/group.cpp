#include "group.h"

#include <cstdio>

const Command* find_command(const Group& group, int sub_option) {
    for (size_t i = 0; i < group.count; ++i)
        if (group.commands[i].sub_option == sub_option)
            return &group.commands[i];
    return nullptr;
}

void print_section(const Group& group) {
    printf("%d: %s\n", group.number, group.title);
    for (size_t i = 0; i < group.count; ++i) {
        const Command& command = group.commands[i];
        if (command.sub_option == kNoSubOption)
            printf("   vxk %d%s\n", group.number, command.help);
        else
            printf("   vxk %d %d%s\n", group.number, command.sub_option, command.help);
    }
}

void print_help_head() {
    puts("\n=========== blew: vexkit(vxk) cmd help =======================================================");
}

void print_help_foot() {
    puts("=========== above: vexkit(vxk) cmd help =======================================================\n");
}

int show_help(const Group& group) {
    print_help_head();
    print_section(group);
    print_help_foot();
    return 0;
}

int note_too_few_parameters() {
    puts("\nnote: Too few parameters, Pls refer to the following cmd:");
    return 0;
}

int refuse_too_few_parameters(const Group& group) {
    note_too_few_parameters();
    return show_help(group);
}

int refuse_first_parameter(const Group& group) {
    printf("\nnote: the first parameters should be %d, Pls refer to the following cmd:\n", group.number);
    return show_help(group);
}

int refuse_second_parameter(const Group& group) {
    puts("\nnote: the second parameters is invalid, Pls refer to the following cmd:");
    return show_help(group);
}

int report_result(const Group& group, int result) {
    if (result == 0)
        return 0;
    printf("\nnote: Error happen! error_code(%d)\n", result);
    show_help(group);
    return result;
}

int note_need_inputs(int count) {
    printf("\nnote: need %d inputs, Pls refer to the following cmd:\n", count);
    return kBadCommandLine;
}

int note_too_few_inputs() {
    puts("\nnote: Too few inputs, Pls refer to the following cmd:");
    return kBadCommandLine;
}
