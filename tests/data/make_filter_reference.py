#!/usr/bin/python3
"""Writes the reference responses the engine's filter and window tests
compare against, from the published designs as scipy implements them.

Run once from the repository root (needs python3-scipy); the CSV files it
writes are committed, so the tests do not need scipy:

    /usr/bin/python3 tests/data/make_filter_reference.py

engine_filter_reference.csv: kind,sample_hz,edge_hz,probe_hz,gain
  gain is the magnitude of the whole zero-phase (forward and backward)
  response, i.e. |H(f)|^2 of one pass.
  - highpass/lowpass: Butterworth of order 4; its design edge is moved so
    that the forward-backward magnitude is 1/sqrt(2) at edge_hz:
    tan(pi*Wn/fs) = tan(pi*edge/fs) / r (low pass) or * r (high pass),
    r = (sqrt(2) - 1) ** (1/8).
  - notch: scipy.signal.iirnotch(edge, Q=30).
  - tunnel: scipy.signal.iirpeak(edge, Q=10).
engine_window_reference.csv: index,count,n,value
  the symmetric windows 1..8 of the spectrum analyser settings.
"""
import math
import os

import numpy as np
from scipy import signal

HERE = os.path.dirname(os.path.abspath(__file__))
R = (math.sqrt(2.0) - 1.0) ** (1.0 / 8.0)


def butter_edge(edge, fs, low):
    warped = math.tan(math.pi * edge / fs)
    warped = warped / R if low else warped * R
    return fs / math.pi * math.atan(warped)


def zero_phase_gain(kind, fs, edge, probes):
    if kind in ("lowpass", "highpass"):
        sos = signal.butter(4, butter_edge(edge, fs, kind == "lowpass"), kind, fs=fs, output="sos")
        _, h = signal.sosfreqz(sos, worN=probes, fs=fs)
    elif kind == "notch":
        b, a = signal.iirnotch(edge, 30.0, fs=fs)
        _, h = signal.freqz(b, a, worN=probes, fs=fs)
    else:
        b, a = signal.iirpeak(edge, 10.0, fs=fs)
        _, h = signal.freqz(b, a, worN=probes, fs=fs)
    return np.abs(h) ** 2


CASES = [
    ("highpass", 2048.0, 10.0, [1, 2.5, 5, 8, 10, 12.5, 20, 50, 200]),
    ("lowpass", 2048.0, 100.0, [10, 50, 80, 100, 125, 150, 200, 400]),
    ("notch", 2048.0, 50.0, [10, 45, 48, 49, 49.5, 50, 50.5, 51, 52, 55, 100]),
    ("tunnel", 2048.0, 25.0, [5, 15, 20, 23, 24, 25, 26, 27, 30, 50, 100]),
]

WINDOWS = {
    1: lambda n: signal.windows.hann(n, sym=True),
    2: lambda n: signal.windows.hamming(n, sym=True),
    3: lambda n: signal.windows.blackman(n, sym=True),
    4: lambda n: signal.windows.bartlett(n, sym=True),
    5: lambda n: signal.windows.blackmanharris(n, sym=True),
    6: lambda n: signal.windows.flattop(n, sym=True),
    7: lambda n: signal.windows.general_cosine(n, [0.355768, 0.487396, 0.144232, 0.012604], sym=True),
    8: lambda n: signal.windows.nuttall(n, sym=True),
}


def main():
    with open(os.path.join(HERE, "engine_filter_reference.csv"), "w") as out:
        out.write("# made by make_filter_reference.py with scipy %s\n" % __import__("scipy").__version__)
        out.write("kind,sample_hz,edge_hz,probe_hz,gain\n")
        for kind, fs, edge, probes in CASES:
            gains = zero_phase_gain(kind, fs, edge, np.array(probes, dtype=float))
            for f, g in zip(probes, gains):
                out.write("%s,%g,%g,%g,%.9f\n" % (kind, fs, edge, f, g))
    with open(os.path.join(HERE, "engine_window_reference.csv"), "w") as out:
        out.write("# made by make_filter_reference.py with scipy %s\n" % __import__("scipy").__version__)
        out.write("index,count,n,value\n")
        for index, make in WINDOWS.items():
            for count in (33, 64):
                for n, v in enumerate(make(count)):
                    out.write("%d,%d,%d,%.9f\n" % (index, count, n, v))


if __name__ == "__main__":
    main()
