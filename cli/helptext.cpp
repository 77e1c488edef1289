#include "cli/helptext.h"

#include <fmt/format.h>

#include "cli/host.h"
#include "cli/settingsjson.h"

namespace bsncli {

namespace {

const char* const kExample = R"(EXAMPLE
  examples/binomial.json (one-sample binomial test of two 0/1 columns, rows
  weighted by the column "count"):
    {
      "ModelType": "One-Sample",
      "TestDistType": "Binomial",
      "Factors": ["smoker", "vaccinated"],
      "FactorSizes": [2, 2],
      "FrequencyWeightVar": "count",
      "AnalysType": "Both",
      "AlterPrior1s": [1, 1],
      "AlterPrior2s": [1, 1],
      "PriorParam1": 1,
      "PriorParam2": 1
    }

  bsn run examples/binomial.json examples/binomial.csv
  bsn run examples/binomial.json examples/binomial.csv --json - > result.json
  bsn run examples/normal.json examples/normal.csv --json result.json --plots plots --quiet
  bsn run examples/normal.json examples/normal.csv --report normal.html

  More examples: examples/poisson.*, examples/normal.*, examples/related.*,
  examples/regression.*, examples/anova.*, examples/independent.*,
  examples/correlation.* (every pair of five variables, on all cores),
  examples/loglinear.*
)";

const char* const kRegressionRules = R"(REGRESSION AND ANOVA (model types 4 and 5)
  - DependentVar is the response; Factors (coded columns, one indicator
    column per category, the last category redundant beside the intercept)
    and Covariates are the predictors. ANOVA takes exactly one factor and
    fits one mean per category (no intercept).
  - A record is used when every variable of the model has a value, each
    factor value is a category, its frequency weight rounds to 1 or more
    and its RegrWeightVar value (if any) is above 0. The weight of a case
    is frequency weight x regression weight; N is the sum of frequency
    weights.
  - The Bayes factor (RegrCompType Siow, Zellner, Hyper, Rouder; RegrComPar
    is g for Zellner, a for Hyper, the scale r for Rouder) weighs the model
    against the intercept-only model (CompareType Null) or against the full
    model of FullModFactors and FullModCovariates (CompareType Full): in
    both, values above 1 favour the model, unlike the other analyses. The
    integrals over g stop at g = 1e6; when the full model has more
    predictors the full comparison's integrand grows with g, so its value
    depends on that bound. GetLogBayesFactor is the factor's logarithm
    computed on the log scale (right also where the factor overflows).
  - PriorType Conjugate needs PriorShape and PriorScale (inverse gamma of
    sigma^2), PriorMeans (one per design parameter: intercept, every
    category of every factor, every covariate, in that order) and may give
    PriorCovMatrix as the lower triangle of V0 by rows: (1,1), (2,1),
    (2,2), (3,1), ... (identity when left out or of the wrong length).
    Any other prior type is the reference prior.
  - Regressors: one value per predictor, factors first (as the category's
    position 0..k-1 among the sorted labels), then covariates, for the
    predicted value. FTests: [{"UseIntercept": bool, "Predictors":
    [columns], "TestValues": [one per tested parameter: one per covariate,
    one per category of a factor], "Label": text}].
  - PlotFactors (with PlotFactorCats, at most MaxNPlotCategories each) and
    PlotCovars choose the coefficients plotted (at most MaxNPlots); sigma^2
    and the prediction are always plotted.
)";

const char* const kScoringRules = R"(PMML AND SCORING (model types 4 and 5)
  --pmml PATH writes the fitted model as a PMML 4.4 document: a
  GeneralRegressionModel (generalLinear) with one parameter per design
  parameter (a redundant one with beta 0), the factors' categories by their
  data values, and as beta the posterior mean (the least-squares estimate
  when no posterior was built). --pmml-covariance adds the posterior
  covariance of the coefficients (PCovMatrix).
  --score NEW scores every record of the CSV file NEW, which must have a
  column for each factor and covariate of the model, named as in DATA
  (other columns are copied through). The output (--scores PATH, or stdout
  by default, which then carries no tables) repeats NEW's columns and adds
  predicted_mode, predicted_mean (both x'b), predicted_variance,
  predicted_lower and predicted_upper (the posterior predictive of a new
  response; only with a posterior and "ComputeVarianceInScoring": true). A
  record with a missing predictor value gets empty scores; a factor value
  that DATA does not have, or a covariate value that is not a number, is an
  error naming the line.
  Files are written whole or not at all. Statuses of the PMML export:
  102 a factor or covariate of the model is not in the variable list;
  303 the document could not be written.

    bsn run examples/regression.json examples/regression.csv --pmml model.pmml
    bsn run examples/regression.json examples/regression.csv \
        --score examples/regression_new.csv --scores scores.csv
)";

const char* const kSettingsRules = R"(SETTINGS FILE
  A JSON object. Its keys are the getter names of the settings record without
  their Get/Is prefix; every key may be left out (the record's default holds).
  - ModelType is applied first and also resets the defaults that depend on
    it; the other keys follow in the order listed below, whatever their
    order in the file.
  - Variables are named by CSV column name.
  - Enumerations take their number or their word, e.g. "AnalysType": 2 or
    "Both", "PriorDistType": "Jeffreys 2" (case, spaces and hyphens are
    ignored when matching words).
  - null is the missing value: a parameter not given, or one missing entry
    in a list of numbers. A single variable may be null (none).
  - Test variables: a one-sample binomial test reads Factors (values 0/1, or
    k for k successes in one trial), Poisson and normal tests read
    Covariates, related samples pair Covariates[i] with 2ndRelatedList[i].
  - Independent samples (ModelType 2) compare the Covariates between two
    groups of GroupVar: its first category in sorted order (code 0) is the
    first group, the second (code 1) the second group; cases in any other
    category or with no group are left out. Differences are second group
    minus first. The Bayes factor follows RegrCompType: Rouder (default, the
    JZS factor), Hyper (parameter RegrComPar, 3 when not given) or Gonen
    (RegrComPar = prior mean and SecondGonenPar = prior variance of the
    standardised effect; both needed). The posterior of the difference:
    MeanDistType Normal needs DataVarVals (the two groups' known variances)
    and MeanDistParam1..4 (prior mean and variance of each group mean);
    otherwise flat priors on the means with DataVarVals (known variances),
    or EqualDataVar true (one variance; PriorDistType InverseChiSquare with
    PriorDistParam1 = df and PriorDistParam2 = scale, else 1/sigma^2), or
    unequal variances (the exact Behrens-Fisher posterior).
    Covariates, related samples pair Covariates[i] with 2ndRelatedList[i],
    correlation takes every pair of the Covariates.
  - Correlation runs its pairs on worker threads: --threads N (default every
    core) sets MaxThreadNum unless the file gives it; NPairsPerTask pairs
    make one task. Bayes factors are the same however the pairs are split;
    every task starts the random draws afresh, so posteriors are the same
    for any thread count above 1 but change with NPairsPerTask, and one
    thread (or no more pairs than one task holds) runs a single task.
  - A log-linear analysis (ModelType LogLinear) reads Factors = [row
    factor, column factor]. A record with a missing factor value or weight
    is left out; one whose weight is negative is left out with a warning.
    Weights are used as they stand (not rounded); only Fisher's exact test
    rounds the cell counts, half up. The intrinsic prior's cost grows with
    the square of LogLinIntrinsicT.
  - NCases, when left out, is the number of records in the data file.
  - FactorSizes and FullModFactorSizes may be left out: they are then the
    number of categories found in each coded factor (2 for binomial test
    variables).
  - An unknown key, a value of the wrong type, an unknown column or word, or
    a value the settings record refuses (e.g. FactorSizes not one entry
    above 0 per factor, 2ndRelatedList not as long as Covariates,
    ProgressFrequency 0) is an error naming the key.
  - The settings check of the library runs before the analysis; an error
    there stops the run (exit 2), its warnings are listed.

  Keys and the values they take:
)";

const char* const kDataRules = R"(DATA FILE (CSV)
  - The first row names the columns; every other row is one record and must
    have exactly as many fields (an error names the line otherwise).
  - Fields are separated by commas. A field may be quoted: "a, b" holds a
    comma, "" inside quotes is one quote, quoted fields may span lines.
  - Lines end in LF, CRLF or CR; a UTF-8 byte-order mark is skipped; blank
    lines are ignored; spaces and tabs around a field are dropped.
  - An empty field, NA or . is a missing value.
  - Only the columns the settings name are read. Each value in them must be
    a number, except in coded columns; the first bad value is reported as
    FILE:LINE: column 'NAME': 'VALUE' is not a number.
  - Coded columns: Factors, FullModFactors and GroupVar may hold text (not
    the test variables of a binomial test, whose values are counts). Their
    distinct values become codes 0..k-1 in sorted order: numbers by value
    first ("1" and "1.0" are one category), then text in byte order. The
    tables show the labels.
  - The file is read again from disk on every pass of the analysis and must
    not change while it runs.
)";

const char* const kOutput = R"(OUTPUT
  Tables (stdout): one row per test variable (or pair) with labelled
  columns, then the warnings (code, message, and the variable the warning
  points at) and the status. --quiet leaves the tables out.
  A Bayes factor is the factor of the null against the alternative (above 1
  favours the null). Where it is too large or too small to print it is kept
  as its natural logarithm x and shown as exp(x). The "log BF" column
  (GetLogBayesFactors in the JSON) gives the natural logarithm of every
  factor, computed on the log scale: it stays exact where a normal-mean
  factor underflows to 0.

  --json PATH writes (PATH "-" = stdout, and then no tables; warnings and
  status go to stderr):
    {"status": {"code": int, "error": bool, "message": str},
     "warnings": [{"code": int, "message": str, "datum": int|null}],
     "model_built": bool,
     "columns": [str, ...],
     "results": {GETTER: value, ...} | null}
  status code 0 with message "" means no error. datum is the warning's
  first data slot (for the analyses' warnings: the position of the test
  variable in its list). columns names the data file's columns in order;
  every variable index in results (GetVarIndices, GetSecondVarIndices,
  the members of a pair, ...) is a position in it. Each key of results is
  a getter of the result object, spelled as in the library (GetBayesFactors,
  GetIsLogBayesFactor, GetPlotArguments4Prior, GetSettings, GetModelType,
  GetOutputType, ...).
  Missing values are null, also inside arrays; pairs are 2-element arrays;
  GetSettings uses the keys of the settings file. results is null when no
  model was built. A run that fails (bad settings or data, an analysis
  this build lacks, an output that cannot be written, a cancellation)
  still writes the document, with "status": {"code", "error": true,
  "message"}, "model_built": false and "results": null; the message names
  the file, line and column at fault. Codes: 420060 settings file, 420061
  data file, 420062 no such analysis, 420063 output file, 1 cancelled.

  --plots DIR writes DIR/<variable>.svg per test variable (pair,
  coefficient, cell...), and DIR/<name>.svg per further figure of the
  analysis (e.g. a heat map of a table). Each plot has one main panel where
  the prior, the posterior and the likelihood share one x axis that spans
  all three:
    - the y axis is the posterior density; the likelihood (the library gives
      its logarithm up to a constant) is scaled to the posterior's peak; a
      prior whose peak is more than 5 times lower or higher than the
      posterior's is multiplied by a round factor, named in the legend
      ("prior x20"); a flat prior is a level line at half the posterior's
      peak, marked "height arbitrary";
    - the credible interval is shaded under the posterior, its limits
      written beside it; the null value is a dashed vertical line (named
      in the legend with "off the axis" when it lies far outside);
    - the title names the variable, the subtitle states the Bayes factor in
      words ("BF01 = 3.69: the data are 3.7 times more likely under the
      null"; a factor kept as its logarithm reads "log BF01 = ...").
  A log-linear analysis adds a heat map of the table (cells coloured by
  (observed - expected)/sqrt(expected)) and plots the posterior density of
  the log odds ratio of the first MaxNPlots pairs of categories.
  When the posterior is narrow on that axis, a close-up of it follows
  below. Missing points are left out of a curve. Unless the settings file
  sets NPlotPoints, bsn asks for 400 points per curve (instead of the
  library's 100) so that curves are smooth.

  --report FILE writes one HTML page: the analysis, the input files, the
  status and warnings, the settings (those set by the file or by bsn, and
  all of them folded), every table above and every plot and figure. CSS and
  SVG are inline, there are no scripts and nothing is fetched: the file
  opens in any browser without a network. It is written once the settings
  check has run, like --json.

  Files are written whole or not at all: all of a run's files go to
  temporary names first and are renamed into place together at the end.

  Correlation tables have one row per pair of variables (both names, r, N,
  Bayes factor and its log, posterior summaries); its JSON pairs are
  [[i, j], ...] of column positions, and --plots draws the first MaxNPlots
  pairs.

  On a terminal a progress line is shown on stderr (records, then pairs of
  a correlation). Ctrl-C cancels the run in any phase (reading the
  settings, checking the data, the analysis, writing the output) within a
  fraction of a second: exit code 1, "The analysis was cancelled", and none
  of the run's files written; a second Ctrl-C ends bsn at once.

  MemCacheKB (default 1048576, i.e. 1 GiB) is the memory the run may use to
  keep the columns the analysis reads, parsed once by the check of the
  file; every pass of the analysis then reads memory. Larger data are read
  again from the file on every pass, in bounded memory.
)";

const char* const kExitCodes = R"(EXIT CODES
  0  the model was built (warnings allowed)
  1  the analysis ended with an error, or was cancelled
  2  bad usage or input: command line, settings file, data file, settings
     refused by the settings check, or an analysis this build does not have
)";

} // namespace

std::string RunHelpFooter() {
    return fmt::format("\n{}\n{}{}\nANALYSES IN THIS BUILD (model type)\n  {}\n\n{}\n{}\n{}\n{}\n{}", kExample,
                       kSettingsRules, SettingsKeysHelp(), AvailableAnalyses(), kRegressionRules, kScoringRules,
                       kDataRules, kOutput, kExitCodes);
}

std::string MainHelpFooter() {
    return "\nUse `bsn run --help` for the options of `run`.\n" + RunHelpFooter();
}

} // namespace bsncli
