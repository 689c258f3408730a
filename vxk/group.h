// A command group: the first number of the command line, and the table of what may stand behind it. A group's
// file is named after it and holds its table and its commands; one that outgrows it has further files of the
// same name.
#pragma once

#include <cstddef>
#include <iterator>

/// One command, as it is typed and as the help explains it.
struct Command {
    int sub_option;    // kNoSubOption: the group's only command, which has no number
    const char* help;  // what the help prints behind the numbers, to the end of the last line
    int (*run)(int argc, char** argv) = nullptr;
};
constexpr int kNoSubOption = -1;

struct Group {
    int number;
    const char* title;
    int (*run)(int argc, char** argv);  // checks the command line and runs one command
    const Command* commands;
    size_t count;
};

template <typename Commands>
constexpr Group make_group(int number, const char* title, int (*run)(int, char**), const Commands& commands) {
    return {number, title, run, std::data(commands), std::size(commands)};
}

/// The command of a sub-option; null for none.
const Command* find_command(const Group& group, int sub_option);

/// Prints the group's lines of the help, without the banners.
void print_section(const Group& group);

/// Prints the help of one group between the banners. Returns 0.
int show_help(const Group& group);
void print_help_head();
void print_help_foot();

// The "note:" lines with which a group says what was wrong with its command line, and the results they go
// with. None of them looks at quiet mode: a group that is silent in quiet mode does not call them then.

/// The result of a handler whose command line was wrong.
constexpr int kBadCommandLine = 0x0FFFF00A;

/// A command line that a group refuses: prints the note, then the group's help. Returns 0.
int refuse_too_few_parameters(const Group& group);
int refuse_first_parameter(const Group& group);
int refuse_second_parameter(const Group& group);

/// The note alone, for a command whose group shows the help. Returns 0.
int note_too_few_parameters();

/// Passes a handler's result on. One that is not 0 is printed first, with the group's help.
int report_result(const Group& group, int result);

/// A handler's wrong number of inputs: prints the note and returns kBadCommandLine. The caller
/// shows the help.
int note_need_inputs(int count);
int note_too_few_inputs();
