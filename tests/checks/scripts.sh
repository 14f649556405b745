#!/usr/bin/env bash
# The shell scripts hold what shellcheck asks for.
set -euo pipefail

shellcheck dev .ci/run tests/checks/*.sh packaging/*.sh packaging/debian/*.sh trials/*.sh
