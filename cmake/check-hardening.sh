#!/usr/bin/env bash
# Fails when a program or library was built without what the option KELX_HARDENING promises.
# usage: check-hardening.sh FILE...
set -euo pipefail

failed=0
for file in "$@"; do
  facts=$(readelf --wide --file-header --program-headers --dynamic --dyn-syms "$file")
  # what=pattern that has to be there
  for check in 'position-independent=Type: +DYN' 'RELRO=GNU_RELRO' 'bound at once=FLAGS.*NOW' \
    'stack protector=__stack_chk_fail' 'stack not executable=GNU_STACK.* RW '; do
    grep -qE "${check#*=}" <<<"$facts" || { echo "$file: not ${check%%=*}" && failed=1; }
  done
done
exit $failed
