#include "transfer/port_list.h"

#include "base/text.h"

#include <libserialport.h>

#include <algorithm>

namespace tramline::transfer {

std::vector<PortInfo> listPorts() {
    std::vector<PortInfo> ports;
    std::vector<bool> usb;
    sp_port **list = nullptr;
    if (sp_list_ports(&list) == SP_OK) {
        for (int i = 0; list[i]; ++i) {
            const char *description = sp_get_port_description(list[i]);
            ports.push_back({sp_get_port_name(list[i]), description ? description : ""});
        }
        for (int i = 0; list[i]; ++i)
            usb.push_back(sp_get_port_transport(list[i]) == SP_TRANSPORT_USB);
        sp_free_port_list(list);
    }
    std::vector<std::size_t> order(ports.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        if (usb[a] != usb[b])
            return bool(usb[a]);
        return ports[a].device < ports[b].device;
    });
    std::vector<PortInfo> sorted;
    for (std::size_t i : order)
        sorted.push_back(ports[i]);
    return sorted;
}

std::string comPortDevice(int choice) {
#ifdef _WIN32
    return "COM" + std::to_string(choice);
#else
    const auto ports = listPorts();
    if (choice >= 1 && std::size_t(choice) <= ports.size())
        return ports[std::size_t(choice - 1)].device;
    return "/dev/ttyS" + std::to_string(std::max(choice, 1) - 1);
#endif
}

std::string resolvePortName(const std::string &name) {
    if (name.size() == 4 && startsWithIgnoreCase(name, "COM") && name[3] >= '1' && name[3] <= '4')
        return comPortDevice(name[3] - '0');
    return name;
}

} // namespace tramline::transfer
