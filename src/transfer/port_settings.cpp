#include "transfer/port_settings.h"

#include "base/atomic_save.h"
#include "base/format.h"
#include "base/settings_file.h"
#include "base/text.h"
#include "transfer/port_list.h"

#include <charconv>

namespace tramline::transfer {

namespace {

constexpr int kBauds[] = {1200, 2400, 4800, 9600, 19200, 38400};
constexpr char kParities[] = {'N', 'O', 'E'};

bool parseChoice(std::string_view text, int low, int high, int &value) {
    text = trim(text);
    int parsed = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), parsed);
    if (ec != std::errc() || end == text.data() || parsed < low || parsed > high)
        return false;
    value = parsed;
    return true;
}

bool isPortKey(std::string_view key) {
    for (std::string_view port : {"com_port", "com_parity", "com_baud", "com_device"})
        if (key == port)
            return true;
    return false;
}

} // namespace

int baudOfChoice(int choice) {
    return choice >= 1 && choice <= 6 ? kBauds[choice - 1] : 9600;
}

char parityOfChoice(int choice) {
    return choice >= 1 && choice <= 3 ? kParities[choice - 1] : 'N';
}

int choiceOfBaud(int baud) {
    for (int i = 0; i < 6; ++i)
        if (kBauds[i] == baud)
            return i + 1;
    return 0;
}

int choiceOfParity(char letter) {
    for (int i = 0; i < 3; ++i)
        if (kParities[i] == toUpperAscii(letter))
            return i + 1;
    return 0;
}

std::string portDevice(const PortSettings &settings) {
    return settings.device.empty() ? comPortDevice(settings.port) : settings.device;
}

LineSettings lineSettings(const PortSettings &settings) {
    return {baudOfChoice(settings.baud), parityOfChoice(settings.parity), 8, 1};
}

void applyPortSettingsLine(std::string_view line, PortSettings &settings) {
    std::string_view key, value;
    if (!splitSettingsLine(line, key, value))
        return;
    // The port dialog has always tolerated blanks around its keys and values.
    key = trim(key);
    value = trim(value);
    if (value.empty())
        return;
    if (key == "com_port")
        parseChoice(value, 1, 4, settings.port);
    else if (key == "com_parity")
        parseChoice(value, 1, 3, settings.parity);
    else if (key == "com_baud")
        parseChoice(value, 1, 6, settings.baud);
    else if (key == "com_device")
        settings.device = std::string(value);
}

bool readPortSettings(const std::filesystem::path &path, PortSettings &settings) {
    return readSettingsLines(path,
                             [&](std::string_view line) { applyPortSettingsLine(line, settings); });
}

bool savePortSettings(const std::filesystem::path &path, const PortSettings &settings) {
    std::string text = otherSettingsLines(path, isPortKey);
    appendFormat(text, "com_port=%d\ncom_parity=%d\ncom_baud=%d\n", settings.port, settings.parity,
                 settings.baud);
    if (!settings.device.empty())
        appendFormat(text, "com_device=%s\n", settings.device.c_str());
    return saveTextAtomically(path, text);
}

} // namespace tramline::transfer
