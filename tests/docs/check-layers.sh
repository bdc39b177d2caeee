#!/usr/bin/env bash
# Checks the includes of all C++ files of the product against the table of folders in
# docs/architecture.md: a file includes only files of its own folder and of the folders that the
# table names for it, each with the folders in it. There is no circle of folders or of files.
#
#   check-layers.sh ROOT
set -euo pipefail
cd -- "$1"

page=docs/architecture.md
scratch=$(mktemp -d)
trap 'rm -rf -- "$scratch"' EXIT
status=0

# "folder allowed" for each pair that the table allows; a row without any gives the folder itself.
awk -F'|' '
  /^\| `[a-z\/]+\/` *\|/ {
    folder = $2
    gsub(/[` ]/, "", folder)
    sub(/\/$/, "", folder)
    print folder, folder
    count = split($3, names, "`")
    for (i = 2; i <= count; i += 2) {
      sub(/\/$/, "", names[i])
      print folder, names[i]
    }
  }' "$page" >"$scratch/allowed"
[[ -s $scratch/allowed ]] || { printf '%s has no table of folders\n' "$page" >&2 && exit 1; }

# "file included" for each include of a file of the project.
mapfile -t folders < <(cut -d' ' -f1 "$scratch/allowed" | cut -d/ -f1 | sort -u)
find "${folders[@]}" -name '*.h' -o -name '*.cpp' | sort >"$scratch/files"
xargs grep -oH '^#include "[^"]*"' <"$scratch/files" >"$scratch/lines"
sed 's/:#include "\(.*\)"/ \1/; s, soca/Updater.h$, service/include/soca/Updater.h,' "$scratch/lines" |
  awk 'NR == FNR { known[$1]; next } $2 in known' "$scratch/files" - >"$scratch/includes"

awk '
  function folder_of(path) { sub(/\/[^\/]*$/, "", path); return path }
  function is_allowed(from, to,    i) {
    for (i = 1; i <= count[from]; ++i) if (index(to "/", list[from, i] "/") == 1) return 1
    return 0
  }
  NR == FNR { list[$1, ++count[$1]] = $2; next }
  {
    from = folder_of($1)
    to = folder_of($2)
    print from, to > folders
    if (from == to) next
    if (!(from in count)) print $1 ": the folder " from "/ has no row in the table"
    else if (!is_allowed(from, to)) print $1 ": " from "/ may not include " $2
  }' folders="$scratch/folders" "$scratch/allowed" "$scratch/includes" >"$scratch/found"
if [[ -s $scratch/found ]]; then
  sort -u "$scratch/found" >&2
  printf 'the folders that may include others are listed in %s\n' "$page" >&2
  status=1
fi

# tsort fails if includes are circular, and prints the members of the circle.
for graph in folders includes; do
  if ! tsort "$scratch/$graph" >/dev/null 2>"$scratch/circle"; then
    printf 'these %s include each other:\n' "${graph/includes/files}" >&2
    sed 's/^tsort: //' "$scratch/circle" >&2
    status=1
  fi
done
exit "$status"
