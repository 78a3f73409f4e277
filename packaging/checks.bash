# For the scripts of this folder: check WHAT COMMAND... runs a command or function, tells in one line whether all of it
# went well, and ends the script with what it said if not.
check() {
  local what=$1 said status
  shift
  set +e
  said=$(set -e; "$@" 2>&1 </dev/null)
  status=$?
  set -e
  if [ "$status" -ne 0 ]; then
    printf 'WRONG %s (%s: status %d)\n%s\n' "$what" "$1" "$status" "$said"
    exit 1
  fi
  printf 'ok    %s\n' "$what"
}

# holds PATTERN COMMAND...: the command's output has the text, byte for byte; whatever its status is.
holds() {
  local said
  said=$("${@:2}" 2>&1) || true
  LC_ALL=C grep -qF -e "$1" <<<"$said" || { printf 'no "%s" in what %s says:\n%s\n' "$1" "$2" "$said"; return 1; }
}

# ends STATUS COMMAND...: the command ends so.
ends() {
  local status=0
  "${@:2}" || status=$?
  [ "$status" -eq "$1" ] || { echo "$2 ended with status $status, not $1"; return 1; }
}

# fails COMMAND...: the command does not succeed. ("!" alone would not end a function under "set -e".)
fails() { ! "$@"; }
