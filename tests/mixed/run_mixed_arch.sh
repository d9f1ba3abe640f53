#!/bin/sh
# Shares one data region between two builds of tarv-mixed-arch, each way
# round: A writes and B reads, then B writes and A reads. The reading side
# first writes a region of its own, which must equal the other's byte for
# byte. A and B are commands, e.g. a native build and an ARM build under
# qemu-user, which shares /dev/shm with the host:
#   tests/mixed/run_mixed_arch.sh build/default/tests/mixed/tarv-mixed-arch \
#     "qemu-arm -L /usr/arm-linux-gnueabihf -E LD_LIBRARY_PATH=/usr/arm-linux-gnueabihf/lib build/armhf/tests/mixed/tarv-mixed-arch"
# The regions get private prefixes and are removed afterwards.
set -u
if [ $# -ne 2 ]; then
    echo "usage: run_mixed_arch.sh COMMAND_A COMMAND_B" >&2
    exit 2
fi
a=$1 b=$2
status=0
run() { # side command mode prefix
    # shellcheck disable=SC2086  # a command is words, an emulator and its options first
    if ! timeout 120 $2 "$3" "$4"; then
        echo "FAILED: $1 $3" >&2
        status=1
    fi
}
for round in "A B" "B A"; do
    set -- $round
    writer=$a reader=$b
    [ "$1" = B ] && writer=$b reader=$a
    echo "$1 writes, $2 reads"
    run "$1" "$writer" remove "mx$$-"
    run "$2" "$reader" remove "my$$-"
    run "$1" "$writer" write "mx$$-"
    run "$2" "$reader" write "my$$-"
    if ! cmp "/dev/shm/mx$$-kelm-data" "/dev/shm/my$$-kelm-data"; then
        echo "FAILED: $1 and $2 wrote different regions" >&2
        status=1
    fi
    run "$2" "$reader" read "mx$$-"
    run "$1" "$writer" remove "mx$$-"
    run "$2" "$reader" remove "my$$-"
done
exit $status
