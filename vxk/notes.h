// The "note:" lines with which a group says what was wrong with its command line, and the results they go
// with. None of them looks at quiet mode: a group that is silent in quiet mode does not call them then.
#pragma once

/// The result of a handler whose command line was wrong.
constexpr int kBadCommandLine = 0x0FFFF00A;

/// A command line that a group refuses: prints the note, then the group's help. Returns 0.
int refuse_too_few_parameters(int group);
int refuse_first_parameter(int group);
int refuse_second_parameter(int group);

/// The note alone, for a command whose group shows the help. Returns 0.
int note_too_few_parameters();

/// A handler's non-zero result: prints the note with the code, then the group's help. Returns the code.
int report_error(int group, int code);

/// A handler's wrong number of inputs: prints the note and returns kBadCommandLine. The caller shows the
/// help.
int note_need_inputs(int count);
int note_too_few_inputs();
