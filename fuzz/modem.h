// The tool against a modem that the fuzzer's input plays, through the double of the seam. An input is a
// sequence of records, `u8 kind, u16 number, u16 length` and that many bytes:
//
//   kind               number        bytes
//   0 structure        -             the C structure of a response
//   1 TLVs             -             a response on the wire, decoded by the Linux library's tables
//   2 error            1 + code % 5  -: the QMI library's error, negated
//   3 indication       message       its TLVs; the next record goes on
//   4 loss             -             -: the service is gone
//   5 callback         processor     a diag response on the callback road
//   6 piece            -             a diag response on the DCI road, or a piece of one
//   7 full pieces      1 + n % 4     what they are filled with
//   8 stream           0 log, else event; its bytes
//   9 pause            -             -: no more diag events until the tool looks again
//  10 property         which one     its value
//  11 no memory        n             -: the n-th allocation from here fails
//  12 no thread        -             -: no thread can be created any more
//  13 remote mask      mask          -
//
// From 10 on a record sets the scene, as soon as it is come by; those at the start do so before the tool
// runs. A QMI request takes the next of 0 to 4, a look for diag events takes 5 to 9 up to a pause, and both
// pass over what is not theirs. When the input is at its end, requests time out and diag commands are
// answered late.
#pragma once

#include <functional>

#include "input.h"
#include "qmi_idl_lib.h"

/// Runs a piece of the tool, in a process that looks as if it had just connected to the extension service. A
/// fatal condition ends the piece and is no finding, unless a lock is held. Then waits for the tool's threads
/// and checks that statistics blocks are freed.
void run_tool(Input& input, const std::function<void()>& piece);

/// Hands an indication of a service to the tool: `u16 message` and a block of TLVs.
void indicate(Input& input, qmi_idl_service_object_type service);

/// The extension service's description, which is the tool's own.
qmi_idl_service_object_type extension_service();
