#include "app/port_dialog.h"

#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"

#include <algorithm>

namespace tramline::app {

namespace {

enum Field { PortField, DeviceField, BaudField, ParityField };

const char *const kParityNames[] = {trNoop("None"), trNoop("Odd"), trNoop("Even")};

std::string comName(int choice) {
    return format("COM%d", choice);
}

} // namespace

std::vector<FormField> portDialogFields(const transfer::PortSettings &settings,
                                        const std::vector<transfer::PortInfo> &ports) {
    FormField port{tr("Port"), comName(settings.port), {}};
    for (int choice = 1; choice <= 4; ++choice)
        port.choices.push_back(comName(choice));
    for (const auto &listed : ports)
        port.choices.push_back(listed.device);
    if (!settings.device.empty()) {
        if (std::find(port.choices.begin(), port.choices.end(), settings.device) ==
            port.choices.end())
            port.choices.push_back(settings.device);
        port.value = settings.device;
    }
    FormField baud{tr("Baud"), std::to_string(transfer::baudOfChoice(settings.baud)), {}};
    for (int choice = 1; choice <= 6; ++choice)
        baud.choices.push_back(std::to_string(transfer::baudOfChoice(choice)));
    FormField parity{tr("Parity"), {}, {}};
    for (const char *name : kParityNames)
        parity.choices.emplace_back(tr(name));
    parity.value = parity.choices[std::size_t(std::clamp(settings.parity, 1, 3) - 1)];
    return {port, {tr("Device Path:"), "", {}}, baud, parity};
}

transfer::PortSettings portSettingsFrom(const std::vector<FormField> &fields,
                                        transfer::PortSettings settings) {
    if (fields.size() <= ParityField)
        return settings;
    const std::string typed(trim(fields[DeviceField].value));
    const std::string chosen(trim(fields[PortField].value));
    if (!typed.empty()) {
        settings.device = typed;
    } else if (chosen.size() == 4 && startsWithIgnoreCase(chosen, "COM") && chosen[3] >= '1' &&
               chosen[3] <= '4') {
        settings.port = chosen[3] - '0';
        settings.device.clear();
    } else if (!chosen.empty()) {
        settings.device = chosen;
    }
    double baud = 0;
    if (parseNumber(fields[BaudField].value, baud))
        if (const int choice = transfer::choiceOfBaud(int(baud)); choice > 0)
            settings.baud = choice;
    for (int i = 0; i < 3; ++i)
        if (fields[ParityField].value == tr(kParityNames[i]))
            settings.parity = i + 1;
    return settings;
}

} // namespace tramline::app
