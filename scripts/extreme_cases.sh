#!/usr/bin/env bash
# Runs four analyses at extreme sizes through the host and prints what it
# reports next to the exact values (tests/data/make_extreme.py computes them
# at 40 digits). Usage: scripts/extreme_cases.sh [BUILD_DIR]   (default build)
#   1. binomial: 500,000,123 successes of 1e9 trials, Beta(5000, 5000) against
#      Beta(1, 1): exact factor 79.78606252015581
#   2. Poisson: 2.7e9 counts in 1e9 cases, Gamma(2.7, 1) against Gamma(1, 1):
#      exact factor 3.503307280512206
#   3. normal: 1000 values 1e9 + N(0, 0.001) with six decimals
#      (tests/data/extreme_normal.csv), null value 1000000000.0001: exact t and
#      standard deviation in tests/data/extreme_normal_expected.csv
#   4. normal: 10 columns of 1,000,000 values N(0.1, 1): every factor
#      underflows to 0, every log factor is finite
set -euo pipefail
cd "$(dirname "$0")/.."
bsn="${1:-build}/bsn"
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT

printf 'v,w\n1,500000123\n0,499999877\n' > "$dir/bino.csv"
cat > "$dir/bino.json" <<'EOF'
{"ModelType": "One-Sample", "TestDistType": "Binomial", "Factors": ["v"], "FactorSizes": [2],
 "FrequencyWeightVar": "w", "AnalysType": "Both", "NullPrior1s": [5000], "NullPrior2s": [5000],
 "AlterPrior1s": [1], "AlterPrior2s": [1], "PriorParam1": 1, "PriorParam2": 1}
EOF
printf 'c,w\n3,700000000\n2,300000000\n' > "$dir/pois.csv"
cat > "$dir/pois.json" <<'EOF'
{"ModelType": "One-Sample", "TestDistType": "Poisson", "Covariates": ["c"], "FrequencyWeightVar": "w",
 "AnalysType": "Both", "NullPrior1s": [2.7], "NullPrior2s": [1], "AlterPrior1s": [1], "AlterPrior2s": [1],
 "PriorParam1": 1, "PriorParam2": 1}
EOF
cat > "$dir/normal.json" <<'EOF'
{"ModelType": "One-Sample", "TestDistType": "Normal", "Covariates": ["value"], "AnalysType": "Both",
 "NullValues": [1000000000.0001], "EstBFType": "JZS", "MeanDistType": "Diffuse", "PriorDistType": "Diffuse"}
EOF
cat > "$dir/ten.json" <<'EOF'
{"ModelType": "One-Sample", "TestDistType": "Normal",
 "Covariates": ["x0", "x1", "x2", "x3", "x4", "x5", "x6", "x7", "x8", "x9"],
 "AnalysType": "Bayes Factor", "EstBFType": "JZS"}
EOF
python3 - "$dir/ten.csv" <<'EOF'
import random, sys
rng = random.Random(4)
with open(sys.argv[1], "w") as f:
    f.write(",".join("x%d" % i for i in range(10)) + "\n")
    for _ in range(1000000):
        f.write(",".join("%.6f" % rng.gauss(0.1, 1.0) for _ in range(10)) + "\n")
EOF

show() { grep -E "\"($1)\"" || true; }
echo "1. binomial (exact factor 79.78606252015581, log 4.3793488340658865)"
"$bsn" run "$dir/bino.json" "$dir/bino.csv" --json - 2>/dev/null | show "GetBayesFactors|GetLogBayesFactors"
echo "2. Poisson (exact factor 3.503307280512206, log 1.2537074596123773)"
"$bsn" run "$dir/pois.json" "$dir/pois.csv" --json - 2>/dev/null | show "GetBayesFactors|GetLogBayesFactors"
echo "3. normal far from zero (exact: $(paste -sd' ' tests/data/extreme_normal_expected.csv | cut -d' ' -f2-))"
"$bsn" run "$dir/normal.json" tests/data/extreme_normal.csv --json - 2>/dev/null | show "GetTValues|GetStdDevs"
echo "4. ten columns of a million values: factors and log factors"
"$bsn" run "$dir/ten.json" "$dir/ten.csv" 2>/dev/null | sed -n '/t test/,/Bayes factor of/p'
