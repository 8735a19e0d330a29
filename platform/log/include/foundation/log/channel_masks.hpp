// Severity masks per channel, and how a user turns them on without a rebuild.
//
// Every logger of one channel shares the channel's mask: changing it reaches the loggers that
// exist already (function-local statics of the library) and those made later (loggers local to
// a call). A severity is one bit; a record of severity `s` passes when the mask has that bit.
//
// The environment variable KELDOR_LOG sets the starting masks. It is read when the first logger
// of a channel is made, so a channel seen for the first time after the variable changed takes
// the new value. Syntax: entries separated by ',' or ';', each `pattern=mask`:
//
//   KELDOR_LOG="builtin2::BuiltinFcn=0x3,builtinservice::registerpkgfcn=256"
//   KELDOR_LOG="*=0xffffffff"                       every channel, every severity
//   KELDOR_LOG="builtin2::*=4,builtin2::invoke=1"   a prefix, with one channel set apart
//
// - pattern: a channel name (exact, case-sensitive), a prefix ending in '*', or '*' alone for
//   every channel. An exact name wins over any prefix, a longer prefix over a shorter one, and
//   among equal patterns the last entry wins.
// - mask: decimal or hexadecimal with 0x, at most 32 bits.
// - Blanks around patterns and masks are ignored; malformed entries are ignored, and reported
//   once on stderr.
// - A channel that no entry matches has mask 0: silent.
//
// Once any channel's mask is nonzero (from the variable or from setChannelMask), records go to
// stderr, one line each: "<channel> [<severity>] <indented text>", unless a test has attached a
// memory_sink (see test/memory_sink.hpp).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace foundation::log {

// The name of the environment variable that holds the starting masks.
inline constexpr const char* mask_variable = "KELDOR_LOG";

// Sets the mask of `channel` for all of its loggers, present and future. A channel set here
// no longer takes its mask from the environment.
void setChannelMask(std::string_view channel, std::uint32_t mask);

// The current mask of `channel`; a channel never seen gets its mask from the environment.
std::uint32_t channelMask(std::string_view channel);

// The mask that `setting` (the text of KELDOR_LOG) gives `channel`, by the rules above. Each
// malformed entry is described in `problems` when it is given.
std::uint32_t maskFromSetting(std::string_view setting, std::string_view channel,
                              std::vector<std::string>* problems = nullptr);

}  // namespace foundation::log
