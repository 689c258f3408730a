#include "notes.h"

#include <cstdio>

#include "show_help.h"

int note_too_few_parameters() {
    puts("\nnote: Too few parameters, Pls refer to the following cmd:");
    return 0;
}

int refuse_too_few_parameters(int group) {
    note_too_few_parameters();
    return show_help(group);
}

int refuse_first_parameter(int group) {
    printf("\nnote: the first parameters should be %d, Pls refer to the following cmd:\n", group);
    return show_help(group);
}

int refuse_second_parameter(int group) {
    puts("\nnote: the second parameters is invalid, Pls refer to the following cmd:");
    return show_help(group);
}

int report_error(int group, int code) {
    printf("\nnote: Error happen! error_code(%d)\n", code);
    show_help(group);
    return code;
}

int note_need_inputs(int count) {
    printf("\nnote: need %d inputs, Pls refer to the following cmd:\n", count);
    return kBadCommandLine;
}

int note_too_few_inputs() {
    puts("\nnote: Too few inputs, Pls refer to the following cmd:");
    return kBadCommandLine;
}
