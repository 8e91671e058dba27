#!/usr/bin/env bash
# check-layers.sh: folders are layers, and an #include may only reach a folder of a lower
# layer (or its own). Prints each include that goes sideways or upwards, with its file and
# line, and exits non-zero when there is one.
set -euo pipefail
cd "$(dirname "$0")/.."

# Lowest first. Folders on one line are peers: neither may include the other.
LAYERS=(
    "platform"
    "core"
    "ui"
    "definitions"
    "stores"
    "logs"
    "scan"
    "removal services"  # services: to come
    "pages"
    "app"
    "apps"
)

declare -A rank
for i in "${!LAYERS[@]}"; do
    for folder in ${LAYERS[$i]}; do rank[$folder]=$i; done
done

# The layer of a source file: its first folder under src/, or apps/ as a whole.
layer_of_file() {
    case "$1" in
        apps/*) echo apps ;;
        src/*) local rest=${1#src/}; echo "${rest%%/*}" ;;
    esac
}

status=0
while IFS=: read -r file line text; do
    from=$(layer_of_file "$file")
    target=$(sed -E 's/^[[:space:]]*#include "([^"]+)".*/\1/' <<<"$text")
    to=${target%%/*}
    [ "$to" != "$target" ] || continue  # a file of the same folder
    [ -n "${rank[$to]+x}" ] || continue  # not one of ours
    if [ -z "${rank[$from]+x}" ]; then
        echo "$file:$line: the folder '$from' has no layer; add it to scripts/check-layers.sh"
        status=1
    elif [ "$from" != "$to" ] && [ "${rank[$to]}" -ge "${rank[$from]}" ]; then
        echo "$file:$line: '$from' may not include '$target' (layer '$to' is not below it)"
        status=1
    fi
done < <(git ls-files -co --exclude-standard -- 'src/*.h' 'src/*.cpp' 'apps/*.h' 'apps/*.cpp' |
    xargs -r grep -n -E '^[[:space:]]*#include "' /dev/null)

[ "$status" -eq 0 ] && echo "layers: every include goes downwards"
exit "$status"
