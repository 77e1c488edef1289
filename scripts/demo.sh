#!/usr/bin/env bash
# Installs what is needed, builds bsn and runs a real analysis on bundled
# example data: a one-sample binomial analysis with Bayes factors and
# posteriors, printed as tables.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
scripts/build.sh build
./build/bsn run examples/binomial.json examples/binomial.csv
