#!/usr/bin/env bash
# binary_test.sh SOURCE_DIR BUILD_TYPE LIBRARY PROGRAM...: how the programs are built, as the linker and the compiler
# left it, and what of the environment the source reads.
set -u
source_dir=$1 build_type=$2 library=$3
shift 3
failures=0
expect() { # expect "what is wanted" COMMAND...
  local what=$1
  shift
  "$@" || { echo "FAILED: $what"; failures=$((failures + 1)); }
}
has() { readelf "$1" "$3" 2>/dev/null | grep -qE "$2"; }
hasnot() { ! has "$@"; }

for program in "$@"; do
  name=$(basename "$program")
  expect "$name can be loaded anywhere (PIE)" has -hdW 'Type: +DYN' "$program"
  expect "$name says that it is position independent" has -dW 'FLAGS_1.*PIE' "$program"
  expect "$name has its relocations read-only" has -lW 'GNU_RELRO' "$program"
  expect "$name is bound before it runs, so that all of them are" has -dW 'BIND_NOW|FLAGS_1.*NOW' "$program"
  expect "$name has no relocation in its code" hasnot -dW 'TEXTREL' "$program"
  expect "$name has a stack that is not executed" has -lW 'GNU_STACK.* RW +0x' "$program"
  expect "$name has no segment that is written and executed" hasnot -lW 'LOAD.* RWE' "$program"
  expect "$name looks for libraries in the system's places alone" hasnot -dW 'R(UN)?PATH' "$program"
  expect "$name checks its stack" has -sW '__stack_chk_fail' "$program"
  if [ "$build_type" = Release ]; then
    expect "$name checks the sizes of its buffers (_FORTIFY_SOURCE)" has -sW 'UND __[a-z]+_chk' "$program"
  fi
done

# The mark is lost where one object of a program lacks it (those of the C library do), so the objects are asked.
members=$(ar t "$library" | wc -l)
marked=$(readelf -nW "$library" | grep -c 'x86 feature: IBT, SHSTK')
expect "every object has control-flow protection ($marked of $members)" [ "$members" -gt 0 -a "$marked" -eq "$members" ]

# The name of the configuration, the wish of terminals, and what a support bundle tells of; a program with more rights
# than its caller reads none.
reads=$(grep -rnE '\bgetenv *\(|\bsecure_getenv *\(' "$source_dir/src" "$source_dir/lab" --include=*.cpp --include=*.h |
  grep -vE 'src/suite/configuration.cpp:.*secure_getenv\("KVN_CONF"\)|src/info/.*secure_getenv\("(NO_COLOR|TERM)"\)|src/bundle/machineFacts.cpp:.*secure_getenv')
expect "nothing else is read from the environment: $reads" [ -z "$reads" ]
exit "$((failures > 0))"
