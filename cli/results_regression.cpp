// Adapter of BSNMultiRegOutputStats: the regression and one-way ANOVA
// results share one result class and one report.
#include <fmt/format.h>

#include "bsn/regression/bsnmultiregoutputstats.h"
#include "cli/results.h"
#include "cli/settingsjson.h"
#include "platform/common/mcmv.h"

namespace bsncli {

namespace {

using MCBSN_850::BayesEstimation;
using MCBSN_850::BSNMultiRegOutputStats;
using MCCommon_850::MCMV;
using nlohmann::ordered_json;
namespace C = MCBSN_850::BSNConst;

ordered_json anovaJson(const MCMath_850::MCRegANOVA& a) {
    ordered_json j;
    j["regression"] = {{"ss", ToJson(a.regressionSS)}, {"df", ToJson(a.regressionDF)}, {"ms", ToJson(a.regressionMS)}};
    j["residual"] = {{"ss", ToJson(a.residualSS)}, {"df", ToJson(a.residualDF)}, {"ms", ToJson(a.residualMS)}};
    j["total"] = {{"ss", ToJson(a.totalSS)}, {"df", ToJson(a.totalDF)}};
    j["f"] = ToJson(a.f);
    j["sig"] = ToJson(a.sig);
    return j;
}

void putGetters(const BSNMultiRegOutputStats& r, const DataInfo& data, ResultView& view) {
    PutCommonGetters(r, r.GetSettings(), data, view);
    auto& j = view.getters;
    j["GetAnova"] = anovaJson(r.GetAnova());
    j["GetBayesFactor"] = ToJson(r.GetBayesFactor());
    j["GetLogBayesFactor"] = ToJson(r.GetLogBayesFactor());
    j["IsLogBayesFactor"] = r.IsLogBayesFactor();
    ordered_json coeffs = ordered_json::array();
    for (const auto& e : r.GetVarCoeffBayesEstimations()) coeffs.push_back(ToJson(e));
    j["GetVarCoeffBayesEstimations"] = coeffs;
    j["GetErrorBayesEstimation"] = ToJson(r.GetErrorBayesEstimation());
    j["GetPredictedBayesEstimation"] = ToJson(r.GetPredictedBayesEstimation());
    j["GetRSquared"] = ToJson(r.GetRSquared());
    j["GetRSquaredFull"] = ToJson(r.GetRSquaredFull());
    j["GetAdjRSquared"] = ToJson(r.GetAdjRSquared());
    j["GetSigmaSquared"] = ToJson(r.GetSigmaSquared());
    j["GetStdError"] = ToJson(r.GetStdError());
    j["GetRegrParameters"] = ToJson(r.GetRegrParameters());
    j["GetParameterLabels"] = r.GetParameterLabels();
    j["GetRedundancy"] = ToJson(r.GetRedundancy());
    ordered_json tests = ordered_json::array();
    const auto labels = r.GetFTestLabels();
    for (std::size_t i = 0; i < r.GetFTestResults().size(); ++i) {
        ordered_json t = ToJson(r.GetFTestResults()[i]);
        t["label"] = i < labels.size() ? labels[i] : std::string();
        tests.push_back(t);
    }
    j["GetFTestResults"] = tests;
    j["GetFStat"] = ToJson(r.GetFStat());
    j["GetDF"] = ToJson(r.GetDF());
    j["GetDF2"] = ToJson(r.GetDF2());
    j["GetSig"] = ToJson(r.GetSig());
    j["GetPlotParameters"] = ToJson(r.GetPlotParameters());
    j["GetLikelihoodParamPlots"] = ToJson(r.GetLikelihoodParamPlots());
    j["GetParamsArgumentsPlots4Likelihoods"] = ToJson(r.GetParamsArgumentsPlots4Likelihoods());
    j["GetParamsArgumentsPlots4Prior"] = ToJson(r.GetParamsArgumentsPlots4Prior());
    j["GetParamsArgumentsPlots4Posterior"] = ToJson(r.GetParamsArgumentsPlots4Posterior());
    j["GetPriorParamPlots"] = ToJson(r.GetPriorParamPlots());
    j["GetPosteriorParamPlots"] = ToJson(r.GetPosteriorParamPlots());
    j["GetLikelihoodErrorVarPlot"] = ToJson(r.GetLikelihoodErrorVarPlot());
    j["GetArgumentErrorVarPlot4Likelihoods"] = ToJson(r.GetArgumentErrorVarPlot4Likelihoods());
    j["GetArgumentErrorVarPlot4Prior"] = ToJson(r.GetArgumentErrorVarPlot4Prior());
    j["GetArgumentErrorVarPlot4Posterior"] = ToJson(r.GetArgumentErrorVarPlot4Posterior());
    j["GetPriorErrorVarPlot"] = ToJson(r.GetPriorErrorVarPlot());
    j["GetPosteriorErrorVarPlot"] = ToJson(r.GetPosteriorErrorVarPlot());
    j["GetArgumentPredictedPlot4Likelihoods"] = ToJson(r.GetArgumentPredictedPlot4Likelihoods());
    j["GetArgumentPredictedPlot4Prior"] = ToJson(r.GetArgumentPredictedPlot4Prior());
    j["GetArgumentPredictedPlot4Posterior"] = ToJson(r.GetArgumentPredictedPlot4Posterior());
    j["GetLikelihoodPredictedPlot"] = ToJson(r.GetLikelihoodPredictedPlot());
    j["GetPriorPredictedPlot"] = ToJson(r.GetPriorPredictedPlot());
    j["GetPosteriorPredictedPlot"] = ToJson(r.GetPosteriorPredictedPlot());
}

std::vector<std::string> cells(std::initializer_list<double> values) {
    std::vector<std::string> out;
    for (double v : values) out.push_back(FormatNumber(v));
    return out;
}

std::string factorDirectionNote(const MCBSN_850::BSNSettings& s) {
    if (s.GetModelType() == C::Regression && s.GetCompareType() == C::CompareFull)
        return "Bayes factor of the model against the full model: values above 1 favour the model "
               "(the smaller one). The integral runs over g up to 1e6; when the full model has more "
               "predictors its integrand grows with g, so the value depends on that bound.";
    return "Bayes factor of the model against the intercept-only model: values above 1 favour the model "
           "(unlike the one-sample and two-sample analyses, where they favour the null).";
}

void putTables(const BSNMultiRegOutputStats& r, ResultView& view) {
    const auto& s = r.GetSettings();
    const bool anovaModel = s.GetModelType() == C::Anova;

    TextTable summary("Model summary");
    summary.AddColumn("N", cells({r.GetNCases()}));
    summary.AddColumn("R squared", cells({r.GetRSquared()}));
    summary.AddColumn("Adjusted R squared", cells({r.GetAdjRSquared()}));
    if (!anovaModel && s.GetCompareType() == C::CompareFull)
        summary.AddColumn("Full-model R squared", cells({r.GetRSquaredFull()}));
    summary.AddColumn("Std. error of the estimate", cells({r.GetStdError()}));
    view.tables.push_back(summary);

    const auto& a = r.GetAnova();
    TextTable anova(anovaModel ? "ANOVA (between and within groups)" : "ANOVA");
    anova.AddColumn("Source", {anovaModel ? "Between groups" : "Regression", anovaModel ? "Within groups" : "Residual",
                               "Total"});
    anova.AddColumn("Sum of squares", cells({a.regressionSS, a.residualSS, a.totalSS}));
    anova.AddColumn("df", cells({a.regressionDF, a.residualDF, a.totalDF}));
    anova.AddColumn("Mean square", cells({a.regressionMS, a.residualMS, MCMV::Missing()}));
    anova.AddColumn("F", {FormatNumber(a.f), "", ""});
    anova.AddColumn("Sig.", {FormatNumber(a.sig), "", ""});
    view.tables.push_back(anova);

    if (WantsFactors(s)) {
        TextTable bf("Bayes factor");
        bf.AddColumn("Model", {"Model"});
        bf.AddColumn("Bayes factor", FormatBayesFactors({r.GetBayesFactor()}, {r.IsLogBayesFactor()}, 1));
        bf.AddColumn("log BF", cells({r.GetLogBayesFactor()}));
        bf.AddColumn("Method", {EnumWord(s.GetRegrCompType())});
        bf.AddNote(factorDirectionNote(s));
        if (r.IsLogBayesFactor()) bf.AddNote(kLogFactorNote);
        view.tables.push_back(bf);
    }

    const auto& labels = r.GetParameterLabels();
    const std::size_t n = labels.size();
    const auto& est = r.GetVarCoeffBayesEstimations();
    const std::string level = fmt::format("{:g}% ", s.GetCILevel());
    TextTable coef(anovaModel ? "Cell means" : "Coefficients");
    coef.AddColumn("Parameter", labels);
    coef.AddColumn("Estimate", FormatNumbers(r.GetRegrParameters(), n));
    std::vector<std::string> redundant;
    for (bool b : r.GetRedundancy()) redundant.push_back(b ? "redundant" : "");
    if (r.HasPosterior()) {
        std::vector<double> mode, mean, var, lo, hi;
        for (const auto& e : est) {
            mode.push_back(e.GetMode());
            mean.push_back(e.GetMean());
            var.push_back(e.GetVariance());
            lo.push_back(e.GetLower());
            hi.push_back(e.GetUpper());
        }
        coef.AddColumn("Post. mode", FormatNumbers(mode, n));
        coef.AddColumn("Post. mean", FormatNumbers(mean, n));
        coef.AddColumn("Post. variance", FormatNumbers(var, n));
        coef.AddColumn(level + "lower", FormatNumbers(lo, n));
        coef.AddColumn(level + "upper", FormatNumbers(hi, n));
    }
    coef.AddColumn("", redundant);
    coef.AddNote("Estimate: least squares. A redundant parameter (collinear with earlier columns, such as the last "
                 "category of a factor) is fixed at 0.");
    if (r.HasPosterior()) coef.AddNote("Posterior limits: equal-tailed credible interval.");
    view.tables.push_back(coef);

    if (r.HasPosterior()) {
        const auto& e = r.GetErrorBayesEstimation();
        TextTable error("Posterior of the error variance (sigma^2)");
        error.AddColumn("Mode", cells({e.GetMode()}));
        error.AddColumn("Mean", cells({e.GetMean()}));
        error.AddColumn("Variance", cells({e.GetVariance()}));
        error.AddColumn(level + "lower", cells({e.GetLower()}));
        error.AddColumn(level + "upper", cells({e.GetUpper()}));
        view.tables.push_back(error);

        const auto& p = r.GetPredictedBayesEstimation();
        if (!MCMV::IsMissing(p.GetMean())) {
            TextTable pred("Posterior of the predicted value");
            pred.AddColumn("Mode", cells({p.GetMode()}));
            pred.AddColumn("Mean", cells({p.GetMean()}));
            pred.AddColumn("Variance", cells({p.GetVariance()}));
            pred.AddColumn(level + "lower", cells({p.GetLower()}));
            pred.AddColumn(level + "upper", cells({p.GetUpper()}));
            pred.AddNote("For a new case with the settings' Regressors; the interval includes the error variance.");
            view.tables.push_back(pred);
        }

        TextTable f("Posterior F tests");
        std::vector<std::string> names = {"All coefficients (intercept included)"};
        std::vector<double> stat = {r.GetFStat()}, df1 = {r.GetDF()}, df2 = {r.GetDF2()}, sig = {r.GetSig()};
        const auto tl = r.GetFTestLabels();
        for (std::size_t i = 0; i < r.GetFTestResults().size(); ++i) {
            const auto& t = r.GetFTestResults()[i];
            names.push_back(i < tl.size() && !tl[i].empty() ? tl[i] : fmt::format("F test {}", i + 1));
            stat.push_back(t.GetWald());
            df1.push_back(t.GetDF());
            df2.push_back(t.GetDF2());
            sig.push_back(t.GetSig());
        }
        f.AddColumn("Test", names);
        f.AddColumn("F", FormatNumbers(stat, names.size()));
        f.AddColumn("df1", FormatNumbers(df1, names.size()));
        f.AddColumn("df2", FormatNumbers(df2, names.size()));
        f.AddColumn("Sig.", FormatNumbers(sig, names.size()));
        f.AddNote("A test whose values did not match its parameters is left empty (see the warnings).");
        view.tables.push_back(f);
    }
}

Curve curve(const std::vector<double>& x, const std::vector<double>& y) { return Curve{x, y}; }

void putPlots(const BSNMultiRegOutputStats& r, ResultView& view) {
    const auto& s = r.GetSettings();
    const double level = s.GetCILevel();
    const bool full = s.GetModelType() == C::Regression && s.GetCompareType() == C::CompareFull;
    auto annotate = [&](PlotSet& p, const BayesEstimation& e) {
        p.likelihoodIsScaled = true;
        p.ciLower = e.GetLower();
        p.ciUpper = e.GetUpper();
        p.ciLevel = level;
        p.bayesFactor = r.GetBayesFactor();
        p.bayesFactorIsLog = r.IsLogBayesFactor();
        p.direction = full ? FactorDirection::ModelOverFull : FactorDirection::ModelOverNull;
    };
    const auto& params = r.GetPlotParameters();
    const auto& labels = r.GetParameterLabels();
    const auto& est = r.GetVarCoeffBayesEstimations();
    for (std::size_t i = 0; i < params.size(); ++i) {
        PlotSet p;
        const auto k = static_cast<std::size_t>(params[i]);
        p.variable = k < labels.size() ? labels[k] : fmt::format("parameter {}", params[i]);
        p.parameter = "coefficient";
        auto at = [&](const BSNMultiRegOutputStats::Curves& c) { return i < c.size() ? c[i] : std::vector<double>(); };
        p.logLikelihood = curve(at(r.GetParamsArgumentsPlots4Likelihoods()), at(r.GetLikelihoodParamPlots()));
        p.prior = curve(at(r.GetParamsArgumentsPlots4Prior()), at(r.GetPriorParamPlots()));
        p.posterior = curve(at(r.GetParamsArgumentsPlots4Posterior()), at(r.GetPosteriorParamPlots()));
        annotate(p, k < est.size() ? est[k] : BayesEstimation());
        view.plots.push_back(p);
    }
    if (!r.GetPosteriorErrorVarPlot().empty()) {
        PlotSet p;
        p.variable = "error variance";
        p.parameter = "sigma^2";
        p.logLikelihood = curve(r.GetArgumentErrorVarPlot4Likelihoods(), r.GetLikelihoodErrorVarPlot());
        p.prior = curve(r.GetArgumentErrorVarPlot4Prior(), r.GetPriorErrorVarPlot());
        p.posterior = curve(r.GetArgumentErrorVarPlot4Posterior(), r.GetPosteriorErrorVarPlot());
        annotate(p, r.GetErrorBayesEstimation());
        view.plots.push_back(p);
    }
    if (!r.GetPosteriorPredictedPlot().empty()) {
        PlotSet p;
        p.variable = "predicted value";
        p.parameter = "prediction";
        p.logLikelihood = curve(r.GetArgumentPredictedPlot4Likelihoods(), r.GetLikelihoodPredictedPlot());
        p.prior = curve(r.GetArgumentPredictedPlot4Prior(), r.GetPriorPredictedPlot());
        p.posterior = curve(r.GetArgumentPredictedPlot4Posterior(), r.GetPosteriorPredictedPlot());
        annotate(p, r.GetPredictedBayesEstimation());
        view.plots.push_back(p);
    }
}

} // namespace

bool DescribeRegression(const MCBSN_850::BSNOutputStats& base, const DataInfo& data, ResultView& view) {
    const auto* r = dynamic_cast<const BSNMultiRegOutputStats*>(&base);
    if (r == nullptr) return false;
    putGetters(*r, data, view);
    putTables(*r, view);
    putPlots(*r, view);
    return true;
}

} // namespace bsncli
