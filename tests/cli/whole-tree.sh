#!/usr/bin/env bash
# Runs all steps that a team uses on a tree of generated classes, and on the examples in every
# encoding: dry run, diff, --write, --check, undo.
#   whole-tree.sh SOCA GENERATE_CLASSES EXAMPLES COUNT
set -euo pipefail

soca=$(realpath -- "$1") generate=$(realpath -- "$2") examples=$(realpath -- "$3") count=$4
scratch=$(mktemp -d)
trap 'rm -rf -- "$scratch"' EXIT
export XDG_STATE_HOME=$scratch/state LC_ALL=C.UTF-8
cd -- "$scratch"

fail() {
  printf 'whole_tree: %s\n' "$*" >&2
  exit 1
}

same() { diff -r "$1" "$2" >difference || { head -n 20 difference; fail "$3"; }; }

# Stores the program's exit code in `code`, and its outputs in NAME.out and NAME.err.
run() {
  local name=$1
  shift
  code=0
  "$soca" "$@" >"$name.out" 2>"$name.err" || code=$?
}

ends_with() { [[ $code == "$1" ]] || { tail -n 5 "$2.err"; fail "$2: exit code $code, wanted $1"; }; }

# Names, permissions, times and checksums of all files below a folder.
without_lines() {
  sed -E 's/:[0-9]+: /: /; s/lines? [0-9]+((,| and) [0-9]+)*/line/g'
}

state_of() {
  (cd -- "$1" && find . -type f -printf '%p %m %T@\n' | sort && find . -type f -print0 | sort -z |
    xargs -0 sha256sum)
}

# The examples unchanged, and a copy in each form that a file can have.
make_examples() {
  local file
  cp -r -- "$examples" plain
  for form in crlf cut bom latin 'näh er'; do cp -r -- "$examples" "$form"; done
  while IFS= read -r -d '' file; do
    sed -i 's/$/\r/' "crlf/$file"
    [[ -n $(tail -c 1 "cut/$file") ]] || truncate -s -1 "cut/$file"
    sed -i $'1s/^/\xef\xbb\xbf/' "bom/$file"
    sed -i $'$s/$/ % na\xefve/' "latin/$file"
  done < <(cd -- "$examples" && find . -name '*.vlm' -size +0 -print0)
}

# One example has a superclass that is not found.
printf '{"classes": {"tools.internal.missing.Panel": {"superclasses": ["handle"]}}}\n' >table.json

# git and patch apply the diff of a dry run with the same result as --write, and undo reverts it.
goes_there_and_back() {
  local root=$1
  mkdir work
  cp -rp -- "$root" work/tree
  cp -rp -- work by_git
  cp -rp -- work by_patch
  state_of work >before
  cd work
  run ../dry update -p tree --class-table ../table.json
  run ../write update --write -p tree --class-table ../table.json
  ends_with 0 ../write
  cd ..
  [[ -s dry.out ]] || fail "$root: nothing would change"
  (cd by_git && git apply --whitespace=nowarn ../dry.out) || fail "$root: git apply refuses the diff"
  (cd by_patch && patch --quiet --binary -p1 <../dry.out) || fail "$root: patch refuses the diff"
  same work by_git "$root: git apply makes something else than --write"
  same work by_patch "$root: patch makes something else than --write"
  # Lines are those of the text that there is.
  diff <(sed 's/would change,/changed,/' dry.err | without_lines) \
    <(grep -v "'soca undo " write.err | without_lines) ||
    fail "$root: the dry run tells something else than --write"
  run undo undo
  ends_with 0 undo
  state_of work >after
  same before after "$root: undo does not bring back what was there"
  rm -r work by_git by_patch
}

same_for_any_number_of_jobs() {
  local jobs
  for jobs in 1 2 16; do
    run "jobs-$jobs" update -j "$jobs" -p tree
    ends_with 0 "jobs-$jobs"
    cmp jobs-1.out "jobs-$jobs.out" && cmp jobs-1.err "jobs-$jobs.err"
  done
}

# Nothing is left to change, except what the summary announced.
is_done_after_writing() {
  state_of tree >before
  run write update --write -j 2 -p tree
  ends_with 0 write
  run check update --check -p tree
  if grep -q ' again in a second update' write.err; then ends_with 1 check; else ends_with 0 check; fi
  run undo undo
  ends_with 0 undo
  state_of tree >after
  same before after "undo does not bring back what was there"
}

make_examples
for form in plain crlf cut bom latin 'näh er'; do goes_there_and_back "$form"; done
"$generate" --seed 7 --count "$count" --out tree
chmod 640 tree/area000/*
same_for_any_number_of_jobs
is_done_after_writing
goes_there_and_back tree
printf 'whole_tree: all is well (%d classes)\n' "$count"
