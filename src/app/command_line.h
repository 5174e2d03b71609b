// The command line of the desktop program: one text naming a raw file
// and/or a coordinate file, perhaps in double quotes ("job.rw5",
// "job.rw5 job.crd", "\"C:\\Jobs\\job one.rw5\"").
#pragma once

#include <string>
#include <vector>

namespace tramline::app {

struct CommandLineFiles {
    std::string rawFile;        ///< empty when none is named
    std::string coordinateFile; ///< empty when none is named
};

/// The file names in a command line. One pair of surrounding double quotes
/// is stripped. A raw file is named by ".rw5" (or ".RW5"), a coordinate
/// file by ".crd", ".crdb", ".cgc", ".mdb" or ".zak", looked for in that
/// order; the name runs from the start of the text to the end of its
/// extension, and what follows the extension and one separator is taken
/// as a further file name. An extension counts only where the name ends
/// (at the end of the text, a blank or a quote), so "a.crdb" is not taken
/// for "a.crd".
CommandLineFiles parseCommandLine(const std::string &commandLine);

/// The command line as one text, from the arguments after the program's
/// name, the way a command line reaches a program on Windows.
std::string joinArguments(const std::vector<std::string> &arguments);

} // namespace tramline::app
