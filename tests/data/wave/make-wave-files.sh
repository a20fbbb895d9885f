#!/usr/bin/env bash
# Makes the WAVE files that the reader tests open, with sox, from raw samples
# of a known pattern (the tests compute the same pattern):
#   16-bit signed: frame i, channel c (both from 0) = (i*37 + c*1000) % 2000 - 1000
#   8-bit unsigned: frame i, channel c = (i*7 + c*50) % 256
# Run from anywhere; writes next to this script. Needs sox and python3.
set -euo pipefail
cd "$(dirname "$0")"
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT

raw16() {  # frames channels file
  python3 -c "
import struct, sys
n, ch = int(sys.argv[1]), int(sys.argv[2])
sys.stdout.buffer.write(b''.join(struct.pack('<h', (i*37 + c*1000) % 2000 - 1000)
                                 for i in range(n) for c in range(ch)))" "$1" "$2" > "$3"
}
raw8() {
  python3 -c "
import sys
n, ch = int(sys.argv[1]), int(sys.argv[2])
sys.stdout.buffer.write(bytes((i*7 + c*50) % 256 for i in range(n) for c in range(ch)))" "$1" "$2" > "$3"
}

raw16 300 1 "$tmp/m16.raw"
raw16 300 3 "$tmp/c3.raw"
raw8 300 2 "$tmp/s8.raw"
raw8 200 5 "$tmp/c5.raw"

# Plain 44-byte header.
sox -t raw -r 8000 -e signed -b 16 -c 1 "$tmp/m16.raw" sox-mono16-8000.wav
sox -t raw -r 11025 -e unsigned -b 8 -c 2 "$tmp/s8.raw" sox-stereo8-11025.wav
# More than two channels: sox writes an extensible format block and a "fact"
# chunk in front of the samples.
sox -t raw -r 44100 -e signed -b 16 -c 3 "$tmp/c3.raw" sox-3ch16-44100.wav
sox -t raw -r 22050 -e unsigned -b 8 -c 5 "$tmp/c5.raw" sox-5ch8-22050.wav
# Formats the program refuses.
sox -t raw -r 8000 -e signed -b 16 -c 1 "$tmp/m16.raw" -b 24 sox-mono24-8000.wav
sox -t raw -r 8000 -e signed -b 16 -c 1 "$tmp/m16.raw" -e floating-point -b 32 sox-float32-8000.wav
