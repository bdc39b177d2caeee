#!/usr/bin/env bash
# Tests the review page in a browser.
#
#   review-page.sh SOCA GENERATE_CLASSES EXAMPLES FOLDER
#
# FOLDER has the module that drives the browser. Exits with 77 if that or the browser is missing.
set -euo pipefail

skip() {
  printf "left out: %s; './dev test --browser' installs it\n" "$1"
  exit 77
}

command -v node >/dev/null || skip 'node is not installed'
"${CHROMIUM:=/usr/bin/chromium}" --version >/dev/null 2>&1 || skip 'chromium is not installed'
[[ -e $4/node_modules/puppeteer-core ]] || skip 'puppeteer-core is not installed'
export CHROMIUM
exec node "$(dirname -- "${BASH_SOURCE[0]}")/ReviewPageTest.mjs" "$@"
