// The nearest sub-command to a mistyped one ("raw chek": "check"), so that
// a typing slip gets an answer rather than the usage text alone.
#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace tramline::cli {

/// Letters to change, add or remove to turn `a` into `b`.
std::size_t editDistance(std::string_view a, std::string_view b);

/// Walks `args` (in order, without the program name) down the sub-commands
/// of `app`; at the first word that names none where one was expected, the
/// line "Did you mean "WORD"?" for the nearest name (at most a third of its
/// letters away), else empty.
std::string suggestSubcommand(CLI::App &app, const std::vector<std::string> &args);

} // namespace tramline::cli
