/// The programs that stand beside `tessel` and run some of its commands.
#pragma once

#include <string_view>

namespace tessel::cli {

struct Context;

/// Puts another program in this process's place: same number, same files, same arguments.
/// @param program  its file's name, in the folder for the program's parts
/// @param part     what it is to a person: "the part of tessel that handles movies"
/// @param remedy   what a person may do where it is not installed; empty: nothing is known
/// @throws importhost::HostError  where it cannot be started
[[noreturn]] void RunElsewhere(const Context& context, std::string_view program, std::string_view part,
                               std::string_view remedy = {});

} // namespace tessel::cli
