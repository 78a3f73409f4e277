#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# offers.bash FILE LINE: what bash with the completion in this file offers at the end of the line, a word a line.
. "$1"
last=${2##* }
HOME='~' eval "COMP_WORDS=(${2% *})" # quoted words are one and a tilde stays, as in an interactive shell
COMP_WORDS+=("$last")
COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
"_${COMP_WORDS[0]}"
printf '%s\n' "${COMPREPLY[@]}"
