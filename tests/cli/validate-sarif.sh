#!/usr/bin/env bash
# Checks the SARIF output of the program with the validator of the format.
#
#   validate-sarif.sh PROGRAM CLASSES FOLDER
#
# The validator is installed into FOLDER once. Exits with 77 if it is not available.
set -euo pipefail

program=$1 classes=$2 folder=$3
version=5.7.0
export DOTNET_SYSTEM_GLOBALIZATION_INVARIANT=1

skip() {
  printf 'skipped: %s\n' "$1"
  exit 77
}

install_validator() {
  if ! command -v npm >/dev/null || ! command -v node >/dev/null; then skip "npm is not here"; fi
  mkdir -p -- "$folder"
  cd -- "$folder"
  [[ -e node_modules/.installed-$version ]] && return
  timeout 120 npm install --prefix . --no-audit --no-fund --no-save --ignore-scripts \
    "@microsoft/sarif-multitool@$version" >npm.log 2>&1 || skip "the validator can't be had"
  touch "node_modules/.installed-$version"
}

make_classes() {
  rm -rf -- classes
  mkdir -p 'classes/a b%41 ä'
  cp -R -- "$classes/." classes/
  printf 'classdef Broken < velum.System\n  properties\n    X = (;\n  end\nend\n' >classes/Broken.vlm
  printf 'classdef Other < handle\nend\n' >classes/Other.vlm
  printf '\xef\xbb\xbfclassdef Ü < velum.system.mixin.Propagates\nend\n' >'classes/a b%41 ä/Ü.vlm'
}

# The complaints of the validator. The project has no home page to put into the log.
validate() {
  local tool
  tool=$(node -p 'require("./node_modules/@microsoft/sarif-multitool")')
  chmod u+x -- "$tool"
  "$tool" validate "$1" --rule-kind 'Sarif;Ghas' >validator.log 2>&1 || true
  grep -q 'Analysis completed' validator.log || { cat validator.log; return 1; }
  grep -E '\): (error|warning) ' validator.log | grep -v 'warning SARIF2005' && return 1
  return 0
}

install_validator
make_classes
(cd classes && "$program" update --format sarif -p . -p 'a b%41 ä' >../found.sarif) || (($? == 2))
(cd classes && "$program" update --format sarif Other.vlm >../nothing.sarif) || (($? == 2))
validate found.sarif
validate nothing.sarif
