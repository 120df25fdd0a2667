#!/usr/bin/env bash
# The benchmarks of build/bench against the peers; see bench/report.py for the arguments.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
exec python3 bench/report.py "$@"
