#!/usr/bin/env bash
# Times srm against the device's raw write speed (dd with direct I/O) and GNU shred,
# all in one run on the same file system, and prints the ratios. Two dd references:
# zeros (the usual measure of raw speed) and random bytes copied from RAM, since some
# storage (virtual disks, compressing controllers) writes zeros faster than the
# incompressible data that srm writes.
#
#   bench/srm/run.sh [FOLDER] [SIZE_MIB] [ROUNDS]
#
# FOLDER must lie on the disk to be measured (not tmpfs); default /var/tmp.
# SIZE_MIB defaults to 1024 (a 1 GiB file), ROUNDS to 3 (the median is reported).
# The srm binary is $SRM, else build-srm/bin/srm of this checkout.
set -euo pipefail

folder=${1:-/var/tmp}
size_mib=${2:-1024}
rounds=${3:-3}
top=$(cd "$(dirname "$0")/../.." && pwd)
srm=${SRM:-$top/build-srm/bin/srm}
file="$folder/velmora-srm-bench.$$"
random_source=/dev/shm/velmora-srm-bench-random.$$
blocks=$((size_mib / 4))

[ -x "$srm" ] || { echo "no srm at $srm (set SRM=...)" >&2; exit 1; }
command -v shred >/dev/null || { echo "GNU shred is needed" >&2; exit 1; }
trap 'rm -f "$file" "$random_source"' EXIT
head -c "$((size_mib << 20))" /dev/urandom >"$random_source"

# A fully written file, nothing of it left in the page cache.
make_file() {
    dd if=/dev/zero of="$file" bs=4M count="$blocks" oflag=direct conv=fsync status=none
}

# Seconds that a command takes on a fresh file; the file is removed afterwards.
time_on_fresh_file() {
    make_file
    local start=$EPOCHREALTIME
    "$@" >/dev/null
    local end=$EPOCHREALTIME
    rm -f "$file"
    echo "$start $end" | awk '{ printf "%.3f", $2 - $1 }'
}

declare -A runs
labels=("dd zeros" "dd random" "srm -s" "shred -n1" "srm -sz" "shred -n1 -z")
for ((round = 1; round <= rounds; round++)); do
    # count= keeps dd to the file's own size: without it dd writes until the disk is full.
    runs["dd zeros"]+=" $(time_on_fresh_file dd if=/dev/zero of="$file" bs=4M count="$blocks" conv=notrunc,fdatasync oflag=direct status=none)"
    runs["dd random"]+=" $(time_on_fresh_file dd if="$random_source" of="$file" bs=4M count="$blocks" conv=notrunc,fdatasync oflag=direct status=none)"
    runs["srm -s"]+=" $(time_on_fresh_file "$srm" -s "$file")"
    runs["shred -n1"]+=" $(time_on_fresh_file shred -n1 "$file")"
    runs["srm -sz"]+=" $(time_on_fresh_file "$srm" -sz "$file")"
    runs["shred -n1 -z"]+=" $(time_on_fresh_file shred -n1 -z "$file")"
done

median() { tr ' ' '\n' | grep -v '^$' | sort -n | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }
declare -A best
echo "srm benchmark: ${size_mib} MiB file in $folder, median of $rounds rounds"
for label in "${labels[@]}"; do
    best[$label]=$(echo "${runs[$label]}" | median)
    printf '  %-13s %7.2f s  %7.1f MiB/s per pass   (runs:%s)\n' "$label" "${best[$label]}" \
        "$(awk -v s="$size_mib" -v t="${best[$label]}" -v p="$([[ $label == *z ]] && echo 2 || echo 1)" 'BEGIN { print s * p / t }')" \
        "${runs[$label]}"
done
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", a / b }'; }
sum() { awk -v a="$1" -v b="$2" 'BEGIN { print a + b }'; }
echo "ratios (goal: srm -s / dd <= 1.10, srm / shred < 1.00):"
echo "  srm -s  / dd zeros                    $(ratio "${best[srm -s]}" "${best[dd zeros]}")"
echo "  srm -s  / dd random                   $(ratio "${best[srm -s]}" "${best[dd random]}")"
echo "  srm -sz / (dd random + dd zeros)      $(ratio "${best[srm -sz]}" "$(sum "${best[dd random]}" "${best[dd zeros]}")")"
echo "  srm -s  / shred -n1                   $(ratio "${best[srm -s]}" "${best[shred -n1]}")"
echo "  srm -sz / shred -n1 -z                $(ratio "${best[srm -sz]}" "${best[shred -n1 -z]}")"
