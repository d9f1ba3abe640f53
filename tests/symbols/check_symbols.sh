#!/bin/sh
# Checks the dynamic symbol table of libtarv.so:
#  - the defined global symbols are exactly the exported interface;
#  - the undefined symbols without a version are exactly the platform
#    interfaces that the loading process supplies;
#  - every versioned undefined symbol comes from the C runtime list;
#  - the library needs no shared object beyond the C and C++ runtime.
# usage: check_symbols.sh libtarv.so exported.txt platform.txt c_runtime.txt
set -eu
lib=$1 exported=$2 platform=$3 runtime=$4
NM=${NM:-nm}
READELF=${READELF:-readelf}
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
status=0

"$NM" -D --defined-only "$lib" | awk '$2 ~ /^[A-Z]$/ {print $3}' | sort -u > "$tmp/defined"
sort -u "$exported" > "$tmp/exported"
if ! diff -u "$tmp/exported" "$tmp/defined"; then
    echo "defined symbols differ from the exported interface (- expected, + found)"; status=1
fi

"$NM" -D --undefined-only "$lib" | awk '$1 == "U" {print $2}' > "$tmp/undefined"
grep -v '@' "$tmp/undefined" | sort -u > "$tmp/platform_found" || true
sort -u "$platform" > "$tmp/platform"
if ! diff -u "$tmp/platform" "$tmp/platform_found"; then
    echo "unversioned undefined symbols differ from the platform interfaces (- expected, + found)"; status=1
fi

grep '@' "$tmp/undefined" | sed 's/@.*//' | sort -u > "$tmp/runtime_found" || true
sort -u "$runtime" > "$tmp/runtime"
extra=$(comm -23 "$tmp/runtime_found" "$tmp/runtime")
if [ -n "$extra" ]; then
    echo "undefined symbols outside the C runtime list:"; echo "$extra"; status=1
fi

needed=$("$READELF" -d "$lib" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | grep -v -E '^(libc\.so\.6|libm\.so\.6|libstdc\+\+\.so\.6|libgcc_s\.so\.1|ld-linux.*)$' || true)
if [ -n "$needed" ]; then
    echo "needs shared objects beyond the C and C++ runtime:"; echo "$needed"; status=1
fi
soname=$("$READELF" -d "$lib" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
if [ "$soname" != "libtarv.so" ]; then
    echo "SONAME is '$soname', expected libtarv.so"; status=1
fi

[ $status -eq 0 ] && echo "libtarv.so exports $(wc -l < "$tmp/defined") functions, imports $(wc -l < "$tmp/platform_found") platform symbols"
exit $status
