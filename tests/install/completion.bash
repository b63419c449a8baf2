# SPDX-License-Identifier: Apache-2.0
# What the completion offers:   bash completion.bash SCRIPT PROGRAM
set -u
source "$1" || exit 1
program="$2"
failures=0

# offers WORD... : puts what is offered for the last word into "offered", one a line.
offers() {
    COMP_WORDS=(orvelle "$@")
    COMP_CWORD=$#
    COMPREPLY=()
    _orvelle 2>/dev/null
    offered=$(printf '%s\n' "${COMPREPLY[@]}" | LC_ALL=C sort)
}

expect() {
    local name="$1" wanted="$2"
    [[ "$offered" == "$wanted" ]] && return
    printf '%s: offered\n%s\ninstead of\n%s\n' "$name" "$offered" "$wanted"
    failures=1
}

offers ''
expect "the commands of the help" \
    "$("$program" --help | sed -n '/^Subcommands:/,$s/^  \([a-z]*\) .*/\1/p' | LC_ALL=C sort)"
offers co
expect "commands by their beginning" $'compare\ncoordinates'
offers --documents /tmp options ''
expect "commands of a command, behind an option with a value" $'get\nlist\nset'
offers help options s
expect "what help tells of" set
offers info --fa
expect "options" --fail-on
offers info photo.jpg --documents ''
[[ "$offered" != *--* ]] || { echo "an option's value is no option"; failures=1; }
offers info --fail-on ''
expect "the values of an option" $'hard\nsoft'
offers filter err
expect "filters, without regard to case" 'Error\ Level\ Analysis'
offers filter 'JPEG\ G'
expect "filters behind a blank" 'JPEG\ Ghost\ Plot'
cd "$(mktemp -d)" && touch photo.jpg
offers filter 'Noise\ Map' ph
expect "files behind the filter" photo.jpg
offers info ph
expect "files" photo.jpg
rm -f photo.jpg && rmdir "$PWD"
exit "$failures"
