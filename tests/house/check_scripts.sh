#!/usr/bin/env bash
# The shell scripts hold what shellcheck asks for.
set -euo pipefail
command -v shellcheck >/dev/null || exit 77

shellcheck dev .ci/run tests/house/*.sh
