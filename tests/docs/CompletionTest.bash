# The completions that bash gets from the generated script. A line of the table has the words so
# far, a bar, and the completions of the last word.
#
#   bash CompletionTest.bash SCRIPT
set -u
# shellcheck source=/dev/null
source "$1" || exit 1

folder=$(mktemp -d)
trap 'rm -rf -- "$folder"' EXIT
cd -- "$folder" || exit 1
mkdir -p 'src/shop/stock' 'other/no-package' 'my files'
touch src/shop/{Mixer.vlm,Motor.p,notes.txt} src/shop/stock/Item.vlm other/Main.vlm 'my files/a*b'

failures=0
while IFS='|' read -r line expected; do
  COMP_WORDS=() words=()
  # As bash parts a line: at blanks, and `=` is a word of its own.
  read -ra words <<<"${line//=/ = }"
  COMP_WORDS=("${words[@]}")
  [[ $line != *' ' ]] || COMP_WORDS+=('')
  COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
  _soca
  found=$(printf '%s\n' "${COMPREPLY[@]}" | LC_ALL=C sort | paste -sd ' ')
  [[ $found == "$expected" ]] && continue
  printf "'%s' gives '%s', not '%s'\n" "$line" "$found" "$expected"
  failures=1
done <<'END'
soca upd|update
soca --v|--version
soca update --superc|--superclasses
soca check --superc|
soca update --color |always auto never
soca update --color=al|always
soca check --color=n|never
soca update -r impl,mi|impl,mixins
soca update -r mixins,impl/d|mixins,impl/delete-obsolete mixins,impl/delete-redundant
soca update --risk=u|unsafe
soca update -p s|src
soca update -p src s|shop.
soca update -p src shop.|shop.Mixer shop.Motor shop.stock.
soca classes --path=src --path other M|Main
soca classes -p src shop.stock.I|shop.stock.Item
soca update -p src my|my files
soca update --class-table sr|src
soca explain Overl|OverlappingExtent
soca explain WriteF|WriteFailed
soca explain at|attributes
soca undo --dr|--dry-run
soca undo sr|src
soca nonsense x|
END
exit "$failures"
