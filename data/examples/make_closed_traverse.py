#!/usr/bin/env python3
"""Writes closed-traverse.rw5: a six-station closed loop in US survey feet.

The observations are computed from the true coordinates below and then
disturbed by small, fixed errors (a few seconds of angle, hundredths of a
foot), as a real field crew's would be, so that reduction finds a small but
honest misclosure. Run it again to regenerate the file byte for byte.
"""
import math
import random

TRUE = {  # point: (northing, easting, elevation), US survey feet
    "1": (5000.000, 5000.000, 100.000),
    "2": (5412.337, 5188.914, 104.260),
    "3": (5655.120, 5652.480, 109.815),
    "4": (5360.745, 6041.322, 106.110),
    "5": (4921.583, 5903.460, 101.472),
    "6": (4768.902, 5432.775, 98.935),
    "100": (5354.210, 4703.385, 102.118),  # azimuth mark, brass disk
}
SIDESHOTS = {  # occupied: [(point, northing, easting, elevation, description)]
    "1": [("101", 5050.220, 4930.415, 99.610, "REBAR AND CAP")],
    "2": [("102", 5470.118, 5150.730, 104.880, "FIRE HYDRANT"), ("103", 5391.402, 5260.011, 103.975, "EDGE OF PAVEMENT")],
    "3": [("104", 5701.640, 5610.022, 110.402, "OAK 24IN")],
    "4": [("105", 5402.913, 6101.877, 106.533, "POWER POLE")],
    "5": [("106", 4880.260, 5955.118, 101.005, "MANHOLE SAN")],
    "6": [("107", 4731.077, 5380.654, 98.420, "EDGE OF PAVEMENT")],
}
HI = {"1": 5.120, "2": 5.315, "3": 5.240, "4": 5.060, "5": 5.185, "6": 5.275}
HR = 5.500


def azimuth(a, b):
    dn, de = TRUE[b][0] - TRUE[a][0], TRUE[b][1] - TRUE[a][1]
    return math.degrees(math.atan2(de, dn)) % 360.0


def dms(deg):
    deg %= 360.0
    total = round(deg * 3600.0)
    d, rest = divmod(total, 3600)
    m, s = divmod(rest, 60)
    return "%d.%02d%02d" % (d % 360, m, s)


def shot(rng, kind, occ, fs, bs_az, hi, hr, desc):
    n0, e0, z0 = TRUE[occ]
    n1, e1, z1 = TRUE[fs]
    hd = math.hypot(n1 - n0, e1 - e0)
    dz = (z1 + hr) - (z0 + hi)
    sd = math.hypot(hd, dz) + rng.choice((-0.01, 0.0, 0.01))
    zen = 90.0 - math.degrees(math.atan2(dz, hd)) + rng.uniform(-4, 4) / 3600.0
    ar = (azimuth(occ, fs) - bs_az) % 360.0 + rng.uniform(-3, 3) / 3600.0
    return "%s,OP%s,FP%s,AR%s,ZE%s,SD%.3f,--%s\n" % (kind, occ, fs, dms(ar), dms(zen), sd, desc)


def main():
    rng = random.Random(20261118)
    out = []
    out.append("JB,NMCLOSED-TRAVERSE,DT11-18-2026,TM08:15:00\n")
    out.append("MO,AD0,UN2,SF1.00000000,EC0,EO0,AU0\n")
    out.append("--Closed loop traverse around Halvren Park, control by GPS on 1\n")
    out.append("--Crew: J. Marsh, R. Okafor\n")
    out.append("SP,PN1,N 5000.0000,E 5000.0000,EL100.0000,--IRON ROD FOUND\n")
    out.append("SP,PN100,N %.4f,E %.4f,EL%.4f,--AZIMUTH MARK\n" % TRUE["100"])
    loop = ["1", "2", "3", "4", "5", "6"]
    for i, occ in enumerate(loop):
        back = loop[i - 1]
        ahead = loop[(i + 1) % len(loop)]
        bs_az = azimuth(occ, back)
        if occ == "1":
            # The start is oriented on the azimuth mark, its azimuth noted too.
            bs_az = azimuth("1", "100")
            out.append("OC,OP1,N 5000.0000,E 5000.0000,EL100.0000,--IRON ROD FOUND\n")
            out.append("BK,OP1,BP100,BS%s,BC0.0000\n" % dms(bs_az))
        else:
            out.append("OC,OP%s,N ,E ,EL,--\n" % occ)
            out.append("BK,OP%s,BP%s,BS,BC0.0000\n" % (occ, back))
        out.append("LS,HI%.3f,HR%.3f\n" % (HI[occ], HR))
        TRUE_SIDES = SIDESHOTS[occ]
        for (p, n, e, z, d) in TRUE_SIDES:
            TRUE[p] = (n, e, z)
            out.append(shot(rng, "SS", occ, p, bs_az, HI[occ], HR, d))
        out.append(shot(rng, "TR", occ, ahead, bs_az, HI[occ], HR, "TRAVERSE PT"))
        if occ == "3":
            out.append("--Checked the plumb on 3 before moving to 4\n")
    # Back on the start: the closing angle from 6 to the azimuth mark.
    out.append("OC,OP1,N 5000.0000,E 5000.0000,EL100.0000,--IRON ROD FOUND\n")
    out.append("BK,OP1,BP6,BS,BC0.0000\n")
    out.append("LS,HI%.3f,HR%.3f\n" % (HI["1"], HR))
    out.append(shot(rng, "AB", "1", "100", azimuth("1", "6"), HI["1"], HR, "CLOSING ANGLE"))
    with open("closed-traverse.rw5", "w", newline="\n") as f:
        f.writelines(out)


if __name__ == "__main__":
    main()
