// The shell's own questions that the core's Interaction does not ask: file
// names and forms with their own buttons. The desktop program answers with
// dialogs; tests answer from a script.
#pragma once

#include "base/interaction.h"

#include <string>
#include <vector>

namespace tramline::app {

class ShellPrompts {
public:
    virtual ~ShellPrompts() = default;

    /// Asks for a file to open (or, with `forSaving`, to save) under a
    /// dialog title, offering the file types listed as "rw5" or
    /// "crd;crdb;cgc". Empty when the user cancelled.
    virtual std::string askFileName(const std::string &title, const std::string &types,
                                    bool forSaving) = 0;

    /// Shows a form whose buttons are given; the fields are edited in
    /// place. Returns the index of the button pressed, -1 when the form was
    /// closed or escaped (the fields then keep what the user chose).
    virtual int askForm(const std::string &title, std::vector<FormField> &fields,
                        const std::vector<std::string> &buttons) = 0;
};

} // namespace tramline::app
