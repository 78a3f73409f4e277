#!/usr/bin/env -S zsh -f
# SPDX-License-Identifier: Apache-2.0
# offers.zsh FOLDER LINE: what an interactive zsh with the completions of this folder offers at the end of the line,
# a word a line.
zmodload zsh/zpty || exit 1
zpty shell zsh -f -i

# Every word that a completion adds is written, between two lines of a NUL byte around the whole. The braces let the
# line end work until all is read.
zpty -w shell "{
fpath=(${(q)1} \$fpath)
autoload -U compinit
compinit -C
bindkey '^M' undefined
bindkey '^J' undefined
bindkey '^I' complete-word
mark() { print -r -- \$'\\0' }
compprefuncs=(mark)
comppostfuncs=(mark exit)
zstyle ':completion:*' list-grouped false
zstyle ':completion:*' insert-tab false
compadd() {
    if [[ \${@[1,(i)(-|--)]} == *-(O|A|D)\\ * ]]; then
        builtin compadd \"\$@\"
        return
    fi
    local -a words
    builtin compadd -A words \"\$@\"
    (( \$#words )) && print -rl -- \$words
    builtin compadd \"\$@\"
}
print is''ready
}"
zpty -r -m shell noise $'*isready*'
zpty -w shell "$2"$'\t'
local -i marks=0
while zpty -r shell; do :; done | while IFS= read -r line; do
    line=${line%$'\r'}
    if [[ $line == *$'\0' ]]; then
        (( marks++ )) && exit 0
    elif (( marks )); then
        print -r -- $line
    fi
done
exit 1
