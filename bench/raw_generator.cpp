#include "raw_generator.h"

#include "base/format.h"

namespace tramline::bench {

std::string generateRawJob(size_t records) {
    std::string out = "JB,NMBENCH,DT11-18-2026,TM08:15:00\nMO,AD0,UN2,SF1.00000000,EC0,EO0,AU0\n";
    out.reserve(records * 48);
    size_t n = 2;
    unsigned point = 1000;
    while (n < records) {
        const unsigned occ = point;
        switch (n % 20) {
        case 0:
            appendFormat(out, "OC,OP%u,N ,E ,EL,--\n", occ);
            break;
        case 1:
            appendFormat(out, "BK,OP%u,BP%u,BS,BC0.0000\n", occ, occ - 1);
            break;
        case 2:
            appendFormat(out, "LS,HI5.%03u,HR6.000\n", static_cast<unsigned>(n % 1000));
            break;
        case 3:
            appendFormat(out, "--Note on set-up %u, with a comma\n", occ);
            break;
        case 4:
            appendFormat(out, "SP,PN%u,N %.4f,E %.4f,EL%.4f,--CONTROL\n", ++point, 5000.0 + n % 977,
                         4000.0 + n % 631, 100.0);
            break;
        case 5:
            appendFormat(out, "GPS,PN%u,LA44.%09u,LN-93.%09u,EL250.1234,--GPS\n", ++point,
                         static_cast<unsigned>(n), static_cast<unsigned>(n));
            break;
        case 6:
            appendFormat(out, "TR,OP%u,FP%u,BRN45.%02u%02uE,VA2.3000,HD%.3f,--TRAVERSE\n", occ,
                         ++point, static_cast<unsigned>(n % 60), static_cast<unsigned>(n % 59),
                         300.0 + n % 97);
            break;
        case 7:
            appendFormat(out, "SS,OP%u,FP%u,AR%u.%02u%02u,CE1.250,SD%.3f,--EP\n", occ, ++point,
                         static_cast<unsigned>(n % 360), static_cast<unsigned>(n % 60),
                         static_cast<unsigned>(n % 59), 50.0 + n % 89);
            break;
        default:
            appendFormat(out, "SS,OP%u,FP%u,AR%u.%02u%02u,ZE%u.%02u%02u,SD%.3f,--TOPO SHOT\n", occ,
                         ++point, static_cast<unsigned>(n % 360), static_cast<unsigned>(n % 60),
                         static_cast<unsigned>(n % 59), 85 + static_cast<unsigned>(n % 10),
                         static_cast<unsigned>(n % 60), static_cast<unsigned>(n % 57),
                         10.0 + n % 211);
        }
        ++n;
    }
    return out;
}

} // namespace tramline::bench
