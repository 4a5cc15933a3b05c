#!/usr/bin/env bash
# The free-space fill against dd filling the same loop volume (about 1 GiB free),
# alternating, in one run; prints each round and the median ratios:
#
#   bench/fill/run.sh [FOLDER] [ROUNDS] [FILESYSTEM]
#
# FOLDER holds the image and must lie on the disk to be measured (not tmpfs);
# default /var/tmp. ROUNDS defaults to 5, FILESYSTEM to ext4 (or vfat).
# The image is a 1,152 MiB file, so no fill touches more of the real disk than
# that. Every side starts on a freshly made file system after a full sync and a
# pause (SETTLE_SECONDS, default 5).
# Both sides write until the volume is full; the goal is on throughput
# (dd MB/s / fill MB/s <= 1.1).
# Needs root; fill_bench is $FILL_BENCH, else build-volumes/bin/fill_bench.
set -euo pipefail

folder=${1:-/var/tmp}
rounds=${2:-5}
filesystem=${3:-ext4}
top=$(cd "$(dirname "$0")/../.." && pwd)
bench=${FILL_BENCH:-$top/build-volumes/bin/fill_bench}
work=$(mktemp -d "$folder/velmora-fill-bench.XXXXXX")
image="$work/volume.img"
mount_point="$work/FILLBENCH"
device=""

[ "$(id -u)" -eq 0 ] || { echo "needs root for the loop device" >&2; exit 1; }
[ -x "$bench" ] || { echo "no fill_bench at $bench (set FILL_BENCH=...)" >&2; exit 1; }

cleanup() {
    mountpoint -q "$mount_point" && umount "$mount_point"
    [ -n "$device" ] && losetup --detach "$device"
    rm -rf "$work"
}
trap cleanup EXIT

# Allocated in full once, so no side pays for growing a sparse image.
dd if=/dev/zero of="$image" bs=4M count=288 conv=fsync status=none
# By default the loop device writes to the image with direct I/O, so a flush of
# the volume waits for the real disk, not for the host's page cache
# (LOOP_DIRECT_IO=off for a buffered loop device).
device=$(losetup --find --show --direct-io="${LOOP_DIRECT_IO:-on}" "$image")
mkdir -p "$mount_point"

fresh_volume() {
    mountpoint -q "$mount_point" && umount "$mount_point"
    if [ "$filesystem" = ext4 ]; then
        mkfs.ext4 -q -F -m 0 -E nodiscard,lazy_itable_init=0,lazy_journal_init=0 -L FILLBENCH "$device"
        mount "$device" "$mount_point"
    else
        mkfs.vfat -F 32 -n FILLBENCH "$device" >/dev/null
        mount -t vfat "$device" "$mount_point" 2>/dev/null ||
            fusefat -o rw+,blkdev,fsname="$device" "$device" "$mount_point" >/dev/null
    fi
    # The virtual disk keeps writing back what the last side wrote for a while.
    sync
    sleep "${SETTLE_SECONDS:-5}"
}

side() {
    fresh_volume
    VELMORA_BIN_DIR=$(dirname "$bench") "$bench" "$mount_point" "$1"
}

fresh_volume
echo "volume: $device ($filesystem, loop direct I/O ${LOOP_DIRECT_IO:-on}), $(df -B1 --output=avail "$mount_point" | tail -1) bytes free"
printf '%-5s %7s %11s %5s | %7s %11s %5s | %9s\n' round "fill s" "fill bytes" MB/s "dd s" "dd bytes" MB/s "dd/fill"
for round in $(seq "$rounds"); do
    # The side that runs first alternates from round to round.
    for turn in 0 1; do
        case $(((round + turn) % 2)) in
        0) read -r fill_s fill_bytes < <(side fill) ;;
        1) read -r dd_s dd_bytes < <(side dd) ;;
        esac
    done
    awk -v r="$round" -v fs="$fill_s" -v fb="$fill_bytes" -v ds="$dd_s" -v db="$dd_bytes" 'BEGIN {
        fr = fb / fs / 1e6; dr = db / ds / 1e6
        printf "%-5d %7.2f %11d %5.0f | %7.2f %11d %5.0f | %9.3f\n", r, fs, fb, fr, ds, db, dr, dr / fr }'
done | tee "$work/rounds"
median() { sort -g | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }
echo "median MB/s ratio, dd until full / fill: $(awk '{ print $NF }' "$work/rounds" | median)   (goal <= 1.1)"
