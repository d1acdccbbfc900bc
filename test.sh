#!/usr/bin/env bash
# test.sh [--quick]: installs what is needed, builds, runs all tests; then once
# more under the address, undefined-behaviour and thread sanitizers, unless
# --quick is given.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
# shellcheck source=tools/common.sh
source tools/common.sh

presets=(release asan-ubsan tsan)
case "${1:-}" in
  '') ;;
  --quick) presets=(release) ;;
  *)
    echo "usage: ./test.sh [--quick]" >&2
    exit 2
    ;;
esac

tools/install-packages.sh
for preset in "${presets[@]}"; do
  build_and_test "$preset"
done
say "All tests passed (${presets[*]})"
